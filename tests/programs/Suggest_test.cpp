// Suggested rules, from a profile to the job file and the run that it describes.
#include "Program.h"
#include "base/tests/SourceFolder.h"
#include "base/tests/TempFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>

namespace tavix::testing {
namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

/// A cell of a CSV file, in quotes.
std::string quoted(const std::string& text) {
    std::string made = "\"";
    for (const char c : text)
        made += c == '"' ? std::string("\"\"") : std::string(1, c);
    return made + '"';
}

class Suggest : public ::testing::Test {
  protected:
    std::string write(const std::string& name, const std::string& text) {
        std::ofstream(m_folder.file(name), std::ios::binary) << text;
        return m_folder.file(name);
    }
    /// A file with one field, "f", whose row number i, from 0, has this cell.
    std::string column(int rows, const std::function<std::string(int)>& cell) {
        std::string text = "f,n\n";
        for (int i = 0; i < rows; ++i)
            text += fmt::format("{},x\n", cell(i));
        return write("t.csv", text);
    }
    void profile(const std::vector<std::string>& files, const std::string& repository = "r.tavix") {
        std::vector<std::string> arguments = files;
        arguments.insert(arguments.begin(), "profile");
        arguments.insert(arguments.end(), {"-R", m_folder.file(repository), "--job", "j"});
        const Outcome outcome = runTavix(arguments);
        ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    }
    Outcome suggest(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "suggest");
        arguments.insert(arguments.end(), {"-R", m_folder.file("r.tavix"), "--job", "j"});
        return runTavix(arguments);
    }
    json suggestions(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.end(), {"--format", "json"});
        const Outcome outcome = suggest(std::move(arguments));
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        return json::parse(outcome.out);
    }
    /// "domain: `f` in ('a', 'b') 0" of the field f of the last profile.
    std::vector<std::string> ofF(std::vector<std::string> arguments = {}) {
        std::vector<std::string> lines;
        arguments.insert(arguments.begin(), "t.f");
        for (const json& one : suggestions(std::move(arguments)))
            lines.push_back(one["kind"].get<std::string>() + ": " +
                            (one["rule"].is_null() ? one["name"] : one["rule"]).get<std::string>() + " " +
                            one["violations"].dump());
        return lines;
    }
    /// Those for one column of cells.
    std::vector<std::string> of(int rows, const std::function<std::string(int)>& cell,
                                const std::vector<std::string>& arguments = {}) {
        std::filesystem::remove(m_folder.file("r.tavix"));
        profile({column(rows, cell)});
        return ofF(arguments);
    }
    static json listed(const std::string& repository, std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"-R", repository, "--format", "json"});
        const Outcome outcome = runTavix(std::move(arguments));
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        return json::parse(outcome.out);
    }
    /// Runs the job file that is suggested and checks that it finds the violations that were named.
    void checkRoundTrip(const std::string& what) {
        SCOPED_TRACE(what);
        const json named = suggestions();
        const std::string job = m_folder.file("job.yaml");
        const Outcome written = suggest({"-o", job, "--force"});
        ASSERT_EQ(written.exitCode, 0) << written.err;
        const std::string other = m_folder.file("other.tavix");
        std::filesystem::remove(other);
        const Outcome dry = runTavix({"profile", job, "-R", other, "--dry-run"});
        ASSERT_EQ(dry.exitCode, 0) << dry.err;
        const Outcome run = runTavix({"profile", job, "-R", other});
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const json rules = listed(other, {"rules"});
        const json alerts = listed(other, {"alerts"});
        for (const json& one : named) {
            const std::string element = one["element"];
            const auto isSame = [&](const json& entry, const char* name, const json& wanted) {
                return entry["table"] == one["table"] && entry[name] == wanted;
            };
            if (element == "rule") {
                const auto rule = std::find_if(rules.begin(), rules.end(),
                                               [&](const json& entry) { return isSame(entry, "rule", one["name"]); });
                ASSERT_NE(rule, rules.end()) << one.dump();
                EXPECT_EQ((*rule)["failed_rows"], one["violations"]) << one.dump();
                EXPECT_EQ((*rule)["condition"], one["rule"]);
            } else if (element != "remark") {
                const auto alert = std::find_if(alerts.begin(), alerts.end(), [&](const json& entry) {
                    return isSame(entry, "input", element == "alert" ? one["field"] : one["name"]);
                });
                ASSERT_NE(alert, alerts.end()) << one.dump();
                EXPECT_EQ((*alert)["state"], one["violations"] == 0 ? "quiet" : "raised") << one.dump();
                if (element == "custom metric") {
                    EXPECT_EQ((*alert)["figure"], one["violations"]) << one.dump();
                }
            }
            checkValues(one);
        }
    }
    /// The filter of the violating values passes exactly the violating rows.
    void checkValues(const json& one) {
        if (one["violating_values"].is_null())
            return;
        const std::string field = quoted(one["table"]) + "." + quoted(one["field"]);
        const json values = listed(m_folder.file("r.tavix"), {"show", "--job", "j", "--field", field, "--filter",
                                                              one["violating_values"].get<std::string>()});
        std::int64_t rows = 0;
        for (const json& value : values)
            rows += value["count"].get<std::int64_t>();
        EXPECT_EQ(one["violations"], rows) << one.dump();
    }

    TempFolder m_folder;
};

std::string number(int i) {
    return fmt::format("{}", i);
}

TEST_F(Suggest, NotNullUnlessManyRowsAreNullOrBlank) {
    const auto word = [](int i) { return fmt::format("w{} {}", i * 7919 % 1000, std::string(i % 30, 'x')); };
    EXPECT_THAT(of(400, word), Contains("not null: not isblank(`f`) 0"));
    EXPECT_THAT(of(400, [&](int i) { return i == 7   ? ""
                                            : i == 9 ? "\" \""
                                                     : word(i); }),
                Contains("not null: not isblank(`f`) 2"));
    EXPECT_THAT(of(400, [&](int i) { return i % 10 == 0 ? "\"\""
                                            : i == 9    ? ""
                                                        : word(i); }),
                Contains("not null: not isnull(`f`) 1"));
    EXPECT_THAT(of(400, [&](int i) { return i % 100 == 0 ? "" : word(i); }), Not(Contains(HasSubstr("not null"))));
    EXPECT_THAT(of(10, word), IsEmpty()) << "ten rows show nothing";
}

TEST_F(Suggest, UniqueForKeysButNotForTextsOrMeasuresOfFewRows) {
    const auto isUnique = Contains(HasSubstr("unique: "));
    EXPECT_THAT(of(50, number), Contains("unique: Unique Percent at least 100 0"));
    // The first field of a table is often its key; another needs a name or more runs.
    std::string text = "a,order_id,f\n";
    for (int i = 0; i < 50; ++i)
        text += fmt::format("x,{},text {}\n", 1000 + i * 37, i * 7919 % 1000);
    std::filesystem::remove(m_folder.file("r.tavix"));
    profile({write("t.csv", text)});
    EXPECT_THAT(ofF(), Not(isUnique));
    EXPECT_EQ(suggestions({"t.order_id", "--only", "unique"}).size(), 1U);
    EXPECT_THAT(of(50, [](int i) { return fmt::format("{}.5", i); }), Not(isUnique)) << "measures";
    EXPECT_THAT(of(2000, [](int i) { return number(i == 5 ? 6 : i); }),
                Contains("unique: `f:Non-null Count` - `f:Unique Count` at most 0 1"));
    EXPECT_THAT(of(2000, [](int i) { return number(i < 100 ? 6 : i); }), Not(isUnique));
}

TEST_F(Suggest, AConstantAndADomainWithoutItsRareValues) {
    EXPECT_THAT(of(40, [](int) { return "USA"; }), Contains("constant: `f` = 'USA' 0"));
    EXPECT_THAT(of(40, [](int i) { return i % 2 == 0 ? "USA" : ""; }),
                ElementsAre("constant: isnull(`f`) or `f` = 'USA' 0"));
    EXPECT_THAT(of(40, [](int) { return ""; }), IsEmpty()) << "a field without values";
    EXPECT_THAT(of(100, [](int i) { return i % 3 == 0 ? "b" : "a"; }), Contains("domain: `f` in ('a', 'b') 0"));
    EXPECT_THAT(of(1000, [](int i) { return i == 3       ? "B"
                                            : i % 3 == 0 ? "b"
                                                         : "a"; }),
                Contains("domain: `f` in ('a', 'b') 1"));
    EXPECT_THAT(of(100, [](int i) { return fmt::format("v{}", i % 60); }), Not(Contains(HasSubstr("domain"))));
    const auto sixty = [](int i) { return fmt::format("a v{}", std::string(i % 60, 'x')); };
    EXPECT_THAT(of(1000, sixty), Not(Contains(HasSubstr("domain"))));
    EXPECT_THAT(of(1000, sixty, {"--domain", "60", "--only", "domain"}),
                ElementsAre(HasSubstr("domain: `f` in ('a v'")));
    EXPECT_THAT(of(100, [](int i) { return number(i % 2 == 0   ? 3
                                                  : i % 5 == 0 ? 8
                                                               : 5); }),
                Contains("domain: `f` in (3, 5, 8) 0"));
    EXPECT_THAT(of(100, [](int i) { return number(1 + i % 5); }), Not(Contains(HasSubstr("domain"))))
        << "a range says more of numbers without a gap";
}

TEST_F(Suggest, PatternsAsRegularExpressions) {
    const auto code = [](int i) { return fmt::format("{}{:03}", static_cast<char>('A' + i % 26), i); };
    EXPECT_THAT(of(500, code), Contains("pattern: matches(`f`, '[A-Z][0-9]{3}') 0"));
    EXPECT_THAT(of(500, [&](int i) { return i == 9    ? "?"
                                            : i == 10 ? ""
                                                      : code(i); }),
                Contains("pattern: isnull(`f`) or matches(`f`, '[A-Z][0-9]{3}') 1"));
    EXPECT_THAT(
        of(500, [&](int i) { return i % 50 == 9 ? std::string(static_cast<std::size_t>(i / 50 + 1), '?') : code(i); },
           {"--only", "pattern"}),
        IsEmpty());
    EXPECT_THAT(
        of(500, [&](int i) { return i % 50 == 9 ? std::string(static_cast<std::size_t>(i / 50 + 1), '?') : code(i); },
           {"--only", "pattern", "--pattern", "95"}),
        ElementsAre("pattern: matches(`f`, '[A-Z][0-9]{3}') 10"));
    EXPECT_THAT(of(500, [](int i) { return fmt::format("{}/{}/20{:02}", 1 + i % 12, 1 + i % 28, i % 90); }),
                Contains("pattern: matches(`f`, '[0-9]{1,2}/[0-9]{1,2}/[0-9]{4}') 0"));
    EXPECT_THAT(of(500, [](int i) { return fmt::format("Ä{:03}.\\", i); }),
                Contains(R"(pattern: matches(`f`, '[\p{Lu}\p{Lt}]\p{Nd}{3}\.[\x5C]') 0)"));
    EXPECT_THAT(of(500, [](int i) { return fmt::format("W{}", std::string(i % 100, 'o')); }),
                Not(Contains(HasSubstr("pattern"))))
        << "words of any length";
}

TEST_F(Suggest, RangesWithoutWhatLiesFarOut) {
    EXPECT_THAT(of(400, [](int i) { return fmt::format("{}.5", 10 + i % 37); }),
                Contains("range: `f` between 0 and 60 0"));
    EXPECT_THAT(of(400, [](int i) { return i == 3   ? "99999"
                                           : i == 4 ? ""
                                                    : fmt::format("{}.5", 10 + i % 37); }),
                Contains("range: isnull(`f`) or `f` between 0 and 60 1"));
    EXPECT_THAT(of(400, [](int i) { return number(i == 0   ? 1'000'000
                                                  : i == 1 ? 900'000
                                                           : i * i % 5000); }),
                Contains(HasSubstr("range: `f` between 0 and 6000 2")));
    EXPECT_THAT(of(400, [](int i) { return number((1 << i % 20) + i); }), Contains("range: `f` >= 0 0"))
        << "values without an upper bound";
    EXPECT_THAT(of(400, number), Not(Contains(HasSubstr("range")))) << "an identifier grows";
    const auto day = [](int i) { return fmt::format("20{:02}-{:02}-{:02}", 10 + i % 9, 1 + i % 12, 1 + i % 28); };
    EXPECT_THAT(of(400, day), Contains("range: todate(`f`) between '2010-01-01' and now() 0"));
    EXPECT_THAT(of(400, [&](int i) { return i == 5   ? "9999-12-31"
                                            : i == 6 ? "1900-01-01"
                                                     : day(i); }),
                Contains("range: todate(`f`) between '2010-01-01' and now() 2"));
    EXPECT_THAT(of(400, [](int i) { return fmt::format("{}-01-{:02}", 2024 + i % 20, 1 + i % 28); }),
                Not(Contains(HasSubstr("range"))))
        << "dates that are planned";
}

TEST_F(Suggest, RangesOfTextsThatAreNumbersOrDates) {
    const auto withMisfits = [](int i) { return i % 100 == 7 ? "unknown" : fmt::format("{}", 10 + i * 7 % 37); };
    EXPECT_THAT(of(400, withMisfits), Contains("range: tonumber(`f`, 'integer') between 0 and 50 4"));
    checkRoundTrip("misfits");
    const auto written = [](int i) { return fmt::format("{:02}/{:02}/{}", 1 + i % 28, 1 + i / 28 % 12, 2010 + i % 9); };
    EXPECT_THAT(of(400, written), Contains("range: todate(`f`, 'date day-first') between '2010-01-01' and now() 0"));
    EXPECT_THAT(of(400, [&](int i) { return i == 9    ? "?"
                                            : i == 10 ? ""
                                                      : written(i); }),
                Contains("range: isnull(`f`) or todate(`f`, 'date day-first') between '2010-01-01' and now() 1"));
    checkRoundTrip("written dates");
    const auto first = [](int i) { return fmt::format("\"{} 1 {}\"", i / 2 % 2 == 0 ? "Jan" : "Feb", 2000 + i / 4); };
    EXPECT_THAT(of(240, first), Not(Contains(HasSubstr("coverage")))) << "ten months of a year have no rows";
    EXPECT_THAT(
        of(240,
           [](int i) {
               constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
               return fmt::format("{} 1 {}", kMonths[i / 2 % 12], 2000 + i / 24);
           }),
        Contains(
            "coverage: datediff(todate(`f:Minimum Value`, 'date'), todate(`f:Maximum Value`, 'date'), 'month') + 1 - "
            "`f:Unique Count` at most 0 0"));
    checkRoundTrip("written months");
}

TEST_F(Suggest, LengthsAndTextsThatWereCutOff) {
    const auto mixed = [](int i, int length) {
        std::minstd_rand random(static_cast<unsigned>(i + 1));
        std::string text;
        for (int k = 0; k < length; ++k)
            text += "0123456789abcdef"[random() / 1000 % 16];
        return text;
    };
    EXPECT_THAT(of(600, [&](int i) { return mixed(i * 13, 32); }), Contains("length: length(`f`) = 32 0"));
    EXPECT_THAT(of(600, [&](int i) { return mixed(i * 13, 5 + i % 40); }), Not(Contains(HasSubstr("length(`f`)"))));
    EXPECT_THAT(of(600, [&](int i) { return mixed(i * 13, std::min(5 + i % 60, 30)); }),
                Contains(AllOf(HasSubstr("no cut-off: length(`f`) < 30 "), Not(HasSubstr(" 0")))));
}

TEST_F(Suggest, CoverageOfDaysAndMonths) {
    // A leap year, so that a day is easily lost.
    const auto day = [](int i) {
        constexpr int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        int month = 0;
        for (; i >= kDays[month]; ++month)
            i -= kDays[month];
        return fmt::format("2020-{:02}-{:02}", month + 1, i + 1);
    };
    const std::string missing = "coverage: datediff(todate(`f:Minimum Value`), todate(`f:Maximum Value`)";
    EXPECT_THAT(of(732, [&](int i) { return day(i / 2); }), Contains(missing + ") + 1 - `f:Unique Count` at most 0 0"));
    EXPECT_THAT(of(732, [&](int i) { return day(i / 2 == 99 ? 98 : i / 2); }),
                Contains(missing + ") + 1 - `f:Unique Count` at most 0 1"));
    EXPECT_THAT(of(732, [&](int i) { return day(i / 14 * 7); }), Contains("coverage: f has rows in every month 0"));
    EXPECT_THAT(of(240, [](int i) { return fmt::format("{}-{:02}-01", 2000 + i / 24, 1 + i / 2 % 12); }),
                Contains(missing + ", 'month') + 1 - `f:Unique Count` at most 0 0"));
    EXPECT_THAT(of(60, [](int i) { return fmt::format("{}-06-15", 1960 + i); }), Not(Contains(HasSubstr("coverage"))));
}

TEST_F(Suggest, ReferencesToKeysOfOtherTables) {
    std::string airports = "iata,name\n";
    for (int i = 0; i < 200; ++i)
        airports +=
            fmt::format("{}{}{},n{}\n", static_cast<char>('A' + i % 26), static_cast<char>('A' + i / 26), 'X', i);
    std::string routes = "origin,f,count\n";
    for (int i = 0; i < 1000; ++i)
        routes += fmt::format("{}{}X,{},{}\n", static_cast<char>('A' + i % 20), static_cast<char>('A' + i / 20 % 6),
                              i == 500 ? "ZZZ" : "BBX", i % 150);
    profile({write("airports.csv", airports), write("t.csv", routes)});
    const json found = suggestions({"--only", "reference"});
    ASSERT_EQ(found.size(), 1U) << found.dump(1);
    EXPECT_EQ(found[0]["name"], "origin is in airports.iata");
    EXPECT_EQ(found[0]["element"], "remark");
    EXPECT_EQ(found[0]["reason"], "all of 120 values are in airports.iata");
    // As many values as a domain may have can be listed.
    const json listed = suggestions({"t", "--only", "reference", "--domain", "200"});
    ASSERT_EQ(listed.size(), 1U);
    EXPECT_EQ(listed[0]["element"], "rule");
    EXPECT_THAT(listed[0]["rule"].get<std::string>(), HasSubstr("`origin` in ('AAX', 'ABX', "));
    EXPECT_EQ(listed[0]["violations"], 0);
    write("t.csv", routes.replace(routes.find("\nAAX"), 4, "\nQQQ"));
    profile({m_folder.file("airports.csv"), m_folder.file("t.csv")});
    EXPECT_EQ(suggestions({"--only", "reference"})[0]["reason"],
              "120 of 121 values are in airports.iata; 1 in 1 row not");
    EXPECT_EQ(suggestions({"--only", "reference"})[0]["violations"], 1);
}

TEST_F(Suggest, TheRunsBeforeDecideWhatStays) {
    for (int run = 0; run < 12; ++run)
        profile({column(100 + run, [&](int i) { return number(i + 1); })});
    const json found = suggestions({"t.f"});
    std::vector<std::string> reasons;
    for (const json& one : found)
        reasons.push_back(one["reason"]);
    EXPECT_THAT(reasons, UnorderedElementsAre("no null in 12 of 12 runs", "unique in 12 of 12 runs",
                                              "1 is the lowest value of 12 runs"));
    checkRoundTrip("an identifier");
    // A run with repeated keys and a lower one.
    profile({column(2000, [](int i) { return number(i == 7 ? 9 : i + 1); })});
    EXPECT_THAT(ofF({"--only", "unique"}), ElementsAre("unique: `f:Non-null Count` - `f:Unique Count` at most 0 1"));
    EXPECT_EQ(suggestions({"t.f", "--only", "unique"})[0]["reason"],
              "unique in 12 of 13 runs; 1 row has the value of another one");
    // Runs before the one that is asked for.
    EXPECT_EQ(suggestions({"t.f", "--only", "unique", "--run", "3"})[0]["reason"], "unique in 3 of 3 runs");
    // Many nulls in one run are allowed from then on.
    profile({column(200, [](int i) { return i % 4 == 0 ? "" : number(i); })});
    profile({column(200, number)});
    EXPECT_THAT(ofF({"--only", "not null"}), IsEmpty());
}

TEST_F(Suggest, SaysNothingThatTheJobSays) {
    column(400, [](int i) { return fmt::format("{}.5", 10 + i % 37); });
    const std::string job = write("job.yaml", R"yaml(job: j
tables:
  - file: t.csv
    key: [n]
    custom metrics:
      - {name: Sum, output: "pieces: all", sum: "tonumber(`f`)"}
    rules:
      - {name: f is filled in, condition: "NOT IsBlank(`f`)"}
      - {name: 'It''s "possible"', condition: "tonumber(`f`) > 9 and `n` == 'x'"}
    alerts:
      - {custom metric: Sum, change: 20 %, runs: 3, level: error, description: "Too much: call 12"}
      - {rule: f is filled in, figure: percent, max: 0.5}
      - {metric: Records, not in: [1, 2]}
  - {name: part, based on: t, where: "tonumber(`f`) > 20"}
)yaml");
    ASSERT_EQ(runTavix({"profile", job, "-R", m_folder.file("r.tavix")}).exitCode, 0);
    EXPECT_THAT(ofF(), IsEmpty());
    const Outcome written = suggest({"-o", m_folder.file("again.yaml")});
    EXPECT_EQ(written.exitCode, 0) << written.err;
    const std::string again = m_folder.file("again.tavix");
    const Outcome run = runTavix({"profile", m_folder.file("again.yaml"), "-R", again});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto conditions = [&](const std::string& repository, const char* list, const char* name) {
        std::vector<std::string> found;
        for (const json& one : listed(repository, {list}))
            found.push_back(one[name]);
        return found;
    };
    // The job's own rules and alerts come first, and are the same.
    const std::vector<std::string> alerts = conditions(m_folder.file("r.tavix"), "alerts", "condition");
    const std::vector<std::string> alertsAgain = conditions(again, "alerts", "condition");
    ASSERT_EQ(alerts.size(), 3U);
    EXPECT_TRUE(std::equal(alerts.begin(), alerts.end(), alertsAgain.begin()));
    const std::vector<std::string> rules = conditions(again, "rules", "condition");
    EXPECT_THAT(rules, AllOf(Contains("NOT IsBlank(`f`)"), Contains("tonumber(`f`) > 9 and `n` == 'x'")));
    EXPECT_EQ(listed(again, {"tables"}).size(), 2U);
    for (const json& one : suggestions())
        EXPECT_EQ(one["table"], "t") << "a filtered table is examined only when it is chosen";
    EXPECT_THAT(suggestions({"part"}), Not(IsEmpty()));
}

TEST_F(Suggest, AwkwardNamesAndValuesSurviveTheJobFile) {
    const std::vector<std::string> names = {"a`b",   "it's", "say \"x\"", "# no", "x: y", "two\nlines", "ü€😀",
                                            " lead", "{a}",  "Value",     "C:\\", "a:b",  "%"};
    const std::vector<std::string> values = {"it's", "\"q\"", "C:\\temp\\", "\\",       "a\\'b", "line\nbreak", "\ttab",
                                             "# x",  "- y",   "null",       "true",     "a: b",  "ü\u2028€",    "{}",
                                             "`",    "%s",    "''",         "\xC2\x85", "\0012", "//"};
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ",") + quoted(name);
    text += '\n';
    for (int i = 0; i < 600; ++i) {
        for (std::size_t c = 0; c < names.size(); ++c)
            text += (c > 0 ? "," : "") +
                    quoted(values[(static_cast<std::size_t>(i) * 7 + c) % (c == 0 ? 2 : values.size() - (c % 2))]);
        text += '\n';
    }
    profile({write("it's # odd: \"t\".csv", text)});
    EXPECT_GT(suggestions().size(), names.size());
    checkRoundTrip("awkward names");
}

TEST_F(Suggest, TheFileIsReadAsTheRunReadIt) {
    std::string text;
    for (int i = 0; i < 300; ++i)
        text += fmt::format("{};'caf\xE9;{}';{}\n", i, i % 3, i % 2 == 0 ? "x" : "y");
    const std::string file = write("no head.txt", text);
    profile({file, "--header", "no", "--quote", "'", "--delimiter", ";", "--encoding", "1252"});
    checkRoundTrip("no heading, other quotes");
    std::filesystem::remove(m_folder.file("r.tavix"));
    profile({write("1.csv", "a,b\n" + std::string("x,1\n") + "y,2\n"),
             write(
                 "2.csv", "a;b\n" +
                              [] {
                                  std::string rows;
                                  for (int i = 0; i < 60; ++i)
                                      rows += fmt::format("{};{}\n", i % 2 == 0 ? "x" : "y", i);
                                  return rows;
                              }()),
             "--one-table", "both"});
    checkRoundTrip("two files of different forms");
    EXPECT_EQ(suggestions().size(), suggestions({"both"}).size());
}

TEST_F(Suggest, RandomTablesHaveTheViolationsThatWereNamed) {
    std::mt19937 random(20261122); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same tables each time
    const auto upTo = [&](int most) { return static_cast<int>(random() % static_cast<unsigned>(most + 1)); };
    for (int table = 0; table < 12; ++table) {
        std::string text = "id,amount,code,day,kind,note\n";
        const int rows = 100 + upTo(2000);
        const int odd = 1 + upTo(400);
        for (int i = 0; i < rows; ++i) {
            const bool isOdd = upTo(odd) == 0;
            text += fmt::format("{},{},{},{},{},{}\n", isOdd ? i - 1 : i,
                                isOdd ? "1e9" : fmt::format("{}.{}", upTo(500) - 100, upTo(9)),
                                isOdd ? "n/a" : fmt::format("{}-{}", upTo(99), upTo(9)),
                                isOdd ? "1900-01-01" : fmt::format("2021-{:02}-{:02}", 1 + upTo(11), 1 + upTo(27)),
                                isOdd          ? "?"
                                : upTo(1) == 0 ? "yes"
                                               : "no",
                                std::string(static_cast<std::size_t>(std::min(upTo(60), 25)), 'a') + number(i));
        }
        std::filesystem::remove(m_folder.file("r.tavix"));
        profile({write("t.csv", text)});
        checkRoundTrip(fmt::format("table {}", table));
    }
}

TEST_F(Suggest, TheDemoTablesHaveTheViolationsThatWereNamed) {
    std::vector<std::string> files;
    for (const char* name : {"airports", "routes", "birdstrikes"})
        files.push_back(sourceFile(std::string("share/examples/") + name + ".csv"));
    profile(files);
    checkRoundTrip("demo");
    std::vector<std::string> kinds;
    for (const json& one : suggestions())
        kinds.push_back(one["kind"]);
    EXPECT_THAT(kinds, AllOf(Contains("reference"), Contains("domain"), Contains("range"), Contains("unique"),
                             Contains("pattern"), Contains("coverage")));
}

TEST_F(Suggest, WritesNothingUnasked) {
    profile({column(100, number)});
    const std::string job = write("job.yaml", "mine\n");
    const Outcome refused = suggest({"-o", job});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_THAT(refused.err, HasSubstr("exists; add --force to replace it"));
    std::ifstream kept(job);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(kept), {}), "mine\n");
    EXPECT_EQ(suggest({"-o", job, "--force"}).err, "tavix: 4 rules suggested\n");
    EXPECT_EQ(suggest({"--force"}).exitCode, 2);
    EXPECT_THAT(suggest({"--only", "unique,nothing"}).err, HasSubstr("\"nothing\" is not one of"));
    EXPECT_THAT(suggest({}).out, AllOf(HasSubstr("job: j\n"),
                                       HasSubstr("# unique, medium confidence: 100 values in 100 rows. Violations: "
                                                 "none.\n      - {field: f, metric: Unique Percent, min: 100}\n")));
    EXPECT_THAT(
        suggest({"--list", "--only", "unique"}).out,
        HasSubstr(
            "t.f             unique  medium      none        100 values in 100 rows: Unique Percent at least 100"));
    EXPECT_EQ(listed(m_folder.file("r.tavix"), {"runs"}).size(), 1U);
    EXPECT_EQ(listed(m_folder.file("r.tavix"), {"rules"}).size(), 0U);
}

} // namespace
} // namespace tavix::testing
