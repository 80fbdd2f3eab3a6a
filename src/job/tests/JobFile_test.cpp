#include "base/tests/SourceFolder.h"
#include "base/tests/TempFolder.h"
#include "job/AlertEntries.h"
#include "job/JobDescription.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace tavix::job {
namespace {

class JobFile : public ::testing::Test {
  protected:
    Result<JobDescription> read(std::string_view text) {
        std::ofstream(m_path, std::ios::binary) << text;
        return readJobFile(m_path);
    }
    /// The error without the name of the file.
    std::string problem(std::string_view text) {
        const auto job = read(text);
        if (job)
            return "nothing";
        const std::string& error = job.error().text;
        return error.starts_with(m_path + ":") ? error.substr(m_path.size() + 1) : error;
    }

    testing::TempFolder m_folder;
    std::string m_path = m_folder.file("job.yaml");
};

TEST_F(JobFile, EveryKeyArrives) {
    const auto job = read(R"(job: "Year 2024"
description: Says why
repository: out/../profiles.tavix
source: Files
tables:
  - {file: one.csv}
  - {file: /data/two.x.txt, name: a.b, delimiter: tab, header: false}
  - {file: sub/three.csv, delimiter: "|"}
collections:
  - name: Keys
    description: All keys
    fields: [one.id, a.b.c.d, {table: three, field: "x.y"}]
)");
    ASSERT_TRUE(job.ok()) << job.error().text;
    EXPECT_EQ(job->name, "Year 2024");
    EXPECT_EQ(job->description, "Says why");
    EXPECT_EQ(job->repository, m_folder.file("profiles.tavix"));
    EXPECT_EQ(job->dataSource, "Files");
    const std::vector<TableDescription> tables = {{"one", m_folder.file("one.csv"), std::nullopt, true},
                                                  {"a.b", "/data/two.x.txt", '\t', false},
                                                  {"three", m_folder.file("sub/three.csv"), '|', true}};
    EXPECT_EQ(job->tables, tables);
    ASSERT_EQ(job->collections.size(), 1U);
    const std::vector<repository::FieldAddress> fields = {{"one", "id"}, {"a.b", "c.d"}, {"three", "x.y"}};
    EXPECT_EQ(job->collections[0].fields, fields);
    EXPECT_EQ(read("job: j\ntables: [{file: a.csv}]")->dataSource, m_folder.path().string());
    EXPECT_EQ(read("job: j\nrepository: sqlite:r.db\ntables: [{file: a.csv}]")->repository,
              "sqlite:" + m_folder.file("r.db"));
}

TEST_F(JobFile, HowValuesAreRead) {
    const auto table = [&](const std::string& keys) {
        auto job = read("job: j\ntables:\n  - file: a.csv\n" + keys);
        EXPECT_TRUE(job.ok()) << job.error().text;
        return job.ok() ? job->tables.front() : TableDescription{};
    };
    using forms::StatedDates;
    EXPECT_EQ(table("").fitsAtLeast, 95);
    EXPECT_EQ(table("").datesOf("x"), StatedDates::Nothing);
    EXPECT_EQ(table("    fits at least: 99.5 %\n").fitsAtLeast, 99.5);
    EXPECT_EQ(table("    fits at least: 50\n").fitsAtLeast, 50);
    EXPECT_EQ(table("    dates: day-first\n").datesOf("x"), StatedDates::DayFirst);
    const TableDescription mixed = table("    dates: {x: epoch-seconds, y z: month-first}\n");
    EXPECT_EQ(mixed.datesOf("x"), StatedDates::EpochSeconds);
    EXPECT_EQ(mixed.datesOf("y z"), StatedDates::MonthFirst);
    EXPECT_EQ(mixed.datesOf("z"), StatedDates::Nothing);
}

TEST_F(JobFile, MistakesAreNamedWithTheirPlace) {
    const std::string good = "job: j\ntables:\n  - file: a.csv\n";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", "1:1: the file does not describe a job"},
        {"# nothing\n", "1:1: the file does not describe a job"},
        {"just words", "1:1: expected a map with the keys job and tables"},
        {"job: j\n", "1:1: the key \"tables\" is missing"},
        {"job: j\ntables: []\n", "2:9: \"tables\": expected a list of at least one table"},
        {"job: 12\ntables: [{file: a}]\n", "1:6: \"job\": expected the name of the job, a text"},
        {"job:\ntables: [{file: a}]\n", "1:1: \"job\": expected the name of the job, a text"},
        {"job: j\ntabels:\n  - file: a.csv\n", "2:1: unknown key \"tabels\" (did you mean \"tables\"?)"},
        {good + "  - fiel: b.csv\n", "4:5: unknown key \"fiel\" (did you mean \"file\"?)"},
        {good + "colections: []\n", "4:1: unknown key \"colections\" (did you mean \"collections\"?)"},
        {good + "whatever/it~is: 1\n", "4:1: unknown key \"whatever/it~is\""},
        {good + "    delimiter: ',,'\n",
         "4:16: \"tables[0].delimiter\": expected one character, or the word tab; detected unless stated"},
        {good + "    delimiter: '\"'\n", "4:16: a delimiter is one ASCII character, but not a quote or a line end"},
        {good + "    delimiter: \u00E4\n", "4:16: a delimiter is one ASCII character, but not a quote or a line end"},
        {good + "    header: 'no'\n", "4:13: \"tables[0].header\": expected true when the first row has the names of "
                                      "the columns, false, or auto; true unless stated"},
        {good + "  - file: sub/a.csv\n", "4:11: there is already a table \"a\"; give this one another name"},
        {good + "    name: b\n    name: c\n", "5:5: the key \"name\" is given twice"},
        {good + "collections:\n  - name: c\n    fields: [b.x]\n",
         "6:14: the job has no table \"b\" (did you mean \"a\"?)"},
        {good + "collections:\n  - name: c\n    fields: [a.x, a.x]\n", "6:19: the field \"a.x\" is listed twice"},
        {good + "collections:\n  - name: c\n    fields: [ax]\n",
         "6:14: \"ax\" does not name a field: expected table.field"},
        {good + "collections:\n  - name: c\n    fields: [{tabel: a, field: x}]\n",
         "6:15: unknown key \"tabel\" (did you mean \"table\"?)"},
        {good + "collections:\n  - {name: c, fields: [a.x]}\n  - {name: c, fields: [a.y]}\n",
         "6:12: there is already a collection \"c\""},
        {good + "    where: 'true'\n",
         "4:12: \"where\" belongs to a filtered table: add \"based on\" with a table's name"},
        {good + "  - {name: f, based on: b, where: 'true'}\n",
         "4:25: the job has no table \"b\" (did you mean \"a\"?)"},
        {good + "  - {name: f, based on: a, where: 'true'}\n  - {name: g, based on: f, where: 'true'}\n",
         "5:25: \"f\" is a filtered table itself; base this one on \"a\" and join the conditions with \"and\""},
        {good + "  - {name: f, based on: f, where: 'true'}\n",
         "4:25: \"f\" is a filtered table itself; base this one on \"f\" and join the conditions with \"and\""},
        {good + "  - {name: f, based on: a}\n", "4:5: the key \"where\" is missing; a filtered table needs it"},
        {good + "  - {name: f, based on: a, where: 'true', file: b.csv}\n",
         "4:49: \"file\" does not go with a filtered table, which has the rows of another one"},
        {good + "  - {name: f, based on: a, where: true}\n",
         "4:35: \"tables[1].where\": expected the condition that the rows of a filtered table meet, a text in the "
         "expression language"},
        {good + "  - name: b\n",
         "4:5: \"tables[1]\": expected a table: a map with the key file, files or folder, with the key table, with the "
         "keys name and query, or with the keys name, based on and where"},
        {good + "    rules:\n      - {name: r, condition: '`x` > (1'}\n",
         "5:30: in the expression, line 1, column 9: expected \")\", found the end"},
        {good + "    rules:\n      - {name: r, condition: 'true'}\n      - {name: r, condition: 'true'}\n",
         "6:16: there is already a rule \"r\""},
        {good + "    rules: [{name: r, condition: 'true', row log limit: -1}]\n",
         "4:57: \"tables[0].rules[0].row log limit\": expected the number of violating rows that are kept, from 0 to "
         "1000000; the job's unless stated"},
        {good + "    custom metrics: [{name: m}]\n",
         "4:22: \"tables[0].custom metrics[0]\": expected a custom metric: a map with the key name and one of count, "
         "sum, average, min, max, metric"},
        {good + "    key: [x, x]\n", "4:14: the field \"x\" is listed twice"},
        {good + "collections: 5\n", "4:14: \"collections\": expected a list of collections"},
        {"job: j\ntables: [", "2:1: end of sequence flow not found"},
        {"job: j\ntables: *none\n", "2:9: the referenced anchor is not defined"},
        {"job: !!binary aGk=\ntables: [{file: a}]", "1:6: the tag \"tag:yaml.org,2002:binary\" is not supported"},
        {"? [a]\n: b\n", "1:3: a key must be a word or a text"},
        {good + "---\njob: k\n", "4:1: there is more than one document in the file"},
        {good + "    rules:\n      - {name: R, condition: \"`x` > 0}\n    alerts:\n      - {rule: R, max: 0}\n",
         "5:30: the quote that opens here is never closed"},
        {good + "description: 'a''b\nrepository: r\n", "4:14: the quote that opens here is never closed"},
        {good + "description: \"a\\\"\n", "4:14: the quote that opens here is never closed"},
        {good + "description: !!str &a # why\n  \"a\n", "5:3: the quote that opens here is never closed"},
        {"\xEF\xBB\xBF" + good + "description: \"a\n", "4:14: the quote that opens here is never closed"},
        {good + "'description: a\n", "4:1: the quote that opens here is never closed"},
        {"job: j\ntables: [\"a.csv", "2:10: the quote that opens here is never closed"},
        {good + "description: \"a\nrepository: \"r.tavix\"\n",
         "4:14: the quote that opens here is closed in line 5, where the text continues; is a closing quote missing?"},
        {good + "  - file: \"a\\0b.csv\"\n", "4:11: a text cannot hold a zero byte"},
        {"job: '  '\ntables: [{file: a}]\n",
         "1:6: \"job\": expected the name of the job, a text (1 to 1000 characters, not only blanks)"},
        {good + "    name: " + std::string(1001, 'x') + "\n",
         "4:11: \"tables[0].name\": expected the name of the table, a text; the file's name without its extension "
         "unless "
         "stated (1 to 1000 characters, not only blanks)"},
        {good + "    sample: {percent: 1, seed: 99999999999999999999}\n",
         "4:32: \"tables[0].sample.seed\": expected a whole number from 0 to 9223372036854775807; the same seed takes "
         "the "
         "same rows; 1 unless stated"},
        {good + "    fits at least: 49 %\n",
         "4:20: \"tables[0].fits at least\": expected a percentage from 50 to 100, such as 95 %: a text field has "
         "figures "
         "over the values that fit a type if these are at least so many of those that are neither null, empty nor "
         "blank; 95 % unless stated"},
        {good + "    dates: {x: years-first}\n",
         "4:16: \"tables[0].dates.x\": expected day-first, month-first or epoch-seconds, or a map of fields to one of "
         "these: "
         "how dates are read that could be read in two ways, or which integers are dates; as the values decide unless "
         "stated"},
        {good + "    encoding: 12345\n", "4:15: there is no encoding \"12345\""},
        {"job: j\nna\xFFme: x\n", "2:3: this is not UTF-8 text"},
        {std::string("job: j\n\0", 8), "2:1: this is not text"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(problem(text), expected) << text;
}

TEST_F(JobFile, ExpressionsThatNeedQuotesAreToldSo) {
    const std::string rule = "job: j\ntables:\n  - file: a.csv\n    rules:\n      - name: r\n        condition: ";
    EXPECT_THAT(problem(rule + "`price` > 1\n"), ::testing::HasSubstr("6:20: "));
    EXPECT_THAT(problem(rule + "`price` > 1\n"), ::testing::HasSubstr("quote the expression"));
    EXPECT_THAT(problem(rule + "{a: `price`}\n"), ::testing::HasSubstr("quote the expression"));
    EXPECT_THAT(problem(rule + "\"matches(price, '\\d+')\"\n"), ::testing::HasSubstr("use single quotes"));
    EXPECT_THAT(problem("job: j\ntables: ["), ::testing::Not(::testing::HasSubstr("quote")));
}

TEST_F(JobFile, ACodePageIsANumber) {
    const auto job = read("job: j\ntables: [{file: a.csv, encoding: 1252}, {file: b.csv, encoding: 'cp850'}]\n");
    ASSERT_TRUE(job.ok()) << job.error().text;
    EXPECT_STREQ(job->tables[0].encoding->name, "windows-1252");
    EXPECT_STREQ(job->tables[1].encoding->name, "IBM850");
    EXPECT_TRUE(read("job: \"a\\\"b\"\n# it's\ntables: [{file: 'it''s.csv'}]\ndescription: |\n  \"open\n").ok());
}

TEST_F(JobFile, AFileThatCannotBeReadIsAnError) {
    EXPECT_THAT(readJobFile(m_folder.file("none")).error().text, ::testing::EndsWith("No such file or directory"));
    EXPECT_THAT(readJobFile(m_folder.path().string()).error().text, ::testing::EndsWith("Is a directory"));
    EXPECT_THAT(problem("job: j\n#" + std::string(1 << 20, 'x')), ::testing::EndsWith("more than 1 MiB"));
}

TEST_F(JobFile, HostileFilesEndSoonAndWithAnError) {
    std::string bomb = "a0: &a0 [x,x,x,x,x,x,x,x,x,x]\n";
    for (int i = 1; i < 12; ++i) {
        const std::string before = "*a" + std::to_string(i - 1);
        bomb += "a" + std::to_string(i) + ": &a" + std::to_string(i) + " [";
        for (int k = 0; k < 10; ++k)
            bomb += before + (k < 9 ? "," : "]\n");
    }
    EXPECT_THAT(problem(bomb), ::testing::HasSubstr("too many values"));
    EXPECT_THAT(problem(std::string(50'000, '[')), ::testing::EndsWith("the nesting is too deep"));
    EXPECT_THAT(problem("job: &j [*j]\n"), ::testing::HasSubstr("the nesting is too deep"));
    for (const std::string piece :
         {"[", "{", "{a: ", "- ", "? ", "a: ", "\"", "&a ", "!", "'", "|\n", "%", "a:\n ", "{a,b},"}) {
        std::string text;
        while (text.size() < 60'000)
            text += piece;
        EXPECT_NE(problem(text), "nothing") << piece;
    }
}

TEST_F(JobFile, AlertsArriveAndMistakesInThemAreNamed) {
    const std::string head =
        "job: J\ntables:\n  - file: t.csv\n    rules: [{name: R, condition: 'true'}]\n    alerts:\n";
    const auto job = read(head + "      - {field: [a, b], metric: Mean, change: 2.5 %, runs: 3}\n"
                                 "      - {rule: R, figure: percent, not in: [1, 2], level: error, description: D}\n"
                                 "      - {metric: Records, change: 5, runs: 4, against: weekday}\n");
    ASSERT_TRUE(job.ok()) << job.error().text;
    const repository::AlertFacts mean{"t", AlertSubject::StandardMetric,
                                      "a", MetricId::Mean,
                                      "",  {AlertComparison::ChangedByPercent, false, 2.5, 0, 3},
                                      ""};
    repository::AlertFacts other = mean;
    other.field = "b";
    const repository::AlertFacts rule{"t", AlertSubject::BusinessRule,
                                      "",  MetricId::Count,
                                      "R", {AlertComparison::Inside, true, 1, 2, 1, AlertLevel::Error},
                                      "D"};
    const repository::AlertFacts weekday{
        "t", AlertSubject::StandardMetric,
        "",  MetricId::Count,
        "",  {AlertComparison::ChangedBy, false, 5, 0, 4, AlertLevel::Warning, AlertReference::SameWeekday},
        ""};
    EXPECT_EQ(job->tables[0].alerts, (std::vector{mean, other, rule, weekday}));
    // The same entry as a user types it, with and without braces.
    for (const char* text : {"{metric: Records, change: 5, runs: 4, against: weekday}",
                             "metric: Records, change: 5, runs: 4, against: weekday"}) {
        const auto typed = readAlertEntry(text, job->tables[0]);
        ASSERT_TRUE(typed.ok()) << typed.error().text;
        EXPECT_EQ(*typed, std::vector{weekday});
    }

    struct Case {
        const char* entry;
        const char* problem;
    };
    const std::vector<Case> cases{
        {"{field: a, metric: Mena, max: 1}", "6:28: there is no metric \"Mena\" (did you mean \"Mean\"?)"},
        {"{field: a, metric: Actual Type, max: 1}", "6:28: the metric \"Actual Type\" is not a number"},
        {"{metric: Mean, max: 1}", "6:18: the key \"field\" is missing; without it the only metric is Records"},
        {"{rule: S, max: 1}", "6:16: table \"t\" has no rule \"S\" (did you mean \"R\"?)"},
        {"{custom metric: R, max: 1}", "6:25: table \"t\" has no custom metric \"R\""},
        {"{rule: R, field: a, max: 1}", "6:26: \"field\" goes with \"metric\""},
        {"{metric: Records, range: [2, 1]}", "6:34: the first number of a range must not be above the second"},
        {"{metric: Records, max: 1, runs: 2}", "6:41: \"runs\" goes with \"change\""},
        {"{metric: Records, max: 1, against: median}", "6:44: \"against\" goes with \"change\""},
        {"{metric: Records, change: 1, against: mode}",
         "6:47: \"tables[0].alerts[0].against\": expected mean, median or weekday: a change is measured against the "
         "mean "
         "or median of the earlier runs, or the mean of those of the same weekday; mean unless stated"},
        {"{metric: Records, change: 1.2.3%}", "6:35: a change is a number or, in percent, a text such as \"20 %\""},
        {"{metric: Records, level: bad, max: 1}",
         "6:34: \"tables[0].alerts[0].level\": expected warning or error; warning unless stated"},
        {"{metric: Records, max: 1, min: 2}",
         "6:9: \"tables[0].alerts[0]\": expected an alert: a map with one of metric, "
         "custom metric, rule and one of max, min, range, not, not in, change"},
    };
    for (const Case& one : cases)
        EXPECT_EQ(problem(head + "      - " + one.entry + "\n"), one.problem);
}

TEST_F(JobFile, NamesTheCommandForRaisedAlerts) {
    const std::string tables = "tables: [{file: t.csv}]\n";
    EXPECT_THAT(read("job: J\n" + tables)->onAlert, ::testing::IsEmpty());
    EXPECT_EQ(read("job: J\non-alert: [mail, -s, \"two words; rm $HOME\", '5']\n" + tables)->onAlert,
              (std::vector<std::string>{"mail", "-s", "two words; rm $HOME", "5"}));
    // A path is relative to the job file.
    EXPECT_EQ(read("job: J\non-alert: [./tell, ./x]\n" + tables)->onAlert,
              (std::vector<std::string>{m_folder.file("tell"), "./x"}));
    EXPECT_EQ(problem("job: J\non-alert: mail -s x\n" + tables),
              "2:11: \"on-alert\": expected a list of texts: the program to run after a run that raises an alert, and "
              "its arguments");
    EXPECT_EQ(problem("job: J\non-alert: [mail, 5]\n" + tables),
              "2:18: \"on-alert[1]\": expected the program or an argument, a text; numbers need quotes");
}

TEST_F(JobFile, DamagedFilesAreErrorsOrJobs) {
    std::ifstream demo(tavix::testing::sourceFile("share/examples/demo.yaml"), std::ios::binary);
    std::stringstream whole;
    whole << demo.rdbuf();
    std::mt19937 random(3);
    for (int i = 0; i < 300; ++i) {
        std::string text = whole.str();
        for (std::size_t n = random() % 4 + 1; n > 0; --n) {
            const std::size_t at = random() % text.size();
            if (random() % 2 == 0)
                text[at] = static_cast<char>(random());
            else
                text.erase(at, random() % 20);
        }
        if (const auto job = read(text); job) {
            EXPECT_FALSE(job->name.empty() || job->tables.empty());
        } else {
            EXPECT_FALSE(job.error().text.empty());
        }
    }
}

TEST(DescribeFiles, NamesTablesAfterFiles) {
    const std::vector<std::string> files = {"/data/a.csv", "/data/b.tar.txt"};
    TableDescription reading;
    reading.delimiter = ';';
    reading.hasHeader = false;
    const auto job = describeFiles(files, "", reading);
    ASSERT_TRUE(job.ok());
    EXPECT_EQ(job->name, "a");
    EXPECT_EQ(job->dataSource, "/data");
    const std::vector<TableDescription> tables = {{"a", "/data/a.csv", ';', false},
                                                  {"b.tar", "/data/b.tar.txt", ';', false}};
    EXPECT_EQ(job->tables, tables);
    const std::vector<std::string> same = {"/x/a.csv", "/y/a.txt"};
    EXPECT_EQ(describeFiles(same, "J").error().text, "Two tables of the job \"J\" have the name \"a\".");
    EXPECT_FALSE(describeFiles({}, "J").ok());
    // Names that a job file rejects.
    EXPECT_EQ(describeFiles(files, " \t").error().text, "The name of the job is blank.");
    EXPECT_EQ(describeFiles(files, std::string(1001, 'x')).error().text,
              "The name of the job has 1001 characters; the limit is 1000.");
    EXPECT_EQ(describeFiles(files, "J", {}, "\xFF").error().text, "The name of the table is not UTF-8 text.");
    std::string longest;
    for (int i = 0; i < 1000; ++i)
        longest += "\u00E4";
    EXPECT_TRUE(describeFiles(files, longest).ok());
}

} // namespace
} // namespace tavix::job
