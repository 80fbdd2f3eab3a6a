#include "access/DrillSource.h"
#include "access/FilterCode.h"
#include "access/PrViewDisplayMessage.h"
#include "access/PrViewerImpl.h"
#include "access/SourceRowCursors.h"
#include "access/TableSource.h"
#include "repository/DistributionStore.h"
#include "repository/ExaminationStore.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <utility>

namespace tavix {

namespace {

// ?1 is the run, ?2 the field.
constexpr std::string_view kTableOfField =
    "SELECT d.name, t.catalog, t.schema, t.name, t.object_name, t.kind, f.name, rt.query, t.id, rt.filter, "
    "rt.file_path, rt.file_delimiter, rt.file_header, rt.file_encoding, rt.file_size, rt.file_modified, "
    "{connection}, {user}, {sample} "
    "FROM field f JOIN profiled_table t ON t.id = f.table_id JOIN data_source d ON d.id = t.data_source "
    "JOIN run_table rt ON rt.run = ?1 AND rt.table_id = t.id WHERE f.id = ?2";
enum TableColumn {
    DataSource,
    Catalog,
    Schema,
    Table,
    Object,
    Kind,
    Field,
    QueryText,
    TableNumber,
    Filter,
    FilePath,
    FileDelimiter,
    FileHeader,
    FileEncoding,
    FileSize,
    FileModified,
    Connection,
    ConnectionUser,
    IsSampled,
};
/// The version that added run_table.connection.
constexpr std::int64_t kConnectionsSince = 3;

/// The version that added run_file.
constexpr std::int64_t kFilesSince = 4;

/// The version that added the format of each file, and the user of a database.
constexpr std::int64_t kFormsSince = 6;

constexpr std::string_view kColumnsOfTable =
    "SELECT f.name, rf.type_code FROM run_field rf JOIN field f ON f.id = rf.field "
    "WHERE rf.run = ?1 AND rf.table_id = ?2 ORDER BY rf.position";

constexpr std::string_view kIsTypedRun =
    "SELECT EXISTS (SELECT 1 FROM run_examination WHERE run = ?1 AND expressions = ?2)";

constexpr std::string_view kNulls = "SELECT COALESCE(null_count, 0) FROM run_field WHERE run = ?1 AND field = ?2";
// Minimum length 0 means that one of the texts is empty.
constexpr std::string_view kHasEmptyText =
    "SELECT COALESCE(minimum_length = 0, 0) FROM run_field WHERE run = ?1 AND field = ?2";

kvbType typeOf(std::string_view code) {
    if (code == "I")
        return kvbType::Integer;
    return code == "R" ? kvbType::Real : kvbType::Text;
}

char letterOf(std::string_view text) {
    return text.empty() ? '\0' : text.front();
}

DrillTable::TextFile textFileOf(const sql::Statement& row) {
    DrillTable::TextFile file;
    file.path = row.text(FilePath);
    file.delimiter = letterOf(row.text(FileDelimiter));
    file.hasHeader = row.integer(FileHeader) != 0;
    file.encoding = row.text(FileEncoding);
    file.size = row.integer(FileSize);
    file.modified = UtcTime(std::chrono::milliseconds(row.integer(FileModified)));
    return file;
}

/// `row` has path, quote, delimiter, encoding, size and time.
DrillTable::TextFile::File fileOf(const sql::Statement& row) {
    DrillTable::TextFile::File file;
    file.path = row.text(0);
    if (row.isNull(2))
        return file;
    file.delimiter = letterOf(row.text(2));
    file.encoding = row.text(3);
    file.size = row.integer(4);
    file.modified = UtcTime(std::chrono::milliseconds(row.integer(5)));
    return file;
}

DrillTable::Database databaseOf(const sql::Statement& row) {
    DrillTable::Database database;
    database.source = row.text(DataSource);
    database.connection = row.text(Connection);
    database.user = row.text(ConnectionUser);
    if (row.text(QueryText).empty())
        database.address = {
            std::string(row.text(Catalog)), std::string(row.text(Schema)), std::string(row.text(Table)), {}};
    else
        database.address.query = row.text(QueryText);
    return database;
}

} // namespace

Result<sql::Statement> PrViewer::Impl::tableOfField(int ofRun, int field) const {
    const auto version = connection().schemaVersion();
    if (!version)
        return version.error();
    std::string sql(kTableOfField);
    const auto fill = [&](std::string_view place, std::string_view column, std::int64_t since) {
        sql.replace(sql.find(place), place.size(), *version < since ? "NULL" : column);
    };
    fill("{connection}", "rt.connection", kConnectionsSince);
    fill("{user}", "rt.connection_user", kFormsSince);
    fill("{sample}", layout::kIsSample, 0);
    return boundRow(sql, {ofRun, field}, noSuch("field", field));
}

Status PrViewer::Impl::readFiles(int ofRun, int table, DrillTable::TextFile& file) const {
    const auto version = connection().schemaVersion();
    if (!version)
        return version.error();
    if (*version >= kFilesSince) {
        const std::string_view forms =
            *version < kFormsSince ? "NULL, NULL, NULL, NULL" : "delimiter, encoding, size, modified";
        auto files =
            bound(fmt::format("SELECT path, quote, {} FROM run_file WHERE run = ?1 AND table_id = ?2 ORDER BY position",
                              forms),
                  {ofRun, table});
        if (!files)
            return files.error();
        sql::Step step = files->step();
        for (; step == sql::Step::Row; step = files->step()) {
            file.files.push_back(fileOf(*files));
            file.quote = letterOf(files->text(1));
        }
        if (step == sql::Step::Failed)
            return Error{connection().errorText()};
    }
    if (file.files.empty())
        file.files.push_back({file.path, {}, {}, {}, -1, {}});
    if (file.files.size() == 1) {
        // The table's row describes a single file completely.
        DrillTable::TextFile::File& only = file.files.front();
        file.path = only.path;
        only.delimiter = file.delimiter;
        only.encoding = file.encoding;
        only.size = file.size;
        only.modified = file.modified;
    }
    return {};
}

Result<expression::Columns> PrViewer::Impl::columnsInConditions(int ofRun) const {
    const auto version = connection().schemaVersion();
    if (!version)
        return version.error();
    if (*version < repository::kFirstExamined)
        return expression::Columns::Texts;
    const auto isTyped = integer(kIsTypedRun, {ofRun, repository::kTypedExpressions}, {});
    if (!isTyped)
        return isTyped.error();
    return *isTyped != 0 ? expression::Columns::Typed : expression::Columns::Texts;
}

Result<DrillTable> PrViewer::Impl::drillTable(int ofRun, int field) const {
    DrillTable table;
    const auto started = startOf(ofRun);
    if (!started)
        return started.error();
    table.now = *started;
    const auto columns = columnsInConditions(ofRun);
    if (!columns)
        return columns.error();
    table.columnsInFilter = *columns;
    {
        const auto row = tableOfField(ofRun, field);
        if (!row)
            return row.error();
        table.name = row->text(Object).empty() ? row->text(Table) : row->text(Object);
        table.field = row->text(Field);
        table.filter = row->text(Filter);
        table.isSampled = row->integer(IsSampled) != 0;
        if (!row->isNull(FilePath))
            table.file = textFileOf(*row);
        else if (!row->isNull(Connection))
            table.database = databaseOf(*row);
        table.id = static_cast<int>(row->integer(TableNumber));
    }
    if (table.file)
        if (Status status = readFiles(ofRun, table.id, *table.file); !status)
            return status.error();
    auto fields = bound(kColumnsOfTable, {ofRun, table.id});
    if (!fields)
        return fields.error();
    for (;;) {
        switch (fields->step()) {
        case sql::Step::Row:
            table.columns.push_back({std::string(fields->text(0)), typeOf(fields->text(1))});
            break;
        case sql::Step::Done:
            return table;
        default:
            return Error{connection().errorText()};
        }
    }
}

Result<WantedRows> PrViewer::Impl::wantedRows(int ofRun, int field, const KvbString& value, bool isPattern) const {
    if (value.isNull())
        return WantedRows{WantedRows::Kind::Null, {}};
    if (isPattern)
        return WantedRows{WantedRows::Kind::Pattern, value.str()};
    if (value.isEmpty()) {
        const auto hasEmpty = integer(kHasEmptyText, {ofRun, field}, kRunWasDeleted);
        if (!hasEmpty)
            return hasEmpty.error();
        if (*hasEmpty == 0)
            return WantedRows{WantedRows::Kind::Null, {}};
    }
    return WantedRows{WantedRows::Kind::Value, value.str()};
}

Result<WantedRows> PrViewer::Impl::wantedByCondition(int ofRun, const KvbString& condition) const {
    const auto started = startOf(ofRun);
    if (!started)
        return started.error();
    const std::array<expression::Field, 1> fields{expression::Field{"Value"}};
    expression::Compiled compiled =
        expression::compile(codeOf(condition.view()).text, fields, expression::Wanted::Condition, *started);
    if (!compiled.ok())
        return Error{expression::describe(compiled.error)};
    return WantedRows{WantedRows::Kind::Condition, {}, std::move(compiled.program)};
}

Result<SourceRows> PrViewer::Impl::sourceRows(int ofRun, int field, const WantedRows& wanted,
                                              PrViewDisplayMessage* sink) {
    missingSource.reset();
    auto table = drillTable(ofRun, field);
    if (!table)
        return table.error();
    if (wanted.kind == WantedRows::Kind::Value && table->file) {
        auto ranges = repository::findRanges(connection(), {ofRun, table->id, field}, wanted.text);
        if (!ranges)
            return ranges.error();
        table->file->ranges = std::move(ranges).value();
    }
    if (table->file)
        if (Status placed = placeFiles(*table->file); !placed)
            return placed.error();
    source::KeepGoing keepGoing;
    if (sink)
        keepGoing = [sink, name = table->name] { return sink->progress("Reading " + name, 0, 0); };
    auto source = openDrillSource(*table, wanted, askCredentials, keepGoing);
    if (!source) {
        if (table->file)
            missingSource = missingFile(*table->file);
        return source.error();
    }
    return SourceRows(std::move(source).value(), sink);
}

PrViewerDrillCursorHandle PrViewer::Impl::openRows(int field, PrViewDisplayMessage* sink,
                                                   const std::function<Result<WantedRows>(int ofRun)>& wantedOf) {
    const auto ofRun = runOfField(field);
    const auto wanted = ofRun ? wantedOf(*ofRun) : Result<WantedRows>(ofRun.error());
    auto rows = wanted ? sourceRows(*ofRun, field, *wanted, sink) : Result<SourceRows>(wanted.error());
    if (rows)
        return PrViewerDrillCursorHandle(new DrillRowCursor(std::move(rows).value()));
    fail(rows.error());
    return nullptr;
}

void PrViewer::setSourceCredentials(source::AskCredentials ask) {
    m_impl->askCredentials = std::move(ask);
}

bool PrViewer::getDrilldownInfo(int fieldId, KvbString& dataSource, KvbString& catalog, KvbString& schema,
                                KvbString& table, KvbString& object, char& kind, KvbString& field, KvbString& query,
                                int& tableId, KvbString& filter) {
    const auto ofRun = m_impl->runOfField(fieldId);
    if (!ofRun)
        return m_impl->fail(ofRun.error());
    const auto row = m_impl->tableOfField(*ofRun, fieldId);
    if (!row)
        return m_impl->fail(row.error());
    dataSource = row->text(DataSource);
    catalog = row->text(Catalog);
    schema = row->text(Schema);
    table = row->text(Table);
    object = row->text(Object);
    kind = letterOf(row->text(Kind));
    field = row->text(Field);
    query = row->text(QueryText);
    tableId = static_cast<int>(row->integer(TableNumber));
    filter = row->text(Filter);
    return true;
}

bool PrViewer::getTableSource(int tableId, TableSource& source) {
    if (auto ready = m_impl->requireTable(tableId); !ready)
        return m_impl->fail(ready.error());
    const auto field =
        m_impl->integer("SELECT field FROM run_field WHERE run = ?1 AND table_id = ?2 ORDER BY position LIMIT 1",
                        {m_impl->run, tableId}, "The table has no fields.");
    if (!field)
        return m_impl->fail(field.error());
    auto table = m_impl->drillTable(m_impl->run, static_cast<int>(*field));
    if (!table)
        return m_impl->fail(table.error());
    source = {};
    if (table->database) {
        source.connection = table->database->connection;
        source.user = table->database->user;
        return true;
    }
    if (!table->file)
        return m_impl->fail({fmt::format("The run does not say from where the rows of \"{}\" came.", table->name)});
    if (Status placed = m_impl->placeFiles(*table->file); !placed)
        return m_impl->fail(placed.error());
    source.hasHeader = table->file->hasHeader;
    source.quote = table->file->quote;
    for (const DrillTable::TextFile::File& file : table->file->files)
        source.files.push_back({file.currentPath, file.delimiter.value_or('\0'), file.encoding});
    return true;
}

PrViewerDrillCursorHandle PrViewer::drillDown(int fieldId, const KvbString& value, bool isPattern,
                                              PrViewDisplayMessage* sink, OrvintaPatternGen*) {
    return m_impl->openRows(fieldId, sink,
                            [&](int ofRun) { return m_impl->wantedRows(ofRun, fieldId, value, isPattern); });
}

PrViewerDrillCursorHandle PrViewer::drillDownWhere(int fieldId, const KvbString& condition,
                                                   PrViewDisplayMessage* sink) {
    return m_impl->openRows(fieldId, sink, [&](int ofRun) { return m_impl->wantedByCondition(ofRun, condition); });
}

ProfileCursorHandle PrViewer::drillDownMatch(int fieldId, const KvbString& value, PrViewDisplayMessage* sink,
                                             int first) {
    const auto ofRun = m_impl->runOfField(fieldId);
    if (!ofRun)
        return m_impl->failCursor(ofRun.error());
    const auto wanted = m_impl->wantedRows(*ofRun, fieldId, value, false);
    if (!wanted)
        return m_impl->failCursor(wanted.error());
    auto rows = m_impl->sourceRows(*ofRun, fieldId, *wanted, sink);
    if (!rows)
        return m_impl->failCursor(rows.error());
    return ProfileCursorHandle(new MatchRowCursor(std::move(rows).value(), std::max(first, 0)));
}

std::int64_t PrViewer::getDrillDownCount(int fieldId, const KvbString& value, bool isPattern) {
    const auto ofRun = m_impl->runOfField(fieldId);
    if (!ofRun)
        return m_impl->giveNumber(ofRun.error());
    const auto wanted = m_impl->wantedRows(*ofRun, fieldId, value, isPattern);
    if (!wanted)
        return m_impl->giveNumber(wanted.error());
    const auto row = m_impl->tableOfField(*ofRun, fieldId);
    if (!row)
        return m_impl->giveNumber(row.error());
    if (row->integer(IsSampled) != 0)
        return kSampleOnly;
    if (wanted->kind == WantedRows::Kind::Null)
        return m_impl->giveNumber(m_impl->fieldNumber(kNulls, fieldId));
    using repository::DistributionKind;
    const auto kind = wanted->kind == WantedRows::Kind::Pattern ? DistributionKind::Patterns : DistributionKind::Values;
    const auto count = repository::countOfText(m_impl->connection(), {*ofRun, fieldId, kind}, wanted->text);
    if (!count)
        return m_impl->giveNumber(count.error());
    constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(std::min(*count, static_cast<std::uint64_t>(kMost)));
}

} // namespace tavix
