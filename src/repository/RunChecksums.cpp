#include "repository/RunChecksums.h"

#include "base/Metrics.h"
#include "repository/BlockFormat.h"
#include "repository/Existence.h"

#include <fmt/format.h>

#include <array>
#include <bit>
#include <memory>
#include <string>
#include <utility>

namespace tavix::repository {

namespace {

/// The repository version that added checksums.
constexpr std::int64_t kFirstVersion = 7;
/// The version of the rows and columns covered, that is, of the queries below. A change of a query or of the
/// columns increments it, and the older forms remain readable. Form 2 added histograms, form 3 types and findings.
constexpr int kForm = 3;
/// Rows of fields that are read in about a millisecond.
constexpr std::int64_t kFewFields = 500;

struct PartRows {
    RunPart part;
    std::string_view code; ///< in the repository
    std::string_view name;
    bool isOfTable;
    std::vector<std::string> queries; ///< ?1 is the run, ?2 the table; rows are ordered
    /// Further queries, each with the form that added it.
    std::vector<std::pair<int, std::string>> later = {};
};

std::string fieldsQuery() {
    std::string columns;
    for (const MetricInfo& metric : metricCatalogue())
        columns += fmt::format(", rf.{}", metric.column);
    return fmt::format("SELECT rf.position, rf.field, f.name, rf.type_code{}, rf.quantile_rule, rf.value_rows, "
                       "rf.value_sum, rf.pattern_rows, rf.pattern_sum FROM run_field rf LEFT JOIN field f ON f.id = "
                       "rf.field WHERE rf.run = ?1 AND rf.table_id = ?2 ORDER BY rf.position",
                       columns);
}

const std::array<PartRows, 5>& parts() {
    static const std::array<PartRows, 5> kParts{{
        {RunPart::Tables,
         "tables",
         "list of tables",
         false,
         {R"sql(SELECT job, started, finished, description, tables, records
               FROM run
               WHERE id = ?1 AND ?2 = 0)sql",
          R"sql(SELECT rt.position, rt.table_id, d.name, d.kind, t.catalog, t.schema, t.name, t.object_name,
               t.kind, rt.total_records, rt.processed_records, rt.damaged_records, rt.fields, rt.query,
               rt.filter, rt.alternate_filter, rt.file_path, rt.file_delimiter, rt.file_header,
               rt.file_encoding, rt.file_byte_order_mark, rt.file_size, rt.file_modified, rt.connection,
               rt.connection_user
               FROM run_table rt
               LEFT JOIN profiled_table t ON t.id = rt.table_id
               LEFT JOIN data_source d ON d.id = t.data_source
               WHERE rt.run = ?1
               ORDER BY rt.position)sql",
          R"sql(SELECT table_id, position, path, quote, delimiter, encoding, byte_order_mark, size, modified
               FROM run_file
               WHERE run = ?1
               ORDER BY table_id, position)sql"},
         {{3, "SELECT expressions FROM run_examination WHERE run = ?1"}}},
        {RunPart::Log, "log", "execution log", false, {R"sql(SELECT position, table_id, logged, level, text
               FROM execution_log
               WHERE run = ?1 AND ?2 = 0
               ORDER BY position)sql"}},
        {RunPart::Fields, "fields", "metrics of fields", true, {fieldsQuery()}},
        {RunPart::Lists,
         "lists",
         "percentiles, outliers, histograms, types, findings or order of values",
         true,
         {R"sql(SELECT p.field, p.position, p.interval, p.value
               FROM run_field rf JOIN percentile p ON p.run = rf.run AND p.field = rf.field
               WHERE rf.run = ?1 AND rf.table_id = ?2
               ORDER BY rf.position, p.position)sql",
          R"sql(SELECT o.field, o.side, o.position, o.value, o.count, o.fence
               FROM run_field rf JOIN outlier o ON o.run = rf.run AND o.field = rf.field
               WHERE rf.run = ?1 AND rf.table_id = ?2
               ORDER BY rf.position, o.side, o.position)sql",
          R"sql(SELECT b.field, b.kind, b.block, b.first_row, b.rows, b.sum, b.bytes_present
               FROM run_field rf JOIN distribution_block b ON b.run = rf.run AND b.field = rf.field
               WHERE rf.run = ?1 AND rf.table_id = ?2 AND b.kind IN ('V', 'P')
               ORDER BY rf.position, b.kind, b.block)sql"},
         {{2, R"sql(SELECT h.field, h.kind, h.unit, h.first_bin, h.step, h.exponent, h.counts
               FROM run_field rf JOIN histogram h ON h.run = rf.run AND h.field = rf.field
               WHERE rf.run = ?1 AND rf.table_id = ?2
               ORDER BY rf.position, h.kind)sql"},
          {3, R"sql(SELECT b.field, b.value_count, b.row_count, b.reading, b.fit_values, b.fit_rows, b.ambiguity,
               b.has_figures
               FROM run_field rf JOIN type_breakdown b ON b.run = rf.run AND b.field = rf.field
               WHERE rf.run = ?1 AND rf.table_id = ?2
               ORDER BY rf.position)sql"},
          {3, R"sql(SELECT b.field, b.position, b.form, b.value_count, b.row_count, b.example
               FROM run_field rf JOIN type_form b ON b.run = rf.run AND b.field = rf.field
               WHERE rf.run = ?1 AND rf.table_id = ?2
               ORDER BY rf.position, b.position)sql"},
          {3, R"sql(SELECT field, code, likelihood, value_count, row_count, detail, condition
               FROM finding
               WHERE run = ?1 AND table_id = ?2
               ORDER BY field, code)sql"}}},
        {RunPart::Rules,
         "rules",
         "custom metrics or rules",
         true,
         {R"sql(SELECT v.position, v.metric, m.name, v.output_name, v.kind, v.figure, v.expression, v.value,
               v.used_rows, v.error_rows
               FROM run_custom_metric v
               LEFT JOIN custom_metric m ON m.id = v.metric
               WHERE v.run = ?1 AND v.table_id = ?2
               ORDER BY v.position)sql",
          R"sql(SELECT i.metric, i.position, i.field, i.standard_metric
               FROM run_custom_metric v JOIN custom_metric_input i ON i.run = v.run AND i.metric = v.metric
               WHERE v.run = ?1 AND v.table_id = ?2
               ORDER BY v.position, i.position)sql",
          R"sql(SELECT v.position, v.rule, b.name, v.condition, v.checked_rows, v.failed_rows, v.error_rows,
               v.logged_rows, v.log_columns, v.key_columns
               FROM run_rule v
               LEFT JOIN business_rule b ON b.id = v.rule
               WHERE v.run = ?1 AND v.table_id = ?2
               ORDER BY v.position)sql",
          R"sql(SELECT i.rule, i.position, i.field
               FROM run_rule v JOIN rule_input i ON i.run = v.run AND i.rule = v.rule
               WHERE v.run = ?1 AND v.table_id = ?2
               ORDER BY v.position, i.position)sql",
          R"sql(SELECT l.rule, l.position, l.record, l.row_values
               FROM run_rule v JOIN rule_row l ON l.run = v.run AND l.rule = v.rule
               WHERE v.run = ?1 AND v.table_id = ?2
               ORDER BY v.position, l.position)sql"}},
    }};
    return kParts;
}

const PartRows& rowsOf(RunPart part) {
    return parts()[static_cast<std::size_t>(part)];
}

/// Rows as bytes, each value with its type and length, so that different rows always differ.
class RowHash {
  public:
    RowHash() { XXH3_64bits_reset(m_state.get()); }

    void add(const sql::Statement& row) {
        m_bytes.clear();
        const int columns = row.columnCount();
        for (int column = 0; column < columns; ++column) {
            const sql::ValueType type = row.type(column);
            m_bytes += static_cast<char>(type);
            if (type == sql::ValueType::Integer)
                addNumber(static_cast<std::uint64_t>(row.integer(column)));
            else if (type == sql::ValueType::Real)
                addNumber(std::bit_cast<std::uint64_t>(row.real(column)));
            else if (type == sql::ValueType::Text)
                addBytes(row.text(column));
            else if (type == sql::ValueType::Blob) {
                const auto blob = row.blob(column);
                addBytes({reinterpret_cast<const char*>(blob.data()), blob.size()});
            }
        }
        m_bytes += '\n';
        update();
    }
    /// So that moving a row from one query to the next changes the checksum.
    void endQuery() {
        m_bytes.assign(1, '\f');
        update();
    }
    [[nodiscard]] std::int64_t value() const { return static_cast<std::int64_t>(XXH3_64bits_digest(m_state.get())); }

  private:
    void addNumber(std::uint64_t number) {
        std::array<char, sizeof number> bytes{};
        storeAs<std::uint64_t>(bytes.data(), 0, number);
        m_bytes.append(bytes.data(), bytes.size());
    }
    void addBytes(std::string_view bytes) {
        addNumber(bytes.size());
        m_bytes += bytes;
    }
    void update() { XXH3_64bits_update(m_state.get(), m_bytes.data(), m_bytes.size()); }

    struct Free {
        void operator()(XXH3_state_t* state) const { XXH3_freeState(state); }
    };
    std::unique_ptr<XXH3_state_t, Free> m_state{XXH3_createState()};
    std::string m_bytes;
};

Result<std::int64_t> checksumOfPart(sql::Connection& connection, int run, const RunPartKey& key, std::int64_t form) {
    RowHash hash;
    const PartRows& part = rowsOf(key.part);
    std::vector<std::string_view> queries(part.queries.begin(), part.queries.end());
    for (const auto& [since, query] : part.later)
        if (form >= since)
            queries.emplace_back(query);
    for (const std::string_view query : queries) {
        auto select = connection.prepare(query);
        if (!select)
            return select.error();
        // Most queries of the run's parts have no second parameter.
        select->bind(1, run);
        if (query.find("?2") != std::string_view::npos)
            select->bind(2, key.table);
        sql::Step step = select->step();
        for (; step == sql::Step::Row; step = select->step())
            hash.add(*select);
        if (step == sql::Step::Failed)
            return Error{connection.errorText()};
        hash.endQuery();
    }
    return hash.value();
}

/// All parts of a run with these rows in run_table.
Result<std::vector<RunPartKey>> partsOf(sql::Connection& connection, int run) {
    auto select = connection.prepare("SELECT table_id FROM run_table WHERE run = ?1 ORDER BY position");
    if (!select)
        return select.error();
    std::vector<RunPartKey> keys;
    for (const PartRows& part : parts())
        if (!part.isOfTable)
            keys.push_back({part.part, 0});
    select->bind(1, run);
    sql::Step step = select->step();
    for (; step == sql::Step::Row; step = select->step())
        for (const PartRows& part : parts())
            if (part.isOfTable)
                keys.push_back({part.part, static_cast<int>(select->integer(0))});
    if (step == sql::Step::Failed)
        return Error{connection.errorText()};
    return keys;
}

Status storeChecksum(sql::Connection& connection, int run, const RunPartKey& key) {
    auto checksum = checksumOfPart(connection, run, key, kForm);
    if (!checksum)
        return checksum.error();
    auto insert =
        connection.prepare("INSERT INTO run_checksum(run, table_id, part, form, checksum) VALUES(?1, ?2, ?3, ?4, ?5)");
    if (!insert)
        return insert.error();
    insert->bind(1, run).bind(2, key.table).bind(3, rowsOf(key.part).code).bind(4, kForm).bind(5, *checksum);
    return insert->run();
}

} // namespace

std::string_view runPartName(RunPart part) {
    return rowsOf(part).name;
}

Status storeRunChecksums(sql::Connection& connection, int run) {
    auto keys = partsOf(connection, run);
    if (!keys)
        return keys.error();
    for (const RunPartKey& key : *keys)
        if (auto stored = storeChecksum(connection, run, key); !stored)
            return stored;
    return {};
}

Result<std::vector<RunPartKey>> checkedParts(sql::Connection& connection, int run) {
    std::vector<RunPartKey> found;
    auto version = connection.schemaVersion();
    if (!version)
        return version.error();
    if (*version < kFirstVersion)
        return found;
    auto any = readNumber(connection, "SELECT COUNT(*) FROM run_checksum WHERE run = ?1", {run});
    if (!any)
        return any.error();
    return *any == 0 ? found : partsOf(connection, run);
}

Result<bool> isPartSound(sql::Connection& connection, int run, const RunPartKey& key) {
    auto select =
        connection.prepare("SELECT form, checksum FROM run_checksum WHERE run = ?1 AND table_id = ?2 AND part = ?3");
    if (!select)
        return select.error();
    const sql::Step step = select->bind(1, run).bind(2, key.table).bind(3, rowsOf(key.part).code).step();
    if (step == sql::Step::Failed)
        return Error{connection.errorText()};
    if (step == sql::Step::Done)
        return false;
    const std::int64_t form = select->integer(0);
    if (form < 1 || form > kForm)
        return false;
    const std::int64_t expected = select->integer(1);
    select->reset();
    auto checksum = checksumOfPart(connection, run, key, form);
    if (!checksum)
        return checksum.error();
    return *checksum == expected;
}

Result<std::string> describeDamage(sql::Connection& connection, int run) {
    // Otherwise a concurrent deletion would remove rows during the check.
    auto snapshot = sql::Snapshot::begin(connection);
    if (!snapshot)
        return snapshot.error();
    auto keys = checkedParts(connection, run);
    if (!keys)
        return keys.error();
    auto exists = readNumber(connection, "SELECT COUNT(*) FROM run WHERE id = ?1", {run});
    if (!exists)
        return exists.error();
    if (keys->empty() || *exists == 0)
        return std::string();
    auto fields = readNumber(connection, "SELECT COALESCE(SUM(fields), 0) FROM run_table WHERE run = ?1", {run});
    if (!fields)
        return fields.error();
    for (const RunPartKey& key : *keys) {
        if (key.part != RunPart::Tables && !(key.part == RunPart::Fields && *fields <= kFewFields))
            continue;
        auto isSound = isPartSound(connection, run, key);
        if (!isSound)
            return isSound.error();
        if (!*isSound)
            return fmt::format("Run {} is damaged ({}). Run \"tavix check\" for details.", run, runPartName(key.part));
    }
    return std::string();
}

} // namespace tavix::repository
