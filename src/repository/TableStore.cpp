#include "repository/TableStore.h"

#include "repository/BindValue.h"
#include "repository/DistributionStore.h"
#include "repository/ExaminationStore.h"
#include "repository/FileOffsetIndex.h"
#include "repository/HistogramStore.h"

#include <fmt/format.h>

#include <span>
#include <string>
#include <string_view>

namespace tavix::repository {

namespace {

std::int64_t sumOf(std::span<const ValueCount> rows) {
    std::uint64_t sum = 0;
    for (const ValueCount& row : rows)
        sum += row.count;
    return static_cast<std::int64_t>(sum);
}

constexpr int kFirstMetricParameter = 6;
constexpr int kFirstTailParameter = kFirstMetricParameter + static_cast<int>(kMetricCount);

std::string insertFieldSql() {
    std::string columns = "INSERT INTO run_field(run, table_id, position, field, type_code";
    for (const MetricInfo& metric : metricCatalogue())
        columns += fmt::format(", {}", metric.column);
    columns += ", quantile_rule, value_rows, value_sum, pattern_rows, pattern_sum) VALUES(?1";
    for (int parameter = 2; parameter < kFirstTailParameter + 5; ++parameter)
        columns += fmt::format(",?{}", parameter);
    return columns + ")";
}

/// Empty for 0, which means none.
std::string_view letter(const char& c) {
    return {&c, c == '\0' ? 0U : 1U};
}

Status storeForms(sql::Connection& connection, int run, int table, const TextFileFacts& facts) {
    auto insert = connection.prepare("INSERT INTO run_file(run, table_id, position, path, quote, delimiter, encoding, "
                                     "byte_order_mark, size, modified) VALUES(?1,?2,?3,?4,?5,?6,?7,?8,?9,?10)");
    if (!insert)
        return insert.error();
    const FileFacts one{facts.path, facts.delimiter, facts.encoding, facts.byteOrderMark, facts.size, facts.modified};
    const std::span<const FileFacts> files = facts.files.empty() ? std::span(&one, 1) : std::span(facts.files);
    insert->bind(1, run).bind(2, table).bind(5, letter(facts.quote));
    std::int64_t position = 0;
    for (const FileFacts& file : files) {
        insert->bind(3, ++position).bind(4, file.path).bind(6, letter(file.delimiter)).bind(7, file.encoding);
        insert->bind(8, file.byteOrderMark ? 1 : 0).bind(9, file.size).bind(10, storedTime(file.modified));
        if (auto done = insert->run(); !done)
            return done;
    }
    return {};
}

Status storePercentiles(sql::Connection& connection, int run, int field, std::span<const Percentile> percentiles) {
    auto insert =
        connection.prepare("INSERT INTO percentile(run, field, position, interval, value) VALUES(?1,?2,?3,?4,?5)");
    if (!insert)
        return insert.error();
    int position = 0;
    for (const Percentile& percentile : percentiles) {
        insert->bind(1, run).bind(2, field).bind(3, position++).bind(4, percentile.interval);
        bindText(*insert, 5, percentile.value);
        if (auto done = insert->run(); !done)
            return done;
    }
    return {};
}

Status storeOutliers(sql::Connection& connection, int run, int field, std::span<const Outlier> outliers) {
    auto insert = connection.prepare(
        "INSERT INTO outlier(run, field, side, position, value, count, fence) VALUES(?1,?2,?3,?4,?5,?6,?7)");
    if (!insert)
        return insert.error();
    for (const Outlier& outlier : outliers) {
        char side = static_cast<char>(outlier.side);
        insert->bind(1, run).bind(2, field).bind(3, std::string_view(&side, 1)).bind(4, outlier.position);
        bindText(*insert, 5, outlier.value);
        insert->bind(6, static_cast<std::int64_t>(outlier.count)).bind(7, static_cast<int>(outlier.fence));
        if (auto done = insert->run(); !done)
            return done;
    }
    return {};
}

} // namespace

Status storeTable(sql::Connection& connection, const PlaceInRun& place, const TableFacts& facts, int fields) {
    auto insert = connection.prepare(
        "INSERT INTO run_table(run, position, table_id, total_records, processed_records, damaged_records, query, "
        "filter, alternate_filter, file_path, file_delimiter, file_header, file_encoding, file_byte_order_mark, "
        "file_size, file_modified, connection, connection_user, fields) "
        "VALUES(?1,?2,?3,?4,?5,?6,?7,?8,?9,?10,?11,?12,?13,?14,?15,?16,?17,?18,?19)");
    if (!insert)
        return insert.error();
    insert->bind(1, place.run).bind(2, place.position).bind(3, place.table);
    insert->bind(4, facts.totalRecords).bind(5, facts.processedRecords).bind(6, facts.damagedRecords);
    insert->bind(7, facts.query).bind(8, facts.filter).bind(9, facts.alternateFilter);
    if (facts.isTextFile) {
        const TextFileFacts& file = facts.textFile;
        insert->bind(10, file.path).bind(11, std::string_view(&file.delimiter, 1)).bind(12, file.hasHeader ? 1 : 0);
        insert->bind(13, file.encoding).bind(14, file.byteOrderMark ? 1 : 0).bind(15, file.size);
        insert->bind(16, storedTime(file.modified));
    } else {
        for (int parameter = 10; parameter <= 16; ++parameter)
            insert->bindNull(parameter);
    }
    if (facts.connection)
        insert->bind(17, *facts.connection);
    else
        insert->bindNull(17);
    if (facts.connectionUser.empty())
        insert->bindNull(18);
    else
        insert->bind(18, facts.connectionUser);
    return insert->bind(19, fields).run();
}

Status storeFiles(sql::Connection& connection, int run, int table, const TableFacts& facts) {
    if (facts.isTextFile)
        if (auto stored = storeForms(connection, run, table, facts.textFile); !stored)
            return stored;
    return facts.offsetIndex ? storeFileOffsetIndex(connection, run, table, *facts.offsetIndex) : Status{};
}

Status storeField(sql::Connection& connection, int run, int table, int field, const FieldFacts& facts) {
    static const std::string kInsert = insertFieldSql();
    auto insert = connection.prepare(kInsert);
    if (!insert)
        return insert.error();
    insert->bind(1, run).bind(2, table).bind(3, facts.ordinal).bind(4, field);
    insert->bind(5, std::string_view(&facts.typeCode, facts.typeCode ? 1 : 0));
    for (std::size_t metric = 0; metric < kMetricCount; ++metric)
        bindValue(*insert, kFirstMetricParameter + static_cast<int>(metric), facts.metrics[metric]);
    insert->bind(kFirstTailParameter, facts.quantileRule);
    const PackedField* const packed = facts.packed;
    const auto asInteger = [](auto number) { return static_cast<std::int64_t>(number); };
    insert->bind(kFirstTailParameter + 1, packed ? packed->valueRows() : asInteger(facts.values.size()));
    insert->bind(kFirstTailParameter + 2, packed ? asInteger(packed->valueSum()) : sumOf(facts.values));
    insert->bind(kFirstTailParameter + 3, packed ? packed->patternRows() : asInteger(facts.patterns.size()));
    insert->bind(kFirstTailParameter + 4, packed ? asInteger(packed->patternSum()) : sumOf(facts.patterns));
    return insert->run();
}

Status storeFieldLists(sql::Connection& connection, int run, int field, const FieldFacts& facts) {
    if (auto stored = storePercentiles(connection, run, field, facts.percentiles); !stored)
        return stored;
    if (auto stored = storeOutliers(connection, run, field, facts.outliers); !stored)
        return stored;
    if (facts.histogram)
        if (auto stored = storeHistogram(connection, run, field, *facts.histogram); !stored)
            return stored;
    if (facts.breakdown)
        if (auto stored = storeBreakdown(connection, run, field, *facts.breakdown); !stored)
            return stored;
    if (auto stored = storeFieldOffsetIndex(connection, run, field, facts.offsetIndex); !stored)
        return stored;
    if (facts.packed)
        return storePackedField(connection, run, field, *facts.packed);
    if (auto stored = storeDistribution(connection, {run, field, DistributionKind::Values}, facts.values); !stored)
        return stored;
    if (auto stored = storeDistribution(connection, {run, field, DistributionKind::Patterns}, facts.patterns); !stored)
        return stored;
    return storeValueHashes(connection, run, field, facts.values);
}

Status storePackedField(sql::Connection& connection, int run, int field, PackedField& packed) {
    if (auto stored = storePacked(connection, {run, field, DistributionKind::Values}, packed); !stored)
        return stored;
    if (auto stored = storePacked(connection, {run, field, DistributionKind::Patterns}, packed); !stored)
        return stored;
    return storePackedHashes(connection, run, field, packed);
}

} // namespace tavix::repository
