// The lists of the program.
#include "OverPeople.h"

namespace tavix::testing {
namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class Lists : public OverPeople {};

TEST_F(Lists, EveryListReadsTheSameInJsonAndCsv) {
    const std::vector<std::vector<std::string>> lists{
        {"jobs"},
        {"runs"},
        {"tables"},
        {"fields", "--table", "people"},
        {"show", "--table", "people"},
        {"show", "--log"},
        {"show", "--field", "people.id", "--metrics"},
        {"show", "--field", "people.name", "--values"},
        {"show", "--field", "people.name", "--patterns"},
        {"show", "--field", "people.name", "--filter", "`Value` != 'Bob'"},
        {"show", "--field", "people.name", "--patterns", "--filter", "`Count` == 1", "--limit", "2"},
        {"show", "--field", "people.id", "--percentiles"},
        {"show", "--field", "people.id", "--outliers"},
    };
    for (const std::vector<std::string>& list : lists) {
        SCOPED_TRACE(list.back());
        json rows = asJson(list);
        if (rows.is_object())
            rows = json::array({rows});
        const std::vector<CsvRow> csv = asCsv(list);
        ASSERT_EQ(csv.size(), rows.size() + 1);
        for (std::size_t r = 0; r < rows.size(); ++r) {
            ASSERT_EQ(csv[r + 1].size(), csv[0].size());
            ASSERT_EQ(rows[r].size(), csv[0].size());
            for (std::size_t c = 0; c < csv[0].size(); ++c) {
                const json& cell = rows[r].at(*csv[0][c]);
                ASSERT_EQ(cell.is_null(), !csv[r + 1][c].has_value()) << *csv[0][c];
                if (!cell.is_null()) {
                    EXPECT_EQ(cell.is_string() ? cell.get<std::string>() : cell.dump(), *csv[r + 1][c]);
                }
            }
        }
        const Outcome text = run(list);
        EXPECT_EQ(text.exitCode, 0) << text.err;
        EXPECT_THAT(text.out, ::testing::Not(IsEmpty()));
    }
}

TEST_F(Lists, FiguresAreThoseOfTheFile) {
    const json id = asJson({"show", "--field", "people.id", "--metrics"});
    EXPECT_EQ(id["type"], "integer");
    EXPECT_EQ(id["count"], 4);
    EXPECT_EQ(id["unique_count"], 4);
    EXPECT_EQ(id["minimum_value"], 1);
    EXPECT_EQ(id["mean"], 2.5);
    const json cities = asJson({"show", "--field", "people.city", "--values"});
    ASSERT_EQ(cities.size(), 3U);
    EXPECT_EQ(cities[0], json({{"value", "Bern"}, {"count", 2}, {"percent_of_rows", 50.0}}));
    EXPECT_TRUE(cities[1]["value"].is_null());
    EXPECT_EQ(asJson({"show", "--field", "people.city", "--values", "--limit", "1"}).size(), 1U);
    // Null, an empty text, a formula and a line end are written as they were in the file.
    const std::vector<CsvRow> notes = asCsv({"show", "--field", "people.note.text", "--values"});
    std::vector<std::optional<std::string>> values;
    for (std::size_t i = 1; i < notes.size(); ++i)
        values.push_back(notes[i][0]);
    EXPECT_THAT(values, ElementsAre(std::nullopt, "", "=1+1", "two\nlines"));
    EXPECT_THAT(run({"show", "--field", "people.note.text", "--values"}).out,
                AllOf(HasSubstr("(null value)"), HasSubstr("two\\nlines")));
    EXPECT_THAT(run({"show", "--field", "people.note.text", "--values", "--format", "csv", "--spreadsheet"}).out,
                HasSubstr("\n'=1+1,"));
}

// Null has no pattern, so the share of a pattern refers to the values that are not null, as in the viewer.
TEST_F(Lists, PatternsAreSharesOfTheValuesThatAreNotNull) {
    const json patterns = asJson({"show", "--field", "people.city", "--patterns"});
    ASSERT_EQ(patterns.size(), 2U);
    EXPECT_EQ(patterns[0]["pattern"], "Aaaa");
    EXPECT_DOUBLE_EQ(patterns[0]["percent_of_non_null_rows"], 200.0 / 3);
    EXPECT_FALSE(patterns[0].contains("percent_of_rows"));
    EXPECT_THAT(run({"show", "--field", "people.city", "--patterns"}).out, HasSubstr("% of 3 non-null values"));
    EXPECT_THAT(run({"show", "--field", "people.city", "--values"}).out, HasSubstr("% of 4 records"));
    EXPECT_THAT(run({"show", "--field", "people.city", "--patterns", "--filter", "`Count` == 1"}).out,
                HasSubstr("% of 1 passing value"));
    EXPECT_THAT(asJson({"show", "--field", "people.city", "--patterns", "--filter", "false"}), IsEmpty());
}

TEST_F(Lists, AFilterLetsSomeRowsPassAndTheListSaysSo) {
    const std::vector<std::string> show{"show", "--field", "people.city", "--filter"};
    const auto with = [&](const std::string& filter) {
        std::vector<std::string> arguments = show;
        arguments.push_back(filter);
        return arguments;
    };
    const json filtered = asJson(with("not isnull(`Value`)"));
    ASSERT_EQ(filtered.size(), 2U);
    EXPECT_EQ(filtered[0]["value"], "Bern");
    EXPECT_DOUBLE_EQ(filtered[0]["percent_of_filtered_rows"], 200.0 / 3);
    EXPECT_FALSE(filtered[0].contains("percent_of_rows"));
    EXPECT_EQ(asJson(with(""))[0]["percent_of_rows"], 50.0) << "an empty filter is none";
    EXPECT_THAT(asJson(with("false")), IsEmpty());
    EXPECT_EQ(asJson({"show", "--field", "people.city", "--patterns", "--filter", "`Value` == 'Aaa'"})[0]["rank"], 2);
    EXPECT_THAT(run(with("`Count` == 1")).out,
                AllOf(StartsWith("Values of people.city, filtered: 2 of 3\n"), HasSubstr("% of 2 passing records")));

    // For the expression language the comment of the condition block ends early.
    const std::string text = "/*{{BEGIN CONDITIONS\r\nVALUES=\"*/\"\r\n}}END CONDITIONS*/\r\nif isnull(`Value`) "
                             "then\r\n   return false\r\nelse\r\n   return true\r\n";
    write("some.FLT", std::string{static_cast<char>(text.size()), 0} + text + "beyond");
    EXPECT_EQ(asJson(with(m_folder.file("some.FLT"))), filtered);
    write("some.txt", "\xEF\xBB\xBFnot isnull(`Value`)\n");
    EXPECT_EQ(asJson(with(m_folder.file("some.txt"))), filtered);
    EXPECT_EQ(asJson(with("not isnull(Value)")), filtered);
    EXPECT_EQ(asJson(with("Value = \"Bern\" or not isnull(Value) and Count = 1")), filtered);
    write("other.txt", std::string{static_cast<char>(text.size()), 0} + text);
    expectFailure(3, with(m_folder.file("other.txt")), "other.txt: this is a filter as the dialog saves it");
    const std::string unfinished =
        text.substr(0, text.find("if ")) + "Cannot display expression:\r\n\r\nCondition list cannot end with AND or OR";
    write("unfinished.flt", std::string{static_cast<char>(unfinished.size()), 0} + unfinished);
    expectFailure(2, with(m_folder.file("unfinished.flt")),
                  "The filter was saved unfinished: Condition list cannot end with AND or OR.");
    expectFailure(2, with("`Vlaue` == 1"), "(did you mean \"Value\"?)");
    write("cut.flt", std::string{100, 0} + text.substr(0, 50));
    expectFailure(3, with(m_folder.file("cut.flt")), "cut.flt: Invalid or corrupt filter file");
    expectFailure(2, with("none.flt"), "there is no file \"none.flt\"");
    expectFailure(3, with("/dev/zero"), "at most");
    expectFailure(2, with("`Value` ==\n  nix"), "The filter is not understood: line 2, column 3");
    expectFailure(2, with(std::string(5000, '(')), "The filter is not understood: line 1");
    expectFailure(2, {"show", "--filter", "true"}, "name it with --field");
    expectFailure(2, {"show", "--field", "people.city", "--metrics", "--filter", "true"}, "--values and --patterns");
    const Outcome failing = run(with("9223372036854775806 + `Count` > 5"));
    EXPECT_EQ(failing.exitCode, 0);
    EXPECT_THAT(failing.err,
                HasSubstr("tavix: The filter could not be evaluated for 1 row, which is left out. Row 1:"));
    EXPECT_THAT(failing.out, HasSubstr("filtered: 2 of 3"));
    const Outcome remarked = run(with("`Value` > 10"));
    EXPECT_EQ(remarked.exitCode, 0);
    EXPECT_THAT(remarked.err, StartsWith("tavix: the filter: line 1, column 9: this compares texts, where"));
    EXPECT_EQ(run(with("`Value` > '10'")).err, "");
}

TEST_F(Lists, FiguresOfASampleSaySoEverywhere) {
    const Outcome outcome =
        run({"profile", m_folder.file("people.csv"), "--first", "2", "--job", "s", "--format", "json"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    const json told = json::parse(outcome.out)[0];
    const json listed = asJson({"tables", "--job", "s"})[0];
    for (const char* key : {"records", "processed_records", "damaged_records"})
        EXPECT_EQ(told[key], listed[key]) << key;
    EXPECT_EQ(told["records"], 4);
    EXPECT_EQ(told["processed_records"], 2);
    EXPECT_EQ(asJson({"runs", "--job", "s"})[0]["processed_records"], 2);
    const char* const sample = "people, a sample of 2 of 4 records: counts, shares and figures are those";
    for (const char* list : {"--values", "--patterns", "--percentiles", "--outliers", "--metrics"})
        EXPECT_THAT(run({"show", "--job", "s", "people.id", list}).err, HasSubstr(sample)) << list;
    EXPECT_THAT(run({"show", "--job", "s", "people.id"}).out,
                HasSubstr("Values of people.id, a sample of 2 of 4 records\n"));
    EXPECT_THAT(run({"fields", "--job", "s", "people"}).err, HasSubstr(sample));
}

TEST_F(Lists, ATableFilteredFromASampleIsMarkedLikeIt) {
    std::ofstream(m_folder.file("job.yaml")) << "job: f\ntables:\n"
                                                "  - {file: people.csv, sample: {first: 2}}\n"
                                                "  - {name: known, based on: people, where: 'not isnull(`city`)'}\n";
    const Outcome outcome = run({"profile", m_folder.file("job.yaml")});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    for (const json& table : asJson({"tables", "--job", "f"}))
        EXPECT_EQ(table["sampled"], "yes") << table;
    for (const char* table : {"people", "known"}) {
        const Outcome fields = run({"fields", "--job", "f", table});
        EXPECT_THAT(fields.out, HasSubstr("Minimum Value (sample)")) << table;
        EXPECT_THAT(fields.err, HasSubstr("are those of the sampled records alone")) << table;
    }
}

TEST_F(Lists, ADamagedDistributionIsAFailureOfTheRepositoryAlsoWithAFilter) {
    // The last pages of the file contain the packed values.
    std::string bytes;
    {
        std::ifstream file(m_repository, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(file), {});
    }
    const std::size_t at = bytes.rfind("Bern");
    ASSERT_NE(at, std::string::npos);
    for (std::size_t place = bytes.find("Bern"); place != std::string::npos; place = bytes.find("Bern", place + 1))
        bytes[place] = 'X';
    std::ofstream(m_repository, std::ios::binary) << bytes;
    EXPECT_EQ(run({"show", "people.city", "--values"}).exitCode, 3);
    EXPECT_EQ(run({"show", "people.city", "--filter", "`Count` > 0"}).exitCode, 3);
    EXPECT_EQ(run({"show", "people.city", "--filter", "`Count` >"}).exitCode, 2);
}

TEST_F(Lists, TheFunctionsOfFiltersAreListed) {
    const Outcome outcome = runTavix({"functions", "--format", "json"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    const json functions = json::parse(outcome.out);
    const auto compare = std::find_if(functions.begin(), functions.end(),
                                      [](const json& function) { return function["function"] == "compare"; });
    ASSERT_NE(compare, functions.end());
    EXPECT_EQ((*compare)["parameters"], "string, string[, boolean]");
    EXPECT_EQ((*compare)["result"], "integer");
}

TEST_F(Lists, AFieldWithoutAListShowsEverything) {
    const json all = asJson({"show", "--field", "people.id"});
    for (const char* list : {"metrics", "values", "patterns", "percentiles", "outliers"})
        EXPECT_FALSE(all.at(list).empty()) << list;
    EXPECT_THAT(run({"show", "--table", "people", "--field", "note.text"}).out,
                AllOf(HasSubstr("Metrics of people.note.text"), HasSubstr("Outliers of people.note.text")));
    EXPECT_EQ(run({"show", "-f", R"("people"."note.text")"}).exitCode, 0);
}

TEST_F(Lists, RulesAndCustomMetricsOfAJobAreListed) {
    write("job.yaml", "job: checked\n"
                      "row log limit: 1\n"
                      "tables:\n"
                      "  - file: people.csv\n"
                      "    key: [id]\n"
                      "    custom metrics:\n"
                      "      - {name: From Bern, output: people, count: \"`city` == 'Bern'\"}\n"
                      "    rules:\n"
                      "      - {name: Has a city, condition: \"not isnull(`city`)\"}\n"
                      "      - {name: Plain name, condition: \"matches(`name`, '[A-Z][a-z]+')\"}\n"
                      "  - name: bernese\n"
                      "    based on: people\n"
                      "    where: \"`city` == 'Bern'\"\n"
                      "    rules: [{name: Plain name, condition: 'true'}]\n");
    ASSERT_EQ(run({"profile", m_folder.file("job.yaml")}).exitCode, 0);
    const json tables = asJson({"tables", "--job", "checked"});
    ASSERT_EQ(tables.size(), 2U);
    EXPECT_EQ(tables[1]["kind"], "filter");
    EXPECT_EQ(tables[1]["records"], 4);
    EXPECT_EQ(tables[1]["processed_records"], 2);

    const json shown = asJson({"show", "--job", "checked", "--table", "people", "--custom-metrics", "--rules"});
    EXPECT_EQ(shown["custom_metrics"][0]["output"], "people");
    EXPECT_EQ(shown["custom_metrics"][0]["value"], 2);
    EXPECT_EQ(shown["rules"].size(), 2U);
    EXPECT_EQ(shown["rules"][1]["failed_rows"], 2);
    EXPECT_EQ(shown["rules"][1]["percent_of_rows"], 50.0);
    EXPECT_TRUE(asJson({"show", "--job", "checked", "--table", "people"}).is_array()) << "as without rules";
    EXPECT_EQ(asJson({"rules", "--job", "checked"}).size(), 3U);
    const Outcome text = run({"show", "--job", "checked", "--table", "people"});
    EXPECT_THAT(text.out, AllOf(HasSubstr("Custom metrics of people"), HasSubstr("Rules of people")));

    EXPECT_EQ(asCsv({"rules", "--job", "checked", "--table", "people", "--rule", "Plain name"}),
              readCsv("row_number,id,name\n3,3,\"Cid, the \"\"old\"\"\"\n"));
    EXPECT_THAT(run({"rules", "--job", "checked", "--table", "people", "--rule", "Plain name"}).err,
                HasSubstr("the run kept the first 1 of 2 rows"));
    expectFailure(2, {"rules", "--job", "checked", "--rule", "Plain name"}, "\"people\", \"bernese\"");
    expectFailure(2, {"rules", "--job", "checked", "--rule", "Plane name"}, "\"Plain name\"");
    expectFailure(2, {"rules", "--job", "checked", "--limit", "3"}, "--rule");
    expectFailure(2, {"show", "--job", "checked", "--rules"}, "--table");

    write("wrong.yaml", "job: checked\ntables:\n  - file: people.csv\n"
                        "    rules: [{name: R, condition: \"`town` == 'Bern'\"}]\n");
    expectFailure(2, {"profile", m_folder.file("wrong.yaml")}, "wrong.yaml:4:34: the rule \"R\": line 1, column 1: ");
}

TEST_F(Lists, NotesAreAddedAndListed) {
    EXPECT_THAT(asJson({"notes", "--table", "people"}), IsEmpty());
    EXPECT_EQ(run({"notes", "--table", "people"}).out, "(none)\n");
    const json added =
        asJson({"notes", "--table", "people", "--add", "Two\r\nlines, \"quoted\" ", "--category", "Todo"});
    ASSERT_EQ(added.size(), 1U);
    EXPECT_EQ(added[0]["note"], "Two\nlines, \"quoted\"");
    EXPECT_EQ(added[0]["category"], "Todo");
    EXPECT_FALSE(added[0]["user"].get<std::string>().empty());
    const json second = asJson({"notes", "--table", "people", "--add", "=plain"});
    ASSERT_EQ(second.size(), 1U) << "the new one alone";
    EXPECT_TRUE(second[0]["category"].is_null());
    // Another spelling of an existing category.
    ASSERT_EQ(asJson({"notes", "-f", "people.city", "--add", "of a field", "--category", " TODO "})[0]["category"],
              "Todo");

    ASSERT_EQ(profile().exitCode, 0);
    EXPECT_EQ(asJson({"notes", "--table", "people"}), json::array({added[0], second[0]})) << "notes outlive a run";
    EXPECT_EQ(asJson({"notes", "--table", "people", "--field", "city"}).size(), 1U);
    const std::vector<CsvRow> csv = asCsv({"notes", "--table", "people"});
    ASSERT_EQ(csv.size(), 3U);
    EXPECT_THAT(csv[0], ElementsAre("date", "category", "user", "note"));
    EXPECT_EQ(csv[1][3], "Two\nlines, \"quoted\"");
    EXPECT_EQ(csv[2][1], std::nullopt);
    EXPECT_THAT(run({"notes", "--table", "people"}).out, ::testing::ContainsRegex("  Two\n +lines, \"quoted\"\n"));
}

TEST_F(Lists, WrongNotesAreRefusedAndLeaveNothing) {
    expectFailure(2, {"notes"}, "notes of what?");
    expectFailure(2, {"notes", "--table", "people", "--category", "x"}, "--category goes with --add");
    expectFailure(2, {"notes", "--table", "people", "--add", " \n"}, "A note needs a text.");
    expectFailure(2, {"notes", "--table", "people", "--add", std::string(20001, 'x')}, "20000 is the most");
    expectFailure(2, {"notes", "--table", "people", "--add", "\xff"}, "not valid UTF-8");
    expectFailure(2, {"notes", "--table", "people", "--add", "x", "--category", ""}, "needs a name");
    expectFailure(2, {"notes", "--table", "nix", "--add", "x", "--category", "New"}, "there is no table \"nix\"");
    expectFailure(3, {"notes", "--table", "people", "--add", "x", "-o", m_folder.file("none/out")}, "cannot write");
    EXPECT_THAT(asJson({"notes", "--table", "people"}), IsEmpty());
    // None of the failures has created its category: this spelling is the first to be stored.
    EXPECT_EQ(asJson({"notes", "--table", "people", "--add", "x", "--category", "NEW"})[0]["category"], "NEW");
}

} // namespace
} // namespace tavix::testing
