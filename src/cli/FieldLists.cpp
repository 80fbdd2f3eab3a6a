#include "cli/FieldLists.h"

#include "access/Layouts.h"
#include "base/NumberText.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/DateText.h"
#include "cli/FieldTypes.h"
#include "cli/Interruption.h"
#include "cli/Session.h"
#include "filter/ExpressionCheck.h"
#include "report/DistributionShare.h"

#include <fmt/format.h>

#include <array>

namespace tavix::cli {

namespace {

constexpr int kPercentPlaces = 2;
/// How a null among values reads in text.
constexpr const char* kNullValue = "(null value)";

/// Which metrics hold a value of the field, and which a word; the others are figures.
Column::Kind kindOf(MetricId id) {
    switch (id) {
    case MetricId::MinimumValue:
    case MetricId::MaximumValue:
    case MetricId::Median:
    case MetricId::Mode:
        return Column::Kind::TypedValue;
    case MetricId::DefinedType:
    case MetricId::ActualType:
    case MetricId::PrimaryKey:
    case MetricId::Nullable:
        return Column::Kind::Text;
    default:
        return Column::Kind::Number;
    }
}

/// In the repository the column of this one may not be called by a word of SQL.
std::string keyOf(const MetricInfo& info) {
    return info.id == MetricId::Precision ? "precision" : std::string(info.column);
}

std::vector<MetricId> metricsOf(MetricChoice choice) {
    if (choice == MetricChoice::Main)
        return {MetricId::Count,        MetricId::UniqueCount,  MetricId::NullCount,   MetricId::BlankCount,
                MetricId::PatternCount, MetricId::MinimumValue, MetricId::MaximumValue};
    std::vector<MetricId> all;
    for (const MetricInfo& info : metricCatalogue())
        all.push_back(info.id);
    return all;
}

KvbDatavar typeCell(const ProfileCursor& fields) {
    const KvbString code = fields.getColumnValue(layout::FieldTypeCode);
    const std::string_view name = code.isEmpty() ? std::string_view() : fieldTypeName(code.view().front());
    return name.empty() ? KvbDatavar() : KvbDatavar(std::string(name));
}

Section metricsSection(const std::vector<MetricId>& metrics, bool isSample) {
    Section section{"metrics", "Metrics", {{"field", "Field"}, {"type", "Type"}}, false, "-", 1};
    for (const MetricId id : metrics) {
        const MetricInfo& info = metricCatalogue()[index(id)];
        std::string title(info.name);
        if (isSample && isOfSampleAlone(id))
            title += kOfSampleAlone;
        const Column::Kind kind = kindOf(id);
        const bool isPercent = id == MetricId::UniquePercent || id == MetricId::PercentNull;
        section.columns.push_back(
            {keyOf(info), std::move(title), kind, isPercent ? kPercentPlaces : -1, kind == Column::Kind::Number});
    }
    return section;
}

/// Which rows the figures are of, when not of all.
std::string sampleText(const TableEntry& table) {
    if (!table.isSample)
        return {};
    return table.kind == 'D'
               ? std::string(", of a sample")
               : fmt::format(", a sample of {} of {} records", table.processedRecords, table.totalRecords);
}

Row metricsRow(const ProfileCursor& fields, const std::vector<MetricId>& metrics) {
    Row row{fields.getColumnValue(layout::FieldName), typeCell(fields)};
    for (const MetricId id : metrics)
        row.emplace_back(fields.getColumnValue(layout::kFieldListMetrics + static_cast<int>(id)));
    return row;
}

std::string titleOf(std::string_view what, const FieldEntry& field, std::int64_t limit, std::int64_t count) {
    std::string title = fmt::format("{} of {}.{}{}", what, field.table.name, field.name, sampleText(field.table));
    if (count > limit)
        title += fmt::format(" (first {} of {})", limit, count);
    return title;
}

KvbDatavar percentCell(const DistributionShare& share, std::int64_t count) {
    const std::optional<double> percent = share.PercentOf(count);
    return percent ? KvbDatavar(*percent) : KvbDatavar();
}

Column percentColumn(const DistributionShare& share) {
    return {std::string(share.ColumnKey()), "% " + share.BaseText(), Column::Kind::Number, kPercentPlaces};
}

/// The rows of all patterns of a field.
std::int64_t readPatternTotal(Session& session, const FieldEntry& field) {
    const ProfileCursorHandle fields = session.checked(session.viewer().getFieldList(field.table.id));
    while (fields->next()) {
        if (fields->getColumnInt(layout::FieldId) != field.id)
            continue;
        std::array<KvbString, kMetricCount> metrics;
        for (std::size_t i = 0; i < metrics.size(); ++i)
            metrics[i] = fields->getColumnValue(layout::kFieldListMetrics + static_cast<int>(i));
        return patternTotal(metrics);
    }
    return 0;
}

Column::Kind valueKind(const FieldEntry& field) {
    return isNumericTypeCode(field.typeCode) ? Column::Kind::Number : Column::Kind::Text;
}

/// One of the two distributions of a field.
struct DistributionAccess {
    ProfileCursorHandle (PrViewer::*open)(int field, const KvbString& filter, PrViewDisplayMessage* sink);
    int (PrViewer::*count)(int field);
    int countColumn;
    DistributionKind kind;
};

constexpr DistributionAccess kValues{&PrViewer::getFreqDist, &PrViewer::getFreqDistCount, layout::FreqCount,
                                     DistributionKind::Frequency};
constexpr DistributionAccess kPatterns{&PrViewer::getPatternDist, &PrViewer::getPatternDistCount,
                                       layout::PatternCountColumn, DistributionKind::Pattern};

/// The rows to be listed, and what percentages are a share of.
struct ChosenRows {
    ProfileCursorHandle cursor;
    std::int64_t count = 0; ///< of rows, whatever the limit
    DistributionShare share;
    std::string title;
};

ChosenRows openAll(Session& session, const FieldEntry& field, const DistributionAccess& access) {
    PrViewer& viewer = session.viewer();
    ChosenRows rows;
    const std::int64_t total =
        access.kind == DistributionKind::Pattern ? readPatternTotal(session, field) : viewer.getFreqDistSum(field.id);
    session.check(total >= 0);
    rows.share = {access.kind, false, total};
    rows.count = (viewer.*access.count)(field.id);
    session.check(rows.count >= 0);
    rows.cursor = session.checked((viewer.*access.open)(field.id, KvbString(""), nullptr));
    return rows;
}

/// Only a second walk lists the rows: the first percentage needs the sum of all.
ChosenRows openFiltered(Session& session, const FieldEntry& field, const DistributionAccess& access,
                        const std::string& filter) {
    PrViewer& viewer = session.viewer();
    ChosenRows rows;
    const ProfileCursorHandle sums = (viewer.*access.open)(field.id, filter, nullptr);
    if (!sums)
        throw CommandError(CheckFilterText(filter).error ? ExitCode::Usage : ExitCode::Source,
                           viewer.getErrorString().str());
    std::int64_t total = 0;
    for (; sums->next(); ++rows.count) {
        stopIfInterrupted();
        total += sums->getColumnInt64(access.countColumn);
    }
    if (const KvbString warning = sums->getWarning(); !warning.isNull())
        say(warning.view());
    rows.cursor = session.checked((viewer.*access.open)(field.id, filter, nullptr));
    rows.share = {access.kind, true, total};
    return rows;
}

/// `what` is what the rows are called in the title.
ChosenRows openRows(Session& session, const FieldEntry& field, const DistributionAccess& access,
                    const RowChoice& choice, std::string_view what) {
    const bool isFiltered = !choice.filter.empty();
    ChosenRows rows =
        isFiltered ? openFiltered(session, field, access, choice.filter) : openAll(session, field, access);
    rows.title = titleOf(what, field, choice.limit, rows.count);
    if (isFiltered) {
        const int all = (session.viewer().*access.count)(field.id);
        session.check(all >= 0);
        rows.title += fmt::format(", filtered: {} of {}", rows.count, all);
    }
    return rows;
}

KvbDatavar fenceCell(int fence) {
    switch (fence) {
    case 1:
        return 1.5;
    case 2:
        return 3.0;
    default:
        return {};
    }
}

} // namespace

void saySample(const TableEntry& table) {
    if (table.isSample)
        say(fmt::format("{}{}: counts, shares and figures are those of the sampled records alone", table.name,
                        sampleText(table)));
}

void listMetrics(Session& session, Listing& listing, const TableEntry& table, MetricChoice choice) {
    const std::vector<MetricId> metrics = metricsOf(choice);
    Section section = metricsSection(metrics, table.isSample);
    section.title = fmt::format("Fields of {}{}", table.name, sampleText(table));
    listing.begin(section);
    const ProfileCursorHandle fields = session.checked(session.viewer().getFieldList(table.id));
    while (fields->next())
        listing.row(metricsRow(*fields, metrics));
    listing.end();
}

void listMetrics(Session& session, Listing& listing, const FieldEntry& field) {
    const std::vector<MetricId> metrics = metricsOf(MetricChoice::All);
    Section section = metricsSection(metrics, field.table.isSample);
    section.title = titleOf("Metrics", field, kNoLimit, 0);
    section.isRecord = true;
    section.columns.push_back({"quantile_rule", "Quantile Rule"});
    listing.begin(section);
    const ProfileCursorHandle fields = session.checked(session.viewer().getFieldList(field.table.id));
    while (fields->next()) {
        if (fields->getColumnInt(layout::FieldId) != field.id)
            continue;
        Row row = metricsRow(*fields, metrics);
        row.emplace_back(
            fields->getColumnValue(layout::tailColumn(layout::kFieldListMetrics, layout::TailQuantileRule)));
        listing.row(row);
        break;
    }
    listing.end();
}

void listValues(Session& session, Listing& listing, const FieldEntry& field, const RowChoice& choice) {
    ChosenRows rows = openRows(session, field, kValues, choice, "Values");
    listing.begin({"values",
                   rows.title,
                   {{"value", "Value"}, {"count", "Count", Column::Kind::Number}, percentColumn(rows.share)},
                   false,
                   kNullValue});
    for (std::int64_t shown = 0; shown < choice.limit && rows.cursor->next(); ++shown) {
        const std::int64_t times = rows.cursor->getColumnInt64(layout::FreqCount);
        listing.row(Row{rows.cursor->getColumnValue(layout::FreqValue), times, percentCell(rows.share, times)});
    }
    listing.end();
}

void listPatterns(Session& session, Listing& listing, const FieldEntry& field, const RowChoice& choice) {
    ChosenRows rows = openRows(session, field, kPatterns, choice, "Patterns");
    listing.begin({"patterns",
                   rows.title,
                   {{"rank", "Rank", Column::Kind::Number},
                    {"pattern", "Pattern"},
                    {"short_form", "Short form"},
                    {"count", "Count", Column::Kind::Number},
                    percentColumn(rows.share)}});
    const ProfileCursor& patterns = *rows.cursor;
    for (std::int64_t shown = 0; shown < choice.limit && rows.cursor->next(); ++shown) {
        const KvbString pattern = patterns.getColumnValue(layout::PatternText);
        const std::int64_t times = patterns.getColumnInt64(layout::PatternCountColumn);
        listing.row(Row{patterns.getColumnInt64(layout::PatternRank), pattern,
                        session.viewer().getAbbreviatedPattern(pattern), times, percentCell(rows.share, times)});
    }
    listing.end();
}

void listPercentiles(Session& session, Listing& listing, const FieldEntry& field, std::int64_t limit) {
    listing.begin(
        {"percentiles",
         titleOf("Percentiles", field, kNoLimit, 0),
         {{"percentile", "Percentile"}, {"value", "Value", valueKind(field), -1, isNumericTypeCode(field.typeCode)}}});
    const ProfileCursorHandle percentiles = session.checked(session.viewer().getPercentiles(field.id));
    for (std::int64_t shown = 0; shown < limit && percentiles->next(); ++shown)
        listing.row(Row{percentiles->getColumnValue(layout::PercentileInterval),
                        percentiles->getColumnValue(layout::PercentileValue)});
    listing.end();
}

void listOutliers(Session& session, Listing& listing, const FieldEntry& field, std::int64_t limit) {
    listing.begin({"outliers",
                   titleOf("Outliers", field, kNoLimit, 0),
                   {{"side", "Side"},
                    {"position", "Position", Column::Kind::Number},
                    {"value", "Value", valueKind(field)},
                    {"count", "Count", Column::Kind::Number},
                    {"beyond_fence", "Beyond fence", Column::Kind::Number, 1}}});
    const ProfileCursorHandle outliers = session.checked(session.viewer().getOutliers(field.id));
    for (std::int64_t shown = 0; shown < limit && outliers->next(); ++shown) {
        const bool isLow = outliers->getColumnValue(layout::OutlierSideLetter) == KvbString("L");
        listing.row(Row{isLow ? "low" : "high", outliers->getColumnInt(layout::OutlierPosition) + 1,
                        outliers->getColumnValue(layout::OutlierValue), outliers->getColumnInt64(layout::OutlierCount),
                        fenceCell(outliers->getColumnInt(layout::OutlierFence))});
    }
    listing.end();
}

void listLog(Session& session, Listing& listing, std::int64_t limit) {
    constexpr std::array<std::string_view, 3> kLevels{"information", "warning", "error"};
    listing.begin({"log",
                   "Execution log",
                   {{"date", "Date"}, {"level", "Level"}, {"table", "Table"}, {"text", "Text", Column::Kind::Prose}}});
    const ProfileCursorHandle log = session.checked(session.viewer().getExecutionLog());
    for (std::int64_t shown = 0; shown < limit && log->next(); ++shown) {
        const auto level = static_cast<std::size_t>(log->getColumnInt(layout::LogLevelCode));
        listing.row(Row{dateText(log->getColumnDouble(layout::LogDate)),
                        std::string(level < kLevels.size() ? kLevels[level] : "?"),
                        KvbString(log->getColumnValue(layout::LogTable).view()), log->getColumnValue(layout::LogText)});
    }
    listing.end();
}

} // namespace tavix::cli
