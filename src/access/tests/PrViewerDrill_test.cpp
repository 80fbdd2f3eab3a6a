#include "access/PrViewDisplayMessage.h"
#include "access/PrViewer.h"
#include "access/SourceChange.h"
#include "access/tests/CursorText.h"
#include "base/GenException.h"
#include "base/tests/TempFolder.h"
#include "pattern/CharacterPattern.h"
#include "repository/FilePlaces.h"
#include "repository/RunWriter.h"
#include "source/FileSetReader.h"
#include "source/TextFileReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <set>

namespace tavix {
namespace {

using repository::FieldFacts;
using repository::RunWriter;
using repository::TableFacts;
using repository::ValueCount;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* kFile = "id,city,price\n1,Köln,2.5\n2,,3\n3,\"\",1\n4,Köln,\n5,\"a\nb\",7\n6\n7,\xFF,8\n";

class Sink final : public PrViewDisplayMessage {
  public:
    bool progress(std::string_view text, std::int64_t done, std::int64_t total) override {
        EXPECT_LE(done, total);
        texts.emplace(text);
        return calls++ < allowed;
    }

    std::set<std::string> texts;
    int calls = 0;
    int allowed = 1000;
};

/// A run over text files, stored as the runner stores one.
class PrViewerDrillTest : public ::testing::Test {
  protected:
    void write(const std::string& text) const { std::ofstream(m_file, std::ios::binary) << text; }

    /// Stores a run of the file as it is; of a filtered table over it too when there is a condition.
    void profile(const std::string& condition = {}, std::optional<char> delimiter = {}, bool hasHeader = true) {
        auto writer = RunWriter::begin(m_repository, {"Job", "", "", {}});
        ASSERT_TRUE(writer) << writer.error().text;
        addTable(**writer, {}, delimiter, hasHeader);
        if (!condition.empty())
            addTable(**writer, condition, delimiter, hasHeader);
        show(**writer);
    }

    /// Stores a run of several files as one table; the delimiter and the encoding are those that it notes.
    void profileFiles(const std::vector<std::string>& files, char delimiter, const std::string& encoding) {
        auto writer = RunWriter::begin(m_repository, {"Job", "", "", {}});
        ASSERT_TRUE(writer) << writer.error().text;
        auto reader = source::FileSetReader::open(files, {});
        ASSERT_TRUE(reader && (*reader)->checkColumns());
        TableFacts table;
        table.dataSource = m_folder.path().string();
        table.name = "orders";
        table.isTextFile = true;
        table.textFile = {m_folder.file("*.csv"), delimiter, true, encoding, false, (*reader)->total(),
                          (*reader)->modified(),  '"',       files};
        store(**writer, table, **reader);
        show(**writer);
    }

    void show(RunWriter& writer) {
        ASSERT_TRUE(writer.commit({}));
        ASSERT_TRUE(m_viewer->init(m_repository)) << error();
        ASSERT_TRUE(m_viewer->setCurrentJobSetup(writer.jobId())) << error();
        readFieldIds();
    }

    void addTable(RunWriter& writer, const std::string& condition, std::optional<char> delimiter, bool hasHeader) {
        auto reader = source::TextFileReader::open(m_file, {delimiter, hasHeader});
        ASSERT_TRUE(reader) << reader.error().text;
        TableFacts table;
        table.dataSource = m_folder.path().string();
        table.name = "orders";
        if (!condition.empty()) {
            table.objectName = "some orders";
            table.kind = repository::TableKind::Filter;
            table.filter = condition;
        }
        table.isTextFile = true;
        table.textFile = {
            m_file, (*reader)->delimiter(), hasHeader, "UTF-8", false, (*reader)->total(), (*reader)->modified()};
        if (m_places)
            m_places->stamp = (*reader)->stamp();
        table.places = m_places ? &*m_places : nullptr;
        store(writer, table, **reader);
    }

    /// With the figures of the rows that come first.
    void store(RunWriter& writer, const TableFacts& table, source::RowReader& reader) {
        const auto id = writer.addTable(table);
        ASSERT_TRUE(id) << id.error().text;
        source::RowBlock block;
        ASSERT_TRUE(reader.read(block).ok());
        for (std::size_t c = 0; c < block.columns.size(); ++c)
            addField(writer, *id, reader.columnNames()[c], {block.columns[c].data(), block.rows}, c);
    }

    void addField(RunWriter& writer, int table, const std::string& name, std::span<const source::Cell> cells,
                  std::size_t column) {
        std::map<std::string, std::uint64_t> values;
        std::map<std::string, std::uint64_t> patterns;
        std::int64_t nulls = 0;
        for (const source::Cell& cell : cells) {
            const std::string text(cell.isNull ? "" : std::string(cell.data, cell.size));
            nulls += cell.isNull ? 1 : 0;
            if (!cell.isNull) {
                ++values[text];
                ++patterns[pattern::characterPattern(text)];
            }
        }
        FieldFacts facts;
        facts.name = name;
        facts.ordinal = static_cast<int>(column) + 1;
        facts.typeCode = "ISR"[std::min<std::size_t>(column, 2)];
        facts.metrics[index(MetricId::NullCount)] = nulls;
        facts.metrics[index(MetricId::MinimumLength)] = values.contains("") ? 0 : 1;
        const auto rowsOf = [](const auto& counts) {
            std::vector<ValueCount> rows;
            for (const auto& [text, count] : counts)
                rows.push_back({text, count, false});
            return rows;
        };
        const auto valueRows = rowsOf(values);
        const auto patternRows = rowsOf(patterns);
        facts.values = valueRows;
        facts.patterns = patternRows;
        facts.places = m_pages;
        const Status added = writer.addField(table, facts);
        ASSERT_TRUE(added) << added.error().text;
    }

    void readFieldIds() {
        const ProfileCursorHandle tables = m_viewer->getTableList(-1);
        while (tables->next()) {
            const KvbString object = tables->getColumnValue(3);
            const ProfileCursorHandle fields = m_viewer->getFieldList(tables->getColumnInt(1));
            while (fields->next())
                m_fields[(object.isEmpty() ? "" : object.str() + ".") + fields->getColumnValue(1).str()] =
                    fields->getColumnInt(0);
        }
    }

    PrViewerDrillCursorHandle open(const std::string& field, const KvbString& value, bool isPattern = false) {
        return m_viewer->drillDown(m_fields.at(field), value, isPattern, &m_sink, nullptr);
    }
    /// As a user would read them; the first cells alone unless `whole`.
    std::vector<std::string> rows(const std::string& field, const KvbString& value, bool isPattern = false,
                                  bool whole = false) {
        const PrViewerDrillCursorHandle cursor = open(field, value, isPattern);
        if (!cursor) {
            ADD_FAILURE() << error();
            return {};
        }
        std::vector<std::string> rows;
        while (cursor->next()) {
            std::string& row = rows.emplace_back();
            for (int column = 0; column < (whole ? cursor->getColumnCount() : 1); ++column) {
                const KvbString text = cursor->getColumnValue(column);
                row += (column > 0 ? "|" : "") + (text.isNull() ? "<null>" : text.str());
            }
        }
        EXPECT_TRUE(cursor->isComplete());
        return rows;
    }
    [[nodiscard]] std::string error() const { return m_viewer->getErrorString().str(); }
    [[nodiscard]] std::int64_t count(const std::string& field, const KvbString& value, bool isPattern = false) {
        return m_viewer->getDrillDownCount(m_fields.at(field), value, isPattern);
    }

    testing::TempFolder m_folder;
    std::string m_file = m_folder.file("orders.csv");
    std::string m_repository = m_folder.file("r.tavix");
    PrViewer::Handle m_viewer = PrViewer::create();
    std::map<std::string, int> m_fields;
    Sink m_sink;
    std::optional<repository::FilePlaces> m_places; ///< what the run notes of the file, and of all of its fields
    std::vector<repository::PlacePage> m_pages;
};

TEST_F(PrViewerDrillTest, GivesTheRowsBehindValuesNullsAndPatterns) {
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
    m_viewer->close(); // the source is not the repository's
    EXPECT_TRUE(cursor->next());
    EXPECT_EQ(cursor->getColumnValue(1), KvbString("Köln"));
    EXPECT_THAT(m_sink.texts, ElementsAre("Reading orders.csv"));
}

// The run of this test is wrong about where the value stands, which shows whether it is asked.
TEST_F(PrViewerDrillTest, LooksWhereTheRunMetAValueWhileTheFileIsTheSame) {
    const std::string file = "id,city\n1,Bern\n2,Bern\n3,Bern\n";
    write(file);
    m_places = {{}, {11, 22}, {8, 15, 22, 29, 29, 29, 29, 29, 29}};
    repository::PlacePacker packer(8);
    packer.add(repository::placeBucket(hashText(m_places->seeds, "Bern")), std::vector<std::uint32_t>{1});
    m_pages = packer.finish();
    profile();
    EXPECT_THAT(rows("city", "Bern"), ElementsAre("2"));
    EXPECT_THAT(rows("city", "none"), IsEmpty());
    EXPECT_THAT(rows("city", "Aaaa", true), ElementsAre("1", "2", "3")) << "patterns have no places";
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

TEST_F(PrViewerDrillTest, AFilteredTableHasOnlyItsOwnRows) {
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

TEST_F(PrViewerDrillTest, FilesWithoutAHeadingAndLinesThatAreNotSplit) {
    write("x,1\n\ny,2\nx,3\n");
    profile({}, std::nullopt, false);
    EXPECT_THAT(rows("Column1", "x", false, true), ElementsAre("x|1", "x|3"));
    write("line\na,b\n\nc\n");
    profile({}, '\0');
    EXPECT_THAT(rows("line", "a,b"), ElementsAre("a,b"));
    EXPECT_THAT(rows("line", KvbString()), ElementsAre("<null>"));
}

TEST_F(PrViewerDrillTest, MatchingRowsBeginAtAnIndex) {
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
}

TEST_F(PrViewerDrillTest, ASourceThatChangedStillGivesItsRowsAndSaysSo) {
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
    EXPECT_EQ(error(), name + " is no file that can be read again.");
}

TEST_F(PrViewerDrillTest, FilesOfATableHaveTheirOwnDelimitersAndEncodings) {
    const std::vector<std::string> files{m_folder.file("1.csv"), m_folder.file("2.csv"), m_folder.file("3.csv")};
    const auto put = [&](std::size_t file, std::string_view text) {
        std::ofstream(files[file], std::ios::binary) << text;
    };
    put(0, "id;city\n1;\"Köln\"\n2;Bern\n");
    put(1, "id,city\n3,K\xF6ln\n4,\n");
    put(2, "id\tcity\n5\tKöln\n6\t\"a\"\"b\"\n");
    // The first files are older than the last.
    std::filesystem::last_write_time(files[0], std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    profileFiles(files, '\t', "UTF-8");
    EXPECT_THAT(rows("city", "Köln", false, true), ElementsAre("1|Köln", "3|Köln", "5|Köln"));
    EXPECT_THAT(rows("city", "Bern"), ElementsAre("2"));
    EXPECT_THAT(rows("city", "none"), IsEmpty());
    EXPECT_THAT(rows("city", "a\"b"), ElementsAre("6"));
    EXPECT_THAT(rows("city", KvbString()), ElementsAre("4"));
    EXPECT_THAT(rows("city", "Aaaa", true), ElementsAre("1", "2", "3", "5"));
    EXPECT_TRUE(open("city", "Köln")->getWarning().isNull());
    EXPECT_THAT(m_sink.texts, ElementsAre("Reading *.csv"));

    const std::string pattern = "\"" + m_folder.file("*.csv") + "\"";
    std::filesystem::last_write_time(files[1], std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_EQ(open("city", "Köln")->getWarning().str(),
              pattern + " was written anew since the run; its size is the same.");
    put(1, "id,city\n3,K\xF6ln\n");
    EXPECT_EQ(open("city", "Köln")->getWarning().str(),
              pattern + " changed since the run: it had 68 bytes and has 65 now.");
    put(1, "id,town\n3,K\xF6ln\n");
    EXPECT_FALSE(open("city", "Köln"));
    EXPECT_THAT(error(), HasSubstr("the files of a table have the same columns"));
    std::filesystem::remove(files[1]);
    EXPECT_FALSE(open("city", "Köln"));
    EXPECT_EQ(error(), "\"" + files[1] + "\" cannot be opened: No such file or directory");

    // What the job states holds for files too that look otherwise.
    put(0, "id,city\n1,K\xC3\xB6ln\n");
    put(1, "id,city\n2,\x80;\n");
    put(2, "id,city\n3,K\xC3\xB6ln\n");
    profileFiles(files, ',', "windows-1252");
    EXPECT_THAT(rows("city", "KÃ¶ln"), ElementsAre("1", "3"));
    EXPECT_THAT(rows("city", "€;"), ElementsAre("2"));
}

// The first of two files is searched through before the second is looked at.
TEST_F(PrViewerDrillTest, OfSeveralFilesOneIsReadAfterTheOther) {
    const std::vector<std::string> files{m_folder.file("1.csv"), m_folder.file("2.csv")};
    std::string text = "id,city\n";
    while (text.size() < 20'000'000)
        text += "1,Bern\n";
    for (const std::string& file : files)
        std::ofstream(file, std::ios::binary) << text << "2,Ulm\n";
    profileFiles(files, ',', "UTF-8");
    EXPECT_THAT(rows("city", "Ulm"), ElementsAre("2", "2"));
    const int calls = m_sink.calls;
    EXPECT_GE(calls, 5) << "told of its progress within a file";
    m_sink.allowed = calls + 2;
    const PrViewerDrillCursorHandle stopped = open("city", "Ulm");
    EXPECT_FALSE(stopped->next());
    EXPECT_FALSE(stopped->isComplete());

    m_sink.allowed = 1'000'000;
    for (const bool isGone : {false, true}) {
        const PrViewerDrillCursorHandle cursor = open("city", "Ulm");
        ASSERT_TRUE(cursor->next());
        if (isGone)
            std::filesystem::remove(files[1]);
        else
            std::filesystem::resize_file(files[1], 10'000'000);
        const std::string expected = "\"" + files[1] + (isGone ? "\" cannot be opened: No such file or directory" : "");
        try {
            EXPECT_FALSE(cursor->next());
            EXPECT_FALSE(isGone) << "nothing was thrown";
            EXPECT_TRUE(cursor->isComplete()) << "the file was not open yet when it was cut";
        } catch (const GenException& failure) {
            EXPECT_EQ(failure.getText(), KvbString(expected));
        }
    }
}

TEST_F(PrViewerDrillTest, TheSinkStopsAndAFileThatShrinksThrows) {
    std::string text = "id,city,price\n";
    while (text.size() < 30'000'000)
        text += "1,Köln,2\n";
    write(text);
    profile();
    for (const KvbString& value : {KvbString("Köln"), KvbString("\xEF\xBF\xBD")}) {
        m_sink.calls = 0;
        m_sink.allowed = 2;
        const PrViewerDrillCursorHandle stopped = open("city", value);
        while (stopped->next()) {
        }
        EXPECT_FALSE(stopped->isComplete());
        EXPECT_FALSE(stopped->next());
        EXPECT_EQ(m_sink.calls, 3); // not asked again once it has stopped the reading
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
