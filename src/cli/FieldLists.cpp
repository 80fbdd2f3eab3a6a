#include "cli/FieldLists.h"

#include "access/Layouts.h"
#include "base/NullText.h"
#include "base/NumberText.h"
#include "base/TypeWords.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Session.h"
#include "cli/ShownDate.h"
#include "cli/Signals.h"
#include "filter/ExpressionCheck.h"
#include "report/DistributionShare.h"
#include "report/FieldBreakdown.h"
#include "report/FitReadings.h"
#include "report/ReportTables.h"

#include <fmt/format.h>

#include <array>

namespace tavix::cli {

namespace {

constexpr int kPercentPlaces = 2;

Column::Kind columnKind(MetricValue value) {
    switch (value) {
    case MetricValue::FieldValue:
        return Column::Kind::TypedValue;
    case MetricValue::Word:
        return Column::Kind::Text;
    default:
        return Column::Kind::Number;
    }
}

std::vector<const MetricInfo*> metricsOf(MetricChoice choice) {
    std::vector<const MetricInfo*> chosen;
    for (const MetricInfo& info : metricCatalogue())
        if (choice == MetricChoice::All || info.has(MainMetric))
            chosen.push_back(&info);
    return chosen;
}

KvbDatavar typeCell(const std::string& typeCode) {
    const std::string_view word = typeWord(typeCode);
    return word.empty() ? KvbDatavar() : KvbDatavar(std::string(word));
}

Section metricsSection(const std::vector<const MetricInfo*>& metrics, bool isSample) {
    Section section{"metrics", "Metrics", {{"field", "Field"}, {"type", "Type"}}, false, "-", 1};
    for (const MetricInfo* metric : metrics) {
        std::string title(metric->name);
        if (isSample && metric->has(OfSampleAlone))
            title += kOfSampleAlone;
        const Column::Kind kind = columnKind(metric->value);
        const int places = metric->value == MetricValue::Percent ? kPercentPlaces : -1;
        section.columns.push_back(
            {std::string(metric->key), std::move(title), kind, places, kind == Column::Kind::Number});
        section.columns.back().isMarked = isOverFits(static_cast<int>(metric->id));
    }
    return section;
}

/// The columns that tell over which values the figures of a field are.
void addFitColumns(Section& section) {
    section.fitColumn = static_cast<int>(section.columns.size());
    section.columns.insert(section.columns.end(), {{"fits", "Fits"},
                                                   {"fit_rows", "Rows that fit", Column::Kind::Number},
                                                   {"fit_of", "Of rows", Column::Kind::Number}});
}

void addFitCells(Row& row, const std::optional<FitFigures>& fits) {
    if (fits)
        row.insert(row.end(), {KvbDatavar(fits->reading), KvbDatavar(fits->rows), KvbDatavar(fits->of)});
    else
        row.resize(row.size() + 3);
}

/// ", a sample of 2 of 4 records"; "" for a whole table.
std::string sampleText(const TableIdentity& table) {
    if (!table.isSample)
        return {};
    return table.kind == TableKind::Filter
               ? std::string(", of a sample")
               : fmt::format(", a sample of {} of {} records", table.processedRecords, table.totalRecords);
}

Row metricsRow(const FieldRecord& field, const std::vector<const MetricInfo*>& metrics) {
    Row row{field.name, typeCell(field.typeCode)};
    for (const MetricInfo* metric : metrics)
        row.emplace_back(field.metrics[index(metric->id)]);
    return row;
}

/// The record of a field; throws when the run does not have it.
FieldRecord readRecord(Session& session, const ChosenField& field) {
    for (FieldRecord& record : readFields(session.viewer(), field.table.id))
        if (record.id == field.id)
            return std::move(record);
    throw CommandError(ExitCode::Source, fmt::format("the run has no field \"{}\"", field.name));
}

std::string titleOf(std::string_view what, const ChosenField& field, std::int64_t limit, std::int64_t count) {
    std::string title =
        fmt::format("{} of {}.{}{}", what, field.table.displayName(), field.name, sampleText(field.table));
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

/// The heading of values of a list that may be over the values that fit.
std::string valueTitle(const std::optional<FitFigures>& fits) {
    return fits ? "Value" + std::string(kOverFits) : "Value";
}

/// Follows the title of figures over the values that fit.
std::string fitRemark(const std::optional<FitFigures>& fits) {
    return fits ? std::string(kOverFits) + ", of " + fitValues(*fits) : std::string();
}

Column::Kind valueKind(const ChosenField& field) {
    return isNumericType(field.typeCode) ? Column::Kind::Number : Column::Kind::Text;
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

/// The rows to list, and the base of their percentages.
struct ChosenRows {
    ProfileCursorHandle cursor;
    std::int64_t count = 0; ///< of rows, disregarding the limit
    DistributionShare share;
    std::string title;
};

ChosenRows openAll(Session& session, const ChosenField& field, const DistributionAccess& access) {
    PrViewer& viewer = session.viewer();
    ChosenRows rows;
    const std::int64_t total = access.kind == DistributionKind::Pattern
                                   ? patternTotal(readRecord(session, field).metrics)
                                   : viewer.getFreqDistSum(field.id);
    session.check(total >= 0);
    rows.share = {access.kind, false, total};
    rows.count = (viewer.*access.count)(field.id);
    session.check(rows.count >= 0);
    rows.cursor = session.checked((viewer.*access.open)(field.id, KvbString(""), nullptr));
    return rows;
}

/// Walks the rows twice, because the first percentage already needs the sum of all counts.
ChosenRows openFiltered(Session& session, const ChosenField& field, const DistributionAccess& access,
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

/// `what` names the rows in the title ("Values").
ChosenRows openRows(Session& session, const ChosenField& field, const DistributionAccess& access,
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

void saySample(const TableIdentity& table) {
    if (table.isSample)
        say(fmt::format("{}{}: counts, shares and figures are those of the sampled records alone", table.displayName(),
                        sampleText(table)));
}

void listMetrics(Session& session, Listing& listing, const TableIdentity& table, MetricChoice choice) {
    const std::vector<const MetricInfo*> metrics = metricsOf(choice);
    Section section = metricsSection(metrics, table.isSample);
    section.title = fmt::format("Fields of {}{}", table.displayName(), sampleText(table));
    addFitColumns(section);
    listing.begin(section);
    for (const FieldRecord& field : readFields(session.viewer(), table.id)) {
        Row row = metricsRow(field, metrics);
        addFitCells(row, field.fits);
        listing.row(row);
    }
    listing.end();
}

void listMetrics(Session& session, Listing& listing, const ChosenField& field) {
    const std::vector<const MetricInfo*> metrics = metricsOf(MetricChoice::All);
    Section section = metricsSection(metrics, field.table.isSample);
    section.title = titleOf("Metrics", field, kNoLimit, 0);
    section.isRecord = true;
    section.columns.push_back({"quantile_rule", "Quantile Rule"});
    addFitColumns(section);
    listing.begin(section);
    const FieldRecord record = readRecord(session, field);
    Row row = metricsRow(record, metrics);
    row.emplace_back(record.quantileRule);
    addFitCells(row, record.fits);
    listing.row(row);
    listing.end();
}

void listTypes(Session& session, Listing& listing, const ChosenField& field, std::int64_t limit) {
    PrViewer& viewer = session.viewer();
    const auto breakdown = readFieldBreakdown(viewer, field.id);
    if (!breakdown)
        throw CommandError(ExitCode::Source, breakdown.error().text);
    const auto misfits = readMisfits(viewer, field.id, *breakdown, kMisfitsInText);
    if (!misfits)
        throw CommandError(ExitCode::Source, misfits.error().text);
    const std::string declared = declaredText(readRecord(session, field), *breakdown);
    const std::string ambiguity = ambiguityText(*breakdown);
    const std::string text = breakdownText(*breakdown, *misfits);
    const auto orNull = [](const std::string& value) { return value.empty() ? KvbDatavar() : KvbDatavar(value); };
    if (listing.format() == Format::Json) {
        const Column::Kind number = Column::Kind::Number;
        listing.begin({"types",
                       "Types",
                       {{"examined", "Examined", number},
                        {"reading", "Reading"},
                        {"values", "Values", number},
                        {"rows", "Rows", number},
                        {"fit_values", "Values that fit", number},
                        {"fit_rows", "Rows that fit", number},
                        {"figures_over_fits", "Figures over fits", number},
                        {"text", "Text"},
                        {"ambiguity", "Ambiguity"},
                        {"declared", "Declared"}},
                       true});
        const auto known = [&](std::int64_t count) { return breakdown->isExamined ? KvbDatavar(count) : KvbDatavar(); };
        listing.row(Row{std::int64_t{breakdown->isExamined ? 1 : 0}, orNull(breakdown->reading),
                        known(breakdown->values), known(breakdown->rows), known(breakdown->fitValues),
                        known(breakdown->fitRows), known(breakdown->hasFigures ? 1 : 0), text, orNull(ambiguity),
                        orNull(declared)});
        listing.end();
    }
    std::string title =
        titleOf("Types", field, limit, static_cast<std::int64_t>(breakdown->forms.size())) + ": " + text;
    for (const std::string& remark : {ambiguity, declared})
        if (!remark.empty())
            title += ". " + remark;
    listing.begin({"forms",
                   title,
                   {{"form", "Form"},
                    {"values", "Values", Column::Kind::Number},
                    {"rows", "Rows", Column::Kind::Number},
                    {"percent", "% of filled rows", Column::Kind::Number, kPercentPlaces},
                    {"example", "Example"}}});
    for (const FieldBreakdown::Form& form : breakdown->forms) {
        if (limit-- <= 0)
            break;
        listing.row(Row{form.form, form.values, form.rows,
                        100.0 * static_cast<double>(form.rows) / static_cast<double>(breakdown->rows), form.example});
    }
    listing.end();
}

void listValues(Session& session, Listing& listing, const ChosenField& field, const RowChoice& choice) {
    ChosenRows rows = openRows(session, field, kValues, choice, "Values");
    listing.begin({"values",
                   rows.title,
                   {{"value", "Value"}, {"count", "Count", Column::Kind::Number}, percentColumn(rows.share)},
                   false,
                   std::string(kNullValue)});
    for (std::int64_t shown = 0; shown < choice.limit && rows.cursor->next(); ++shown) {
        const std::int64_t times = rows.cursor->getColumnInt64(layout::FreqCount);
        listing.row(Row{rows.cursor->getColumnValue(layout::FreqValue), times, percentCell(rows.share, times)});
    }
    listing.end();
}

void listPatterns(Session& session, Listing& listing, const ChosenField& field, const RowChoice& choice) {
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

void listPercentiles(Session& session, Listing& listing, const ChosenField& field, std::int64_t limit) {
    const std::optional<FitFigures> fits = FitReadings(session.viewer()).Of(field.table.id, field.id);
    listing.begin({"percentiles",
                   titleOf("Percentiles", field, kNoLimit, 0) + fitRemark(fits),
                   {{"percentile", "Percentile"},
                    {"value", valueTitle(fits), valueKind(field), -1, isNumericType(field.typeCode)}}});
    const ProfileCursorHandle percentiles = session.checked(session.viewer().getPercentiles(field.id));
    for (std::int64_t shown = 0; shown < limit && percentiles->next(); ++shown)
        listing.row(Row{percentiles->getColumnValue(layout::PercentileInterval),
                        percentiles->getColumnValue(layout::PercentileValue)});
    listing.end();
}

void listOutliers(Session& session, Listing& listing, const ChosenField& field, std::int64_t limit) {
    const std::optional<FitFigures> fits = FitReadings(session.viewer()).Of(field.table.id, field.id);
    listing.begin({"outliers",
                   titleOf("Outliers", field, kNoLimit, 0) + fitRemark(fits),
                   {{"side", "Side"},
                    {"position", "Position", Column::Kind::Number},
                    {"value", valueTitle(fits), valueKind(field)},
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
        listing.row(Row{shownDate(log->getColumnDouble(layout::LogDate)),
                        std::string(level < kLevels.size() ? kLevels[level] : "?"),
                        KvbString(log->getColumnValue(layout::LogTable).view()), log->getColumnValue(layout::LogText)});
    }
    listing.end();
}

} // namespace tavix::cli
