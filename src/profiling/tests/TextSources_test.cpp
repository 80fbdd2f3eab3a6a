#include "profiling/FileInspection.h"
#include "profiling/JobRunner.h"
#include "profiling/tests/StoredRuns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace tavix::profiling {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

/// Jobs over files that lie in a folder of their own.
class TextSources : public tavix::testing::StoredRuns {
  protected:
    Result<job::JobDescription> read(const std::string& tables) {
        return job::readJobFile(write("job.yaml", "job: j\ntables:\n" + tables));
    }
    std::string problem(const std::string& tables) {
        const auto job = read(tables);
        return job ? "nothing" : job.error().text.substr(m_folder.file("job.yaml").size() + 1);
    }
    std::vector<std::string> names(const std::string& tables) {
        std::vector<std::string> found;
        const auto job = read(tables);
        if (!job)
            return {job.error().text};
        for (const job::TableDescription& table : job->tables)
            found.push_back(table.name);
        return found;
    }
    RunOutcome run(const job::JobDescription& job) {
        auto outcome = runJob(job, m_repository);
        EXPECT_TRUE(outcome.ok()) << outcome.error().text;
        return outcome ? *outcome : RunOutcome();
    }
};

TEST_F(TextSources, APatternMakesATableOfEachFileInTheOrderOfTheirNames) {
    write("b.csv", "x\n1\n");
    write("a.csv", "x\n1\n");
    write("c[1].csv", "x\n1\n");
    write(".hidden.csv", "x\n1\n");
    std::filesystem::create_directory(m_folder.file("d.csv"));
    EXPECT_THAT(names("  - file: '*.csv'\n"), ElementsAre("a", "b", "c[1]"));
    EXPECT_THAT(names("  - file: 'c[1].csv'\n"), ElementsAre("c[1]")) << "a file that exists is not a pattern";
    EXPECT_THAT(names("  - file: '[ab].csv'\n  - {name: f, based on: b, where: \"`x` == '1'\"}\n"),
                ElementsAre("a", "b", "f"));
    EXPECT_THAT(problem("  - file: 'z*.csv'\n"), HasSubstr("3:11: No file matches"));
    EXPECT_THAT(problem("  - {file: '*.csv', name: n}\n"), HasSubstr("makes a table of each file"));
    EXPECT_THAT(problem("  - file: a.csv\n  - file: '?.csv'\n"), HasSubstr("4:11: there is already a table \"a\""));
    const std::vector<std::string> patterns{m_folder.file("[ab].csv")};
    EXPECT_EQ(job::describeFiles(patterns, "")->tables.size(), 2U);
    EXPECT_EQ(job::describeFiles(patterns, "", {}, "both")->tables.front().files.size(), 2U);
}

TEST_F(TextSources, EqualFilesMakeOneTableAndTheOthersAreNamed) {
    std::filesystem::create_directory(m_folder.file("in"));
    write("in/1.csv", "a,b\n1,x\n2\n");
    write("in/2.csv", "a;b\r\n3;\xE4\r\n");
    write("in/.notes", "nothing");
    const auto outcome = run(*read("  - folder: in/\n  - {files: ['in/?.csv', in/1.csv], name: again}\n"));
    ASSERT_EQ(outcome.tables.size(), 2U);
    EXPECT_EQ(outcome.tables[0].name, "in");
    EXPECT_EQ(outcome.tables[0].rows, 3);
    EXPECT_EQ(outcome.tables[1].rows, 5);
    EXPECT_EQ(stored("SELECT file_path FROM v_tables ORDER BY table_id"),
              m_folder.file("in") + "\n" + m_folder.file("in/?.csv") + "; " + m_folder.file("in/1.csv") + "\n");
    EXPECT_EQ(stored("SELECT text FROM v_log WHERE table_id = 1"),
              m_folder.file("in/2.csv") +
                  " is not UTF-8 and read as windows-1252; state the encoding if it is another.\nFile " +
                  m_folder.file("in/1.csv") + ": 2 rows.\nFile " + m_folder.file("in/2.csv") +
                  ": 1 rows.\n1.csv, line 3: 1 cell instead of 2; the missing ones are null.\nDamaged rows: 1 of 3.\n");
    EXPECT_EQ(stored("SELECT maximum_value FROM v_fields WHERE field_name = 'b' AND table_id = 1"), "\u00E4\n");

    write("in/3.csv", "a,c\n1,x\n");
    const auto failed = runJob(*read("  - folder: in\n"), m_repository);
    ASSERT_FALSE(failed.ok());
    EXPECT_THAT(failed.error().text, HasSubstr("in/3.csv\" has \"c\", in column 2"));
    EXPECT_EQ(stored("SELECT count(*) FROM v_runs"), "1\n");
    std::filesystem::create_directory(m_folder.file("empty"));
    EXPECT_THAT(problem("  - folder: empty\n"), EndsWith("has no files."));
    EXPECT_THAT(problem("  - folder: none\n"), HasSubstr("cannot be read: No such file"));
    EXPECT_THAT(problem("  - files: [in/1.csv]\n"), HasSubstr("the key \"name\" is missing"));
    EXPECT_THAT(problem("  - {folder: in, file: in/1.csv}\n"), HasSubstr("either \"file\" or \"folder\""));
}

TEST_F(TextSources, AFileIsReadAsTheJobSays) {
    write("f.txt", "1~'\xE4~'\n2~\n");
    const auto job = read("  - {file: f.txt, delimiter: '~', quote: \"'\", encoding: cp850, header: auto}\n");
    ASSERT_TRUE(job.ok()) << job.error().text;
    EXPECT_STREQ(job->tables[0].encoding->name, "IBM850");
    run(*job);
    EXPECT_EQ(stored("SELECT field_name, maximum_value FROM v_fields"), "Column1|2\nColumn2|\u00F5~\n");
    EXPECT_EQ(stored("SELECT file_encoding, file_header FROM run_table"), "IBM850|0\n");
    for (const auto& [entry, expected] : std::vector<std::pair<std::string, std::string>>{
             {"encoding: utf-9", "3:29: there is no encoding \"utf-9\" (did you mean \"UTF-8\"?)"},
             {"quote: ab", "3:26: \"tables[0].quote\": expected the character that encloses cells, or the word none; a "
                           "double quote unless stated"},
             {"delimiter: '''', quote: ''''", "3:43: the delimiter and the quote must be different"},
             {"header: maybe", "3:27: \"tables[0].header\": expected true when the first row has the names of the "
                               "columns, false, or auto; true unless stated"},
             {"sample: {first: 0}", "3:35: \"tables[0].sample.first\": expected the number of rows from the beginning, "
                                    "from 1"},
             {"sample: {first: 1, seed: 1}", "3:27: \"tables[0].sample\": expected a map with one of the keys first, "
                                             "every and percent, and seed with percent"}})
        EXPECT_EQ(problem("  - {file: f.txt, " + entry + "}\n"), expected) << entry;
    EXPECT_THAT(problem("  - file: f.txt\n  - {name: g, based on: f, where: '1 == 1', sample: {first: 1}}\n"),
                HasSubstr("\"sample\" does not go with a filtered table"));
}

TEST_F(TextSources, ASampleKeepsWhatItTookApartFromWhatThereIs) {
    std::string content = "n\n";
    for (int i = 1; i <= 10; ++i)
        content += std::to_string(i) + "\n";
    content += "x,y\n";
    write("t.csv", content);
    const std::string table =
        "  - file: t.csv\n    delimiter: ','\n    rules: [{name: r, condition: \"`n` == '1'\"}]\n    sample: ";
    const std::string filtered = "\n  - {name: f, based on: t, where: \"`n` != '4'\"}\n";
    const auto every = run(*read(table + "{every: 3}" + filtered));
    EXPECT_EQ(every.tables[0].rows, 4);
    EXPECT_EQ(every.tables[0].rowsOfSource, 11);
    EXPECT_EQ(every.tables[0].damagedRows, 1) << "that of all rows";
    EXPECT_EQ(every.tables[0].sample, "every 3rd row");
    EXPECT_EQ(stored("SELECT source_table, total_records, processed_records FROM v_tables ORDER BY table_id"),
              "t|11|4\nt|11|3\n");
    EXPECT_EQ(stored("SELECT minimum_value, maximum_value, count FROM v_fields WHERE table_id = 1"), "1|10|4\n");
    EXPECT_EQ(stored("SELECT text FROM v_log WHERE text LIKE 'Sample%' AND table_id = 1"),
              "Sample: every 3rd row; 4 of 11 rows.\n");
    EXPECT_EQ(stored("SELECT record FROM rule_row ORDER BY record"), "4\n7\n10\n") << "numbers in the source";
    EXPECT_EQ(run(*read(table + "{first: 5}" + filtered)).tables[0].rows, 5);
    const auto percent = read(table + "{percent: 50, seed: 9}");
    ASSERT_TRUE(percent.ok()) << percent.error().text;
    EXPECT_EQ(percent->tables[0].sample, (source::Sample{source::Sample::Kind::Random, 0, 50, 9}));
}

TEST_F(TextSources, APipeIsOpenedOnce) {
    const std::string path = m_folder.file("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    std::thread writer([&] { std::ofstream(path) << "a,b\n1,2\n3,4\n"; });
    const std::vector<std::string> files{path};
    EXPECT_EQ(run(*job::describeFiles(files, "")).tables[0].rows, 2);
    writer.join();
}

TEST_F(TextSources, AnInspectionReadsNoMoreThanTheFirstMiB) {
    std::string content = "id\tday\tprice\tsure\tmixed\tnothing\r\n";
    while (content.size() < 3'000'000)
        content += "1\t2024-01-31\t1.5\ttrue\t" + std::string(content.size() < 50 ? "true" : "7") + "\t\r\n";
    job::TableDescription table;
    table.path = write("f.txt", content);
    std::filesystem::resize_file(table.path, content.size() - 5);
    const auto found = inspectFile(table, 2);
    ASSERT_TRUE(found.ok()) << found.error().text;
    EXPECT_FALSE(found->isWhole);
    EXPECT_EQ(found->delimiter, '\t');
    EXPECT_EQ(found->lineEnds, "CR LF");
    EXPECT_EQ(found->damagedRows, 0) << "the row that the end of the MiB cuts is none";
    EXPECT_LT(found->rows, 50'000);
    EXPECT_GT(found->rows, 30'000);
    std::vector<std::string> types;
    for (const InspectedColumn& column : found->columns)
        types.push_back(column.type);
    EXPECT_THAT(types, ElementsAre("integer", "date", "real", "boolean", "text", ""));
    EXPECT_EQ(found->columns[0].cells.size(), 2U);
    table.path = write("long.txt", std::string(2'000'000, 'x'));
    EXPECT_THAT(inspectFile(table, 2).error().text, EndsWith("has a first row of more than 1 MiB"));
    table.path = write("empty.txt", "");
    EXPECT_THAT(inspectFile(table, 2).error().text, EndsWith("is empty"));
}

} // namespace
} // namespace tavix::profiling
