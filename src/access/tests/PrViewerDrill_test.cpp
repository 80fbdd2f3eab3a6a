#include "access/SourceChange.h"
#include "access/tests/CursorText.h"
#include "access/tests/DrilledRuns.h"
#include "base/GenException.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class PrViewerDrill : public testing::DrilledRuns {};

constexpr const char* kFile = "id,city,price\n1,Köln,2.5\n2,,3\n3,\"\",1\n4,Köln,\n5,\"a\nb\",7\n6\n7,\xFF,8\n";

TEST_F(PrViewerDrill, GivesTheRowsBehindValuesNullsAndPatterns) {
    write(kFile);
    profile();
    EXPECT_THAT(rows("city", "Köln", false, true), ElementsAre("1|Köln|2.5", "4|Köln|<null>"));
    EXPECT_THAT(rows("city", "a\nb", false, true), ElementsAre("5|a\nb|7"));
    EXPECT_THAT(rows("city", "\xEF\xBF\xBD", false, true), ElementsAre("7|\xEF\xBF\xBD|8"));
    EXPECT_THAT(rows("city", "7"), IsEmpty());
    EXPECT_THAT(rows("city", KvbString(), false, true), ElementsAre("2|<null>|3", "6|<null>|<null>"));
    EXPECT_THAT(rows("city", "", false, true), ElementsAre("3||1"));
    EXPECT_THAT(rows("price", ""), ElementsAre("4", "6")); // no empty text in this field
    EXPECT_THAT(rows("price", "9", true), ElementsAre("2", "3", "5", "7"));
    EXPECT_THAT(rows("city", "", true), ElementsAre("3"));
    EXPECT_THAT(rows("city", "Aaaa", true), ElementsAre("1", "4"));

    EXPECT_EQ(count("city", "Köln"), 2);
    EXPECT_EQ(count("city", KvbString()), 2);
    EXPECT_EQ(count("city", ""), 1);
    EXPECT_EQ(count("price", ""), 2);
    EXPECT_EQ(count("price", "9", true), 4);
    EXPECT_EQ(count("price", "none"), 0);

    const PrViewerDrillCursorHandle cursor = open("id", "1");
    ASSERT_TRUE(cursor) << error();
    EXPECT_EQ(cursor->getColumnCount(), 3);
    EXPECT_EQ(cursor->getColumnName(2), KvbString("price"));
    EXPECT_THAT((std::vector{cursor->getColumnType(0), cursor->getColumnType(1), cursor->getColumnType(2)}),
                ElementsAre(kvbType::Integer, kvbType::Text, kvbType::Real));
    EXPECT_TRUE(cursor->getColumnValue(0).isNull());
    EXPECT_TRUE(cursor->getWarning().isNull());
    EXPECT_TRUE(cursor->getColumnName(3).isNull());
    m_viewer->close(); // not one of the source
    EXPECT_TRUE(cursor->next());
    EXPECT_EQ(cursor->getColumnValue(1), KvbString("Köln"));
    EXPECT_THAT(m_sink.texts, ElementsAre("Reading orders.csv"));
}

// This run's offset index is wrong about the value, which shows whether it is used.
TEST_F(PrViewerDrill, LooksWhereTheRunMetAValueWhileTheFileIsTheSame) {
    const std::string file = "id,city\n1,Bern\n2,Bern\n3,Bern\n";
    write(file);
    m_offsetIndex = {{}, {11, 22}, {8, 15, 22, 29, 29, 29, 29, 29, 29}};
    repository::OffsetIndexPacker packer(8);
    packer.add(repository::offsetIndexBucket(hashText(m_offsetIndex->seeds, "Bern")), std::vector<std::uint32_t>{1});
    m_pages = packer.finish();
    profile();
    EXPECT_THAT(rows("city", "Bern"), ElementsAre("2"));
    EXPECT_THAT(rows("city", "none"), IsEmpty());
    EXPECT_THAT(rows("city", "Aaaa", true), ElementsAre("1", "2", "3")) << "patterns have no offset index";
    std::filesystem::permissions(m_file, std::filesystem::perms::owner_all);
    EXPECT_THAT(rows("city", "Bern"), ElementsAre("1", "2", "3")) << "something was done with the file";

    write(file);
    profile();
    EXPECT_THAT(rows("city", "Bern"), ElementsAre("2")) << "the latest run";
    const auto modified = std::filesystem::last_write_time(m_file);
    write("id,city\n1,Bern\n2,Bonn\n3,Bern\n");
    std::filesystem::last_write_time(m_file, modified);
    EXPECT_THAT(rows("city", "Bern"), ElementsAre("1", "3")) << "size and time are those of the run";
}

TEST_F(PrViewerDrill, AFilteredTableHasOnlyItsOwnRows) {
    write(kFile);
    profile("`price` > 2");
    EXPECT_THAT(rows("some orders.city", "Köln"), ElementsAre("1"));
    EXPECT_THAT(rows("some orders.price", "9", true), ElementsAre("2", "5", "7"));
    EXPECT_THAT(rows("some orders.city", KvbString()), ElementsAre("2"));

    KvbString source, catalog, schema, table, object, field, query, filter;
    char kind = 0;
    int tableId = 0;
    ASSERT_TRUE(m_viewer->getDrilldownInfo(m_fields.at("some orders.city"), source, catalog, schema, table, object,
                                           kind, field, query, tableId, filter))
        << error();
    EXPECT_EQ(source, KvbString(m_folder.path().string()));
    EXPECT_THAT((std::vector{table.str(), object.str(), field.str(), query.str(), filter.str()}),
                ElementsAre("orders", "some orders", "city", "", "`price` > 2"));
    EXPECT_EQ(kind, 'D');
    TextFileInfo info;
    EXPECT_TRUE(m_viewer->getTextFileInfo(tableId, info)) << error();
    EXPECT_EQ(info.path, KvbString(m_file));
    EXPECT_FALSE(
        m_viewer->getDrilldownInfo(9999, source, catalog, schema, table, object, kind, field, query, tableId, filter));
    EXPECT_EQ(error(), "There is no field with the number 9999.");
}

TEST_F(PrViewerDrill, AConditionMeansWhatItMeantInItsRun) {
    const auto dear = [&] {
        write("id,city,price\n1,Bern,9\n2,Bern,10\n3,Bern,2\n4,Bern,abc\n");
        profile("`price` > 5");
        return rows("some orders.city", "Bern");
    };
    EXPECT_THAT(dear(), ElementsAre("1", "4")) << "a run of an older version compared texts";
    m_isExamined = true;
    EXPECT_THAT(dear(), ElementsAre("1", "4"));
    m_hasTypedExpressions = true;
    EXPECT_THAT(dear(), ElementsAre("1", "2"));
}

TEST_F(PrViewerDrill, GivesTheRowsThatMeetACondition) {
    write("id,city,price\n1,Bern,9\n2,,10\n3,Biel,\n4,\" \",free\n5,\"Bern\",x1\n");
    m_isExamined = true;
    m_hasTypedExpressions = true;
    profile("`id` < 5");
    EXPECT_THAT(rowsWhere("price", "not isblank(`Value`) and not fits(`Value`, 'integer')"), ElementsAre("4", "5"));
    EXPECT_THAT(rowsWhere("some orders.price", "not fits(`Value`, 'integer')"), ElementsAre("4"));
    EXPECT_THAT(rowsWhere("city", "isnull(`Value`)"), ElementsAre("2"));
    EXPECT_THAT(rowsWhere("price", "`Value` < 9"), ElementsAre("2")) << "texts, as in the list of values";
    EXPECT_FALSE(m_viewer->drillDownWhere(m_fields.at("price"), "`Count` > 1", &m_sink));
    EXPECT_EQ(error(), "line 1, column 1: there is no field `Count`");
    EXPECT_FALSE(m_viewer->drillDownWhere(9999, "true", &m_sink));
    EXPECT_EQ(error(), "There is no field with the number 9999.");
}

TEST_F(PrViewerDrill, FilesWithoutAHeadingAndLinesThatAreNotSplit) {
    write("x,1\n\ny,2\nx,3\n");
    profile({}, std::nullopt, false);
    EXPECT_THAT(rows("Column1", "x", false, true), ElementsAre("x|1", "x|3"));
    write("line\na,b\n\nc\n");
    profile({}, '\0');
    EXPECT_THAT(rows("line", "a,b"), ElementsAre("a,b"));
    EXPECT_THAT(rows("line", KvbString()), ElementsAre("<null>"));
}

TEST_F(PrViewerDrill, MatchingRowsBeginAtAnIndex) {
    write(kFile);
    profile();
    const auto matching = [&](int first) {
        const auto cursor = m_viewer->drillDownMatch(m_fields.at("city"), "Köln", nullptr, first);
        return cursor ? testing::rowsOf(*cursor) : std::vector<std::string>{error()};
    };
    EXPECT_THAT(matching(0), ElementsAre("1|Köln|2.5", "4|Köln|<null>"));
    EXPECT_THAT(matching(1), ElementsAre("4|Köln|<null>"));
    EXPECT_THAT(matching(2), IsEmpty());
    EXPECT_EQ(matching(-7), matching(0));
    const auto cursor = m_viewer->drillDownMatch(m_fields.at("city"), "Köln", nullptr, 1);
    ASSERT_TRUE(cursor->next());
    EXPECT_EQ(cursor->getColumnInt(0), 4);
    EXPECT_EQ(cursor->getColumnDouble(0), 4.0);
    EXPECT_TRUE(cursor->isColumnNull(2));
    EXPECT_FALSE(cursor->isColumnValid(3));

    m_sink.calls = 0;
    m_sink.allowed = 0;
    const auto stopped = m_viewer->drillDownMatch(m_fields.at("city"), "Köln", &m_sink, 0);
    ASSERT_TRUE(stopped);
    EXPECT_THROW(stopped->next(), GenException) << "a list that was cut reads as a whole one";
}

TEST_F(PrViewerDrill, ASourceThatChangedStillGivesItsRowsAndSaysSo) {
    write(kFile);
    profile();
    const auto warning = [&] {
        const auto cursor = open("city", "Köln");
        return cursor ? cursor->getWarning().str() : "failed: " + error();
    };
    const std::string name = "\"" + m_file + "\"";

    std::filesystem::last_write_time(m_file, std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_EQ(warning(), name + " was written anew since the run; its size is the same.");
    write("price,city,id\n7,Köln,1\n");
    EXPECT_EQ(warning(), name + " changed since the run: it had " + std::to_string(std::string_view(kFile).size()) +
                             " bytes and has 24 now. The columns are others than in the run: \"price\", \"city\", "
                             "\"id\".");
    EXPECT_THAT(rows("city", "Köln", false, true), ElementsAre("7|Köln|1"));
    EXPECT_EQ(open("city", "Köln")->getColumnType(0), kvbType::Real);
    EXPECT_EQ(sourceChangeText(1204, 1198), "1,204 in the run, 1,198 now: the source changed since");
    EXPECT_EQ(sourceChangeText(5, 5), "");

    write("price,town,id\n7,Köln,1\n");
    EXPECT_FALSE(open("city", "Köln"));
    EXPECT_EQ(error(), name + " has no column \"city\" any more; it has \"price\", \"town\", \"id\".");
    std::filesystem::remove(m_file);
    EXPECT_FALSE(open("city", KvbString()));
    EXPECT_EQ(error(), name + " cannot be opened: No such file or directory");
    ASSERT_EQ(::mkfifo(m_file.c_str(), 0600), 0);
    EXPECT_FALSE(open("city", "Köln"));
    EXPECT_EQ(error(), name + " is not a file that can be read again.");
}

TEST_F(PrViewerDrill, TheSinkStopsAndAFileThatShrinksThrows) {
    std::string text = "id,city,price\n";
    while (text.size() < 30'000'000)
        text += "1,Köln,2\n";
    write(text);
    profile();
    for (const KvbString& value : {KvbString("Köln"), KvbString("\xEF\xBF\xBD")}) {
        m_sink.calls = 0;
        m_sink.allowed = 2;
        const PrViewerDrillCursorHandle stopped = open("city", value);
        try {
            while (stopped->next()) {
            }
            ADD_FAILURE() << "it read to its end";
        } catch (const GenException& stop) {
            EXPECT_EQ(stop.getText(), KvbString("The reading was stopped."));
        }
        EXPECT_FALSE(stopped->isComplete());
        EXPECT_FALSE(stopped->next());
        EXPECT_EQ(m_sink.calls, 3); // not called again once it has stopped the reading
    }
    m_sink.allowed = 1'000'000;
    const PrViewerDrillCursorHandle cursor = open("city", "Köln");
    ASSERT_TRUE(cursor->next());
    std::filesystem::resize_file(m_file, 20'000'000);
    std::size_t good = 1;
    try {
        while (cursor->next())
            ++good;
        ADD_FAILURE() << "nothing was thrown";
    } catch (const GenException& failure) {
        EXPECT_EQ(failure.getText(), KvbString("\"" + m_file + "\" changed its size while it was read"));
    }
    EXPECT_GT(good, 1'000'000U);
    EXPECT_FALSE(cursor->next());
    EXPECT_FALSE(cursor->isComplete());
    EXPECT_TRUE(cursor->getColumnValue(0).isNull());
}

} // namespace
} // namespace tavix
