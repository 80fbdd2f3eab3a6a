#include "Program.h"
#include "base/tests/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace tavix::testing {
namespace {

using ::testing::HasSubstr;

/// A job with orders.csv and a table of its rows with a price above 2.
class RowsOfASource : public ::testing::Test {
  protected:
    void SetUp() override {
        write("orders.csv", "id,city,price\n1,Bern,2.5\n2,,3\n3,\"\",1\n4,Bern,\n5,\"a\nb\",7\n12345,x,8\n");
        write("job.yaml", "job: J\ntables:\n  - file: orders.csv\n  - name: dear\n    based on: orders\n"
                          "    where: \"`price` > 2\"\n");
        const Outcome profiled = runTavix({"profile", m_folder.file("job.yaml"), "-R", m_repository});
        ASSERT_EQ(profiled.exitCode, 0) << profiled.err;
    }

    void write(const std::string& name, const std::string& text) const {
        std::ofstream(m_folder.file(name), std::ios::binary) << text;
    }
    [[nodiscard]] Outcome run(std::vector<std::string> arguments, const std::string& format = "csv") const {
        arguments.insert(arguments.begin(), "rows");
        arguments.insert(arguments.end(), {"--format", format, "-R", m_repository});
        return runTavix(std::move(arguments));
    }

    TempFolder m_folder;
    std::string m_repository = m_folder.file("r.tavix");
};

TEST_F(RowsOfASource, AreThoseBehindTheFigureInEveryFormat) {
    const std::string head = "id,city,price\n";
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{"orders.city", "--value", "Bern"}, "1,Bern,2.5\n4,Bern,\n"},
        {{"dear.city", "--value", "Bern"}, "1,Bern,2.5\n"},
        {{"city", "--table", "orders", "--null"}, "2,,3\n"},
        {{"orders.city", "--value", ""}, "3,\"\",1\n"},
        {{"orders.price", "--value", ""}, ""},
        {{"city", "--value=", "--table", "orders"}, "3,\"\",1\n"},
        {{"orders.city", "--value", "a\nb"}, "5,\"a\nb\",7\n"},
        {{"orders.id", "--pattern", "9{5}"}, "12345,x,8\n"},
        {{"dear.id", "--pattern", "9"}, "1,Bern,2.5\n2,,3\n5,\"a\nb\",7\n"},
        {{"orders.city", "--value", "\xFF"}, ""},
        {{"orders.city", "--value", "Bern", "--limit", "0"}, ""},
        {{"orders.city", "--value", "Bern", "--limit", "9223372036854775807"}, "1,Bern,2.5\n4,Bern,\n"},
    };
    for (const auto& [arguments, rows] : cases) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.out, head + rows) << ::testing::PrintToString(arguments);
    }
    EXPECT_EQ(run({"orders.id", "--value", "5"}, "json").out,
              "[\n  {\"id\": 5, \"city\": \"a\\nb\", \"price\": 7}\n]\n");
    EXPECT_THAT(run({"orders.id", "--value", "2"}, "text").out, HasSubstr("(null value)"));
}

TEST_F(RowsOfASource, SayWhenTheSourceOrTheCountIsAnother) {
    EXPECT_EQ(run({"orders.city", "--value", "Bern"}).err, "");
    EXPECT_EQ(run({"orders.city", "--value", "Bern", "--limit", "1"}).err,
              "tavix: the first 1 rows of 2 in the run; --limit N shows more\n");
    write("orders.csv", "id,city,price\n1,Bern,2.5\n");
    const Outcome less = run({"orders.city", "--value", "Bern"});
    EXPECT_EQ(less.exitCode, 0);
    EXPECT_EQ(less.out, "id,city,price\n1,Bern,2.5\n");
    EXPECT_THAT(less.err, HasSubstr("changed since the run: it had 65 bytes and has 25 now."));
    EXPECT_THAT(less.err, HasSubstr("2 in the run, 1 now: the source changed since\n"));
    EXPECT_THAT(run({"orders.city", "--value", "Bern", "--limit", "1"}).err,
                ::testing::Not(HasSubstr("now: the source")));
    std::filesystem::remove(m_folder.file("orders.csv"));
    const Outcome gone = run({"orders.city", "--value", "Bern", "-o", m_folder.file("out.csv")});
    EXPECT_EQ(gone.exitCode, 3);
    EXPECT_THAT(gone.err, HasSubstr("cannot be opened: No such file or directory"));
    EXPECT_FALSE(std::filesystem::exists(m_folder.file("out.csv")));
}

TEST_F(RowsOfASource, AreReadAsTheJobReadThem) {
    write("a.csv", "k;v\n'x;y';1\nx;\"2\"\n");
    write("b.csv", "k;v\n'x;y';3\n");
    write("c.csv", "k;v\n\xC4;4\n");
    write("sets.yaml", "job: S\ntables:\n  - {name: set, files: ['[ab].csv'], quote: \"'\"}\n"
                       "  - {name: latin, file: c.csv, encoding: windows-1252}\n"
                       "  - {name: part, file: a.csv, quote: \"'\", sample: {first: 1}}\n");
    const Outcome profiled = runTavix({"profile", m_folder.file("sets.yaml"), "-R", m_repository});
    ASSERT_EQ(profiled.exitCode, 0) << profiled.err;
    const auto rows = [&](const std::string& field, const std::string& value) {
        const Outcome outcome = run({field, "--value", value, "--job", "S"});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        return outcome.out + outcome.err;
    };
    EXPECT_EQ(rows("set.k", "x;y"), "k,v\nx;y,1\nx;y,3\n");
    EXPECT_EQ(rows("set.v", "\"2\""), "k,v\nx,\"\"\"2\"\"\"\n");
    EXPECT_EQ(rows("latin.k", "\xC3\x84"), "k,v\n\xC3\x84,4\n");
    EXPECT_EQ(rows("part.k", "x;y"), "k,v\nx;y,1\ntavix: The run counted a sample of the rows; these are all.\n");
}

TEST_F(RowsOfASource, ThatDoNotFitAreThoseOfTheBreakdown) {
    std::string table = "n,age,note\n";
    for (int i = 1; i <= 40; ++i)
        table += std::to_string(i) + (i == 7 ? ",unknown," : i == 9 ? ",," : i == 11 ? ",\" \"," : ",30,") + "a\n";
    write("people.csv", table);
    const Outcome profiled = runTavix({"profile", m_folder.file("people.csv"), "--job", "P", "-R", m_repository});
    ASSERT_EQ(profiled.exitCode, 0) << profiled.err;
    const auto rows = [&](const std::string& field) { return run({field, "--misfit", "--job", "P"}); };
    EXPECT_EQ(rows("people.age").out, "n,age,note\n7,unknown,a\n");
    EXPECT_EQ(rows("people.age").err, "");
    EXPECT_EQ(rows("people.n").out, "n,age,note\n");
    EXPECT_EQ(rows("people.n").err, "tavix: all values of people.n fit the type integer\n");
    EXPECT_EQ(rows("people.note").exitCode, 2);
    EXPECT_EQ(rows("people.note").err,
              "tavix: people.note is a field of texts: there is no type that its values could fail to fit\n");
    write("people.csv", table + "41,none,a\n");
    EXPECT_EQ(rows("people.age").out, "n,age,note\n7,unknown,a\n41,none,a\n");
    EXPECT_THAT(rows("people.age").err, HasSubstr("1 in the run, 2 now: the source changed since\n"));
}

TEST_F(RowsOfASource, NeedExactlyOneChoice) {
    for (const auto& arguments : std::vector<std::vector<std::string>>{{"orders.city"},
                                                                       {"orders.city", "--null", "--value", "x"},
                                                                       {"orders.city", "--misfit", "--null"},
                                                                       {"orders.nix", "--null"},
                                                                       {"--null"}}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << ::testing::PrintToString(arguments);
        EXPECT_EQ(outcome.out, "");
    }
}

TEST_F(RowsOfASource, OfACompressedFileAreThoseOfTheFileInIt) {
    const std::string orders = m_folder.file("orders.csv");
    ASSERT_EQ(std::system(("gzip -c '" + orders + "' > '" + orders + ".gz' && cat '" + orders + ".gz' '" + orders +
                           ".gz' > '" + m_folder.file("twice.gz") + "'")
                              .c_str()),
              0);
    const std::string repository = m_folder.file("packed.tavix");
    const Outcome profiled =
        runTavix({"profile", orders + ".gz", m_folder.file("twice.gz"), "--job", "P", "-R", repository});
    ASSERT_EQ(profiled.exitCode, 0) << profiled.err;
    const auto rows = [&](const std::string& field, const std::vector<std::string>& which) {
        std::vector<std::string> arguments{"rows", field, "-R", repository, "--format", "csv"};
        arguments.insert(arguments.end(), which.begin(), which.end());
        const Outcome outcome = runTavix(arguments);
        EXPECT_EQ(outcome.err, "");
        return outcome.out;
    };
    EXPECT_EQ(rows("orders.city", {"--value", "Bern"}), "id,city,price\n1,Bern,2.5\n4,Bern,\n");
    EXPECT_EQ(rows("orders.id", {"--pattern", "9{5}"}), "id,city,price\n12345,x,8\n");
    EXPECT_EQ(rows("twice.price", {"--value", "8"}), "id,city,price\n12345,x,8\n12345,x,8\n");
    EXPECT_THAT(runTavix({"inspect", orders + ".gz", "--summary", "--format", "json"}).out,
                HasSubstr("\"compression\": \"gzip\""));
}

TEST_F(RowsOfASource, AFileThatIsNotTextIsRefusedUnlessItsFormIsStated) {
    const std::string image = m_folder.file("image.csv");
    write("image.csv", std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16));
    const std::string words =
        "image.csv\" is a PNG image, not text. State its encoding or delimiter to read it as text";
    for (const char* command : {"inspect", "profile"}) {
        const Outcome outcome = runTavix({command, image, "-R", m_repository});
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_THAT(outcome.err, HasSubstr(words));
        EXPECT_EQ(runTavix({command, image, "-R", m_repository, "--encoding", "1252"}).exitCode, 0);
        EXPECT_EQ(runTavix({command, image, "-R", m_repository, "--delimiter", "comma"}).exitCode, 0);
    }
    write("image.yaml", "job: I\ntables:\n  - file: image.csv\n");
    EXPECT_THAT(runTavix({"profile", m_folder.file("image.yaml"), "-R", m_repository}).err, HasSubstr(words));
    write("image.yaml", "job: I\ntables:\n  - file: image.csv\n    encoding: windows-1252\n");
    EXPECT_EQ(runTavix({"profile", m_folder.file("image.yaml"), "-R", m_repository}).exitCode, 0);
}

TEST_F(RowsOfASource, OfAFileThatWasMovedAreReadWhereItIsSaidToBe) {
    std::filesystem::create_directory(m_folder.file("new=place"));
    const std::string before = m_folder.file("orders.csv");
    const std::string after = m_folder.file("new=place/orders.csv");
    std::filesystem::rename(before, after);
    const std::vector<std::string> wanted{"orders.city", "--value", "x"};
    const Outcome gone = run(wanted);
    EXPECT_EQ(gone.exitCode, 3);
    EXPECT_THAT(gone.err, HasSubstr("; if it was moved, add --source \"" + before + "=NEW\"\n"));
    const auto with = [&](const std::string& places) {
        std::vector<std::string> arguments = wanted;
        arguments.insert(arguments.end(), {"--source", places});
        return run(arguments);
    };
    EXPECT_EQ(with(after).exitCode, 2);
    EXPECT_EQ(with(before + "=" + m_folder.file("nowhere")).exitCode, 2);
    EXPECT_EQ(with("/other/orders.csv=" + after).exitCode, 2);
    const Outcome found = with(before + "=" + after);
    EXPECT_EQ(found.exitCode, 0) << found.err;
    EXPECT_EQ(found.out, "id,city,price\n12345,x,8\n");
    EXPECT_EQ(found.err, "tavix: Read from \"" + after + "\".\n");
    EXPECT_EQ(run(wanted).out, found.out) << "it is remembered";

    std::filesystem::rename(after, m_folder.file("kept.csv"));
    std::filesystem::create_directory(m_folder.file(m_folder.path().filename().string()));
    std::filesystem::copy_file(m_folder.file("kept.csv"),
                               m_folder.file(m_folder.path().filename().string() + "/orders.csv"));
    EXPECT_THAT(run(wanted).err,
                HasSubstr("a file of the same name and size is in the folder of the repository: add --source \"" +
                          before + "=" + m_folder.path().string()));
}

TEST_F(RowsOfASource, AValueThatTheRunDoesNotHaveIsToldWithTheNearest) {
    const auto said = [&](std::vector<std::string> arguments) {
        const Outcome outcome = run(std::move(arguments));
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.out, "id,city,price\n");
        return outcome.err;
    };
    EXPECT_EQ(said({"orders.city", "--value", "BERN "}),
              "tavix: the run has no value \"BERN \" in orders.city; the nearest is \"Bern\"\n");
    EXPECT_EQ(said({"orders.city", "--value", "Barn"}),
              "tavix: the run has no value \"Barn\" in orders.city; the nearest is \"Bern\"\n");
    EXPECT_EQ(said({"orders.city", "--value", "nothing like it"}),
              "tavix: the run has no value \"nothing like it\" in orders.city\n");
    EXPECT_EQ(said({"orders.city", "--pattern", "Aaab"}),
              "tavix: the run has no pattern \"Aaab\" in orders.city; the nearest is \"Aaaa\"\n");
    EXPECT_EQ(said({"orders.price", "--value="}), "tavix: the run has no empty text in orders.price\n");
}

} // namespace
} // namespace tavix::testing
