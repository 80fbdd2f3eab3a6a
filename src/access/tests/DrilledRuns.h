#pragma once

#include "access/PrViewDisplayMessage.h"
#include "access/PrViewer.h"
#include "base/tests/TempFolder.h"
#include "pattern/tests/PatternOf.h"
#include "repository/FileOffsetIndex.h"
#include "repository/RunWriter.h"
#include "source/FileSetReader.h"
#include "source/TextFileReader.h"
#include "sql/Connection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace tavix::testing {

/// Receives progress, and stops the reading after a number of calls.
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

/// A run over text files, stored as the runner stores it.
class DrilledRuns : public ::testing::Test {
  protected:
    void write(const std::string& text) const { std::ofstream(m_file, std::ios::binary) << text; }

    /// Stores a run of the file as it is; with a condition, also of a filtered table over it.
    void profile(const std::string& condition = {}, std::optional<char> delimiter = {}, bool hasHeader = true) {
        repository::RunDescription description{"Job", "", "", {}};
        description.isExamined = m_isExamined;
        description.hasTypedExpressions = m_hasTypedExpressions;
        auto writer = repository::RunWriter::begin(m_repository, description);
        ASSERT_TRUE(writer) << writer.error().text;
        addTable(**writer, {}, delimiter, hasHeader);
        if (!condition.empty())
            addTable(**writer, condition, delimiter, hasHeader);
        show(**writer);
    }

    /// Stores a run of several files as one table, with the format found in each file.
    void profileFiles(const std::vector<std::string>& files, bool hasHeader = true) {
        auto writer = repository::RunWriter::begin(m_repository, {"Job", "", "", {}});
        ASSERT_TRUE(writer) << writer.error().text;
        auto reader = source::FileSetReader::open(files, {std::nullopt, hasHeader});
        ASSERT_TRUE(reader && (*reader)->checkColumns());
        repository::TableFacts table;
        table.dataSource = m_folder.path().string();
        table.name = "orders";
        table.isTextFile = true;
        table.textFile.path = m_folder.file("*.csv");
        table.textFile.hasHeader = hasHeader;
        table.textFile.size = (*reader)->total();
        table.textFile.modified = (*reader)->modified();
        for (const std::string& file : files) {
            const auto one = source::TextFileReader::open(file, {std::nullopt, hasHeader});
            ASSERT_TRUE(one);
            table.textFile.files.push_back({file, (*one)->delimiter(), (*one)->encoding().encoding->name,
                                            (*one)->hasByteOrderMark(), (*one)->fileSize(), (*one)->modified()});
        }
        table.textFile.delimiter = table.textFile.files.back().delimiter;
        table.textFile.encoding = table.textFile.files.back().encoding;
        store(**writer, table, **reader);
        show(**writer);
    }
    /// The same as versions before 6 stored it: with delimiter and encoding of the last file only.
    void profileFilesAsOnce(const std::vector<std::string>& files, char delimiter, const std::string& encoding) {
        profileFiles(files);
        const auto repository = sql::Connection::openFile(m_repository, sql::OpenMode::Write);
        ASSERT_TRUE(repository &&
                    (*repository)
                        ->execute(("UPDATE run_file SET delimiter = NULL, encoding = NULL, byte_order_mark = NULL, "
                                   "size = NULL, modified = NULL; UPDATE run_table SET file_delimiter = '" +
                                   std::string(1, delimiter) + "', file_encoding = '" + encoding + "'")
                                      .c_str())
                        .ok());
    }

    void show(repository::RunWriter& writer) {
        ASSERT_TRUE(writer.commit({}));
        ASSERT_TRUE(m_viewer->init(m_repository)) << error();
        ASSERT_TRUE(m_viewer->setCurrentJobSetup(writer.jobId())) << error();
        readFieldIds();
    }

    void addTable(repository::RunWriter& writer, const std::string& condition, std::optional<char> delimiter,
                  bool hasHeader) {
        auto reader = source::TextFileReader::open(m_file, {delimiter, hasHeader});
        ASSERT_TRUE(reader) << reader.error().text;
        repository::TableFacts table;
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
        if (m_offsetIndex)
            m_offsetIndex->stamp = (*reader)->stamp();
        table.offsetIndex = m_offsetIndex ? &*m_offsetIndex : nullptr;
        store(writer, table, **reader);
    }

    /// With the metrics of the first rows.
    void store(repository::RunWriter& writer, const repository::TableFacts& table, source::RowReader& reader) {
        const auto id = writer.addTable(table);
        ASSERT_TRUE(id) << id.error().text;
        source::RowBlock block;
        ASSERT_TRUE(reader.read(block).ok());
        for (std::size_t c = 0; c < block.columns.size(); ++c)
            addField(writer, *id, reader.columnNames()[c], {block.columns[c].data(), block.rows}, c);
    }

    void addField(repository::RunWriter& writer, int table, const std::string& name,
                  std::span<const source::Cell> cells, std::size_t column) {
        std::map<std::string, std::uint64_t> values;
        std::map<std::string, std::uint64_t> patterns;
        std::int64_t nulls = 0;
        for (const source::Cell& cell : cells) {
            const std::string text(cell.isNull ? "" : std::string(cell.data, cell.size));
            nulls += cell.isNull ? 1 : 0;
            if (!cell.isNull) {
                ++values[text];
                ++patterns[patternOf(text)];
            }
        }
        repository::FieldFacts facts;
        facts.name = name;
        facts.ordinal = static_cast<int>(column) + 1;
        facts.typeCode = "ISR"[std::min<std::size_t>(column, 2)];
        facts.metrics[index(MetricId::NullCount)] = nulls;
        facts.metrics[index(MetricId::MinimumLength)] = values.contains("") ? 0 : 1;
        const auto rowsOf = [](const auto& counts) {
            std::vector<repository::ValueCount> rows;
            for (const auto& [text, count] : counts)
                rows.push_back({text, count, false});
            return rows;
        };
        const auto valueRows = rowsOf(values);
        const auto patternRows = rowsOf(patterns);
        facts.values = valueRows;
        facts.patterns = patternRows;
        facts.offsetIndex = m_pages;
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
    /// As a user would read them; only the first cells unless `whole`.
    std::vector<std::string> rows(const std::string& field, const KvbString& value, bool isPattern = false,
                                  bool whole = false) {
        return rowsOf(open(field, value, isPattern), whole);
    }
    /// The first cells of the rows that meet a condition.
    std::vector<std::string> rowsWhere(const std::string& field, const std::string& condition) {
        return rowsOf(m_viewer->drillDownWhere(m_fields.at(field), condition, &m_sink), false);
    }
    std::vector<std::string> rowsOf(const PrViewerDrillCursorHandle& cursor, bool whole) {
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

    TempFolder m_folder;
    std::string m_file = m_folder.file("orders.csv");
    std::string m_repository = m_folder.file("r.tavix");
    PrViewer::Handle m_viewer = PrViewer::create();
    std::map<std::string, int> m_fields;
    Sink m_sink;
    bool m_isExamined = false;
    bool m_hasTypedExpressions = false;
    std::optional<repository::FileOffsetIndex> m_offsetIndex; ///< of the file; its pages serve every field
    std::vector<repository::OffsetIndexPage> m_pages;
};

} // namespace tavix::testing
