#include "base/HeldRepositories.h"
#include "base/tests/TempFolder.h"
#include "cli/CommandError.h"
#include "cli/TableWriter.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace tavix::cli {
namespace {

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

struct List {
    Section section;
    std::vector<Row> rows;
};

std::string written(const WriterOptions& options, const std::vector<List>& lists) {
    const tavix::testing::TempFolder folder;
    const std::string path = folder.file("out");
    Output output(path);
    const std::unique_ptr<TableWriter> writer = makeTableWriter(options, output);
    for (const List& list : lists) {
        writer->begin(list.section);
        for (const Row& row : list.rows)
            writer->row(row);
        writer->end();
    }
    writer->finish();
    output.commit();
    return contentOf(path);
}

const Section kValues{
    "values", "Values of t.f", {{"value", "Value"}, {"count", "Count", Column::Kind::Number}}, false, "(null value)"};

TEST(TextTableWriter, AlignsByDisplayWidthAndNumbersToTheRight) {
    EXPECT_EQ(written({}, {{kValues, {{"日本", 7}, {KvbDatavar(), 12345678}, {"a\nb", 1}}}}),
              "Value            Count\n"
              "------------  --------\n"
              "日本                 7\n"
              "(null value)  12345678\n"
              "a\\nb                 1\n");
    EXPECT_EQ(written({}, {{kValues, {}}}), "(none)\n");
}

TEST(TableWriter, FiguresOverWhatFitsAreMarkedInTextAndHaveColumnsElsewhere) {
    Section figures{
        "figures",
        "Figures",
        {{"name", "Name"}, {"count", "Count", Column::Kind::Number}, {"mean", "Mean", Column::Kind::Number}}};
    figures.columns[2].isMarked = true;
    figures.fitColumn = static_cast<int>(figures.columns.size());
    figures.columns.push_back({"fits", "Fits"});
    const std::vector<Row> rows{
        {"a", 3, 1.5, "integer"}, {"b", 4, 2.5, KvbDatavar()}, {"c", 5, KvbDatavar(), "integer"}};
    EXPECT_EQ(written({}, {{figures, rows}}), "Name  Count        Mean\n"
                                              "----  -----  ----------\n"
                                              "a         3  1.5 (fits)\n"
                                              "b         4         2.5\n"
                                              "c         5           -\n");
    EXPECT_EQ(written({.format = Format::Csv}, {{figures, rows}}), "name,count,mean,fits\n"
                                                                   "a,3,1.5,integer\n"
                                                                   "b,4,2.5,\n"
                                                                   "c,5,,integer\n");
    figures.isRecord = true;
    EXPECT_EQ(written({}, {{figures, {rows[0]}}}), "Name   a\nCount  3\nMean   1.5 (fits)\n");
}

TEST(TextTableWriter, ComputedFiguresAreRoundedAndValuesAreNot) {
    const Section figures{"figures",
                          "Figures",
                          {{"value", "Value", Column::Kind::Number},
                           {"mean", "Mean", Column::Kind::Number, -1, true},
                           {"percent", "%", Column::Kind::Number, 2, true},
                           {"real", "Real", Column::Kind::Number}}};
    const List list{figures, {{"1.2909944487358056", "1.2909944487358056", "33.33333333333333", 0.1 + 0.2}}};
    EXPECT_EQ(written({}, {list}), "             Value      Mean      %  Real\n"
                                   "------------------  --------  -----  ----\n"
                                   "1.2909944487358056  1.290994  33.33   0.3\n");
    EXPECT_EQ(written({Format::Csv}, {list}), "value,mean,percent,real\n1.2909944487358056,1.2909944487358056,"
                                              "33.33333333333333,0.30000000000000004\n");
}

TEST(TextTableWriter, ProseGoesOnBelowItself) {
    const Section notes{"notes", "Notes", {{"user", "User"}, {"note", "Note", Column::Kind::Prose}}};
    const std::string word(40, 'x');
    EXPECT_EQ(written({}, {{notes, {{"ada", "one\n\ntwo"}, {"grace", word + " " + word}, {"bob", KvbDatavar()}}}}),
              "User   Note\n"
              "-----  ----------------------------------------\n"
              "ada    one\n"
              "\n"
              "       two\n"
              "grace  " +
                  word + "\n       " + word + "\nbob    -\n");
    EXPECT_EQ(written({Format::Csv}, {{notes, {{"ada", "one\n\ntwo"}}}}), "user,note\nada,\"one\n\ntwo\"\n");
}

TEST(TextTableWriter, RowsBehindTheSettledWidthsStillCome) {
    std::vector<Row> rows(1500, Row{"ab", 1});
    rows.push_back({"much wider", 123456});
    const std::string text = written({}, {{kValues, rows}});
    EXPECT_TRUE(text.ends_with("ab         1\nmuch wider  123456\n"));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1503);
}

TEST(TextTableWriter, SeveralListsHaveTitlesAndARecordALinePerColumn) {
    Section record = kValues;
    record.isRecord = true;
    record.columns[1].places = 2;
    EXPECT_EQ(written({Format::Text, Sections::Several}, {{record, {{"x", 0.125}}}, {kValues, {}}}),
              "Values of t.f\nValue  x\nCount  0.12\n\nValues of t.f\n(none)\n");
}

TEST(TextTableWriter, ProseOfARecordGoesOnBelowItself) {
    Section record{"note", "Note", {{"note", "Note", Column::Kind::Prose}, {"written_by", "Written by"}}};
    record.isRecord = true;
    const std::string word(40, 'x');
    EXPECT_EQ(written({}, {{record, {{word + " " + word, "ada"}}}}),
              "Note        " + word + "\n            " + word + "\nWritten by  ada\n");
}

TEST(CsvTableWriter, QuotesWhatNeedsItAndTellsNullFromEmpty) {
    EXPECT_EQ(written({Format::Csv}, {{kValues,
                                       {{"plain", 1},
                                        {KvbDatavar(), 2},
                                        {"", 3},
                                        {"a,b", 4},
                                        {"say \"a\"", 5},
                                        {"two\nlines", 6},
                                        {"=1+1", 7}}}}),
              "value,count\nplain,1\n,2\n\"\",3\n\"a,b\",4\n\"say \"\"a\"\"\",5\n\"two\nlines\",6\n=1+1,7\n");
}

TEST(CsvTableWriter, MarksFormulasOnlyWhenAskedAndNeverNumbers) {
    EXPECT_EQ(written({Format::Csv, Sections::One, true},
                      {{kValues, {{"=1+1", -1}, {"-5", 2}, {"+1e3", 3}, {"-x", 4}, {"@a,b", 5}, {"", 6}}}}),
              "value,count\n'=1+1,-1\n-5,2\n+1e3,3\n'-x,4\n\"'@a,b\",5\n\"\",6\n");
}

TEST(JsonTableWriter, NumbersAreNumbersDigitForDigitAndTextStaysText) {
    const Section section{
        "fields",
        "",
        {{"field", ""}, {"type", ""}, {"min", "", Column::Kind::TypedValue}, {"mean", "", Column::Kind::Number}},
        false,
        "-",
        1};
    const std::string text = written({Format::Json}, {{section,
                                                       {{"a", "integer", "12345678901234567890123", 1.5},
                                                        {"b", "text", "12", KvbDatavar()},
                                                        {"c", "real", "+1.50", "0.10"},
                                                        {"\xff", KvbDatavar(), "007", "nan"}}}});
    EXPECT_EQ(text, "[\n"
                    R"(  {"field": "a", "type": "integer", "min": 12345678901234567890123, "mean": 1.5},)"
                    "\n"
                    R"(  {"field": "b", "type": "text", "min": "12", "mean": null},)"
                    "\n"
                    R"(  {"field": "c", "type": "real", "min": "+1.50", "mean": 0.10},)"
                    "\n"
                    "  {\"field\": \"\uFFFD\", \"type\": null, \"min\": \"007\", \"mean\": \"nan\"}\n]\n");
    EXPECT_TRUE(nlohmann::json::accept(text));
}

TEST(JsonTableWriter, SeveralListsAreMembersOfOneObject) {
    Section record = kValues;
    record.key = "one";
    record.isRecord = true;
    const auto json = nlohmann::json::parse(
        written({Format::Json, Sections::Several}, {{record, {{"x", 1}}}, {kValues, {}}, {record, {}}}), nullptr);
    EXPECT_EQ(json.at("values"), nlohmann::json::array());
    EXPECT_EQ(nlohmann::json::parse(written({Format::Json}, {{kValues, {}}})), nlohmann::json::array());
    EXPECT_EQ(nlohmann::json::parse(written({Format::Json}, {{record, {{"x", 1}}}})).at("count"), 1);
}

TEST(Output, AFileAppearsWholeOrStaysAsItWas) {
    const tavix::testing::TempFolder folder;
    const std::string path = folder.file("out.csv");
    std::ofstream(path) << "before";
    {
        Output dropped(path);
        dropped.write("half");
    }
    EXPECT_EQ(contentOf(path), "before");
    std::filesystem::create_symlink("out.csv", folder.path() / "link.csv");
    Output kept(folder.file("link.csv"));
    kept.write("after");
    kept.commit();
    EXPECT_EQ(contentOf(path), "after");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / "link.csv"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
    EXPECT_THROW(Output(folder.file("none/out.csv")), CommandError);
    EXPECT_THROW(Output(folder.path().string()), CommandError);
    {
        const HeldRepository held(folder.file("../" + folder.path().filename().string() + "/out.csv"));
        EXPECT_THROW(Output{path}, CommandError);
        EXPECT_THROW(Output(folder.file("link.csv")), CommandError);
        const HeldRepository toBeMade(folder.file("new.tavix"));
        EXPECT_THROW(Output(folder.file("new.tavix-wal")), CommandError);
    }
    EXPECT_EQ(contentOf(path), "after");
    Output full("/dev/full");
    EXPECT_THROW(
        {
            full.write("x");
            full.commit();
        },
        CommandError);
}

} // namespace
} // namespace tavix::cli
