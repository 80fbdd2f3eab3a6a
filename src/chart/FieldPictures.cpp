#include "chart/FieldPictures.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/DateTicks.h"
#include "base/GenException.h"
#include "base/NullText.h"
#include "base/NumberText.h"
#include "chart/BarsPicture.h"
#include "chart/HistogramPicture.h"
#include "chart/OutlierPicture.h"
#include "chart/QuantilePicture.h"
#include "chart/RankPicture.h"
#include "chart/Scale.h"
#include "report/CheckedCursor.h"
#include "report/CountText.h"
#include "report/DistributionShare.h"
#include "report/FieldHistogram.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavix::chart {

namespace {

/// Ranks whose values are kept, and whose counts are read: those of a first block of short texts. Later ones are known
/// by the sums of blocks.
constexpr std::int64_t kFirstRanks = 100;
constexpr std::int64_t kExactRanks = 4096;
constexpr std::size_t kPatternBars = 10;
constexpr std::string_view kNoHistogram = "This run stored no histogram; profile again to see it.";

/// A value of the field, as it is written, as a position in a histogram of this kind.
std::optional<double> positionOfValue(const KvbString& value, HistogramKind kind, const FieldRecord& field) {
    if (value.isNull())
        return std::nullopt;
    if (kind != HistogramKind::Dates)
        return field.fits ? fitNumber(*field.fits, value.view()) : parseNumber(value.view());
    const auto ticks = field.fits ? fitTicks(*field.fits, value.view()) : parseDate(value.view());
    return ticks ? std::optional(static_cast<double>(*ticks) / static_cast<double>(kTicksPerSecond)) : std::nullopt;
}

/// The same of a figure, which may be computed.
std::optional<double> positionOf(const KvbString& figure, HistogramKind kind, const FieldRecord& field) {
    if (kind != HistogramKind::Dates && !figure.isNull())
        if (const auto number = parseNumber(figure.view()))
            return number;
    return positionOfValue(figure, kind, field);
}

/// A computed number with about five digits, and all digits before the point.
std::string shownValue(const KvbString& value) {
    const auto number = parseNumber(value.view());
    if (!number || parseInteger(value.view()))
        return value.str();
    constexpr double kWithPlaces = 1e6;
    if (std::fabs(*number) < 1 || std::fabs(*number) >= kWithPlaces)
        return shownNumber(*number);
    const int whole = static_cast<int>(std::log10(std::fabs(*number))) + 1;
    std::string text = formatFixed(*number, std::max(1, 5 - whole));
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.'))
        text.pop_back();
    return text;
}

ValueMarks readMarks(PrViewer& viewer, const FieldRecord& field, HistogramKind kind) {
    ValueMarks marks;
    if (kind == HistogramKind::Lengths)
        return marks;
    const ProfileCursorHandle rows = checked(viewer, viewer.getPercentiles(field.id));
    while (rows->next()) {
        const std::string interval = rows->getColumnValue(layout::PercentileInterval).str();
        const KvbString value = rows->getColumnValue(layout::PercentileValue);
        const auto mark = [&](std::optional<double>& position, std::string& text) {
            position = positionOf(value, kind, field);
            text = shownValue(value);
        };
        if (interval == "25%")
            mark(marks.lowQuartile, marks.lowQuartileText);
        else if (interval == "50%")
            mark(marks.median, marks.medianText);
        else if (interval == "75%")
            mark(marks.highQuartile, marks.highQuartileText);
    }
    const KvbString& mean = field.metrics[index(MetricId::Mean)];
    if (kind == HistogramKind::Numbers && (marks.mean = positionOf(mean, kind, field)))
        marks.meanText = shownValue(mean);
    return marks;
}

std::string baseOf(const FieldRecord& field) {
    return field.fits ? fitSentence(*field.fits) : std::string();
}

std::string labelOf(const KvbString& value) {
    if (value.isNull())
        return std::string(kNullValue);
    return value.isEmpty() ? "(empty)" : value.str();
}

std::unique_ptr<Picture> readBars(PrViewer& viewer, const FieldRecord& field) {
    const std::int64_t total = viewer.getFreqDistSum(field.id);
    const ProfileCursorHandle rows = checked(viewer, viewer.getFreqDist(field.id, {}));
    std::vector<BarsPicture::Bar> bars;
    while (bars.size() <= kFewValues && rows->next()) {
        const KvbString value =
            rows->isColumnNull(layout::FreqValue) ? KvbString() : rows->getColumnValue(layout::FreqValue);
        bars.push_back({labelOf(value), rows->getColumnInt64(layout::FreqCount), {ActionKind::DrillValue, value}});
    }
    return std::make_unique<BarsPicture>("Values", std::move(bars), total,
                                         DistributionShare(DistributionKind::Frequency, false, total).BaseText());
}

FieldPicture readValues(PrViewer& viewer, const FieldRecord& field) {
    if (field.freqCount < 1)
        return {};
    if (field.freqCount <= kFewValues)
        return {readBars(viewer, field), {}};
    auto histogram = readFieldHistogram(viewer, field);
    if (!histogram)
        throw GenException(histogram.error().text);
    if (!*histogram)
        return {nullptr, std::string(kNoHistogram)};
    ValueMarks marks = readMarks(viewer, field, (*histogram)->kind);
    std::string base = (*histogram)->kind == HistogramKind::Lengths ? std::string() : baseOf(field);
    return {std::make_unique<HistogramPicture>(std::move(**histogram), std::move(marks)), {}, std::move(base)};
}

FieldPicture readRanks(PrViewer& viewer, const FieldRecord& field) {
    if (field.freqCount < 1)
        return {};
    std::vector<RankPicture::Value> first;
    std::vector<RankPicture::Sum> sums;
    std::int64_t rows = 0;
    const ProfileCursorHandle values = checked(viewer, viewer.getFreqDist(field.id, {}));
    for (std::int64_t rank = 1; rank <= kExactRanks && values->next(); ++rank) {
        const std::int64_t count = values->getColumnInt64(layout::FreqCount);
        rows += count;
        sums.push_back({rank, rows});
        if (rank > kFirstRanks)
            continue;
        const KvbString value =
            values->isColumnNull(layout::FreqValue) ? KvbString() : values->getColumnValue(layout::FreqValue);
        first.push_back({labelOf(value), count, {ActionKind::DrillValue, value}});
    }
    rows = 0;
    const ProfileCursorHandle blocks = checked(viewer, viewer.getFreqDistRanks(field.id));
    while (blocks->next()) {
        rows += blocks->getColumnInt64(layout::RankSum);
        sums.push_back(
            {blocks->getColumnInt64(layout::RankFirst) + blocks->getColumnInt64(layout::RankValues) - 1, rows});
    }
    return {std::make_unique<RankPicture>(std::move(first), sums, field.freqCount, rows), {}};
}

FieldPicture readPatterns(PrViewer& viewer, const FieldRecord& field) {
    if (field.patternCount < 1)
        return {};
    const std::int64_t total = patternTotal(field.metrics);
    std::int64_t rest = total;
    const ProfileCursorHandle rows = checked(viewer, viewer.getPatternDist(field.id, {}));
    std::vector<BarsPicture::Bar> bars;
    while (bars.size() < kPatternBars && rows->next()) {
        const KvbString pattern = rows->getColumnValue(layout::PatternText);
        const std::int64_t count = rows->getColumnInt64(layout::PatternCountColumn);
        const KvbString label = pattern.isEmpty() ? KvbString(labelOf(pattern)) : viewer.getAbbreviatedPattern(pattern);
        bars.push_back({label.str(), count, {ActionKind::DrillPattern, pattern}});
        rest -= count;
    }
    if (const std::int64_t others = field.patternCount - static_cast<std::int64_t>(bars.size()); others > 0 && rest > 0)
        bars.push_back({countOf(others, "other pattern"), rest, {}, true});
    return {std::make_unique<BarsPicture>("Most frequent patterns", std::move(bars), total,
                                          DistributionShare(DistributionKind::Pattern, false, total).BaseText()),
            {}};
}

/// The kind of histogram in which the field's values have a position; nothing for texts and truth values.
std::optional<HistogramKind> positionKind(const FieldRecord& field) {
    const std::string_view code = field.figureTypeCode();
    if (code == "I" || code == "R")
        return HistogramKind::Numbers;
    return code == "D" ? std::optional(HistogramKind::Dates) : std::nullopt;
}

FieldPicture readPercentiles(PrViewer& viewer, const FieldRecord& field) {
    const std::optional<HistogramKind> kind = positionKind(field);
    if (!kind)
        return {nullptr, "Only numbers and dates have a curve of percentiles."};
    std::vector<QuantilePicture::Point> points;
    const ProfileCursorHandle rows = checked(viewer, viewer.getPercentiles(field.id));
    while (rows->next()) {
        const std::string interval = rows->getColumnValue(layout::PercentileInterval).str();
        const KvbString text = rows->getColumnValue(layout::PercentileValue);
        const auto percent = parseNumber(std::string_view(interval).substr(0, interval.find('%')));
        const auto value = positionOf(text, *kind, field);
        const bool ascends =
            points.empty() || (percent && value && *percent > points.back().percent && *value >= points.back().value);
        if (percent && value && *percent >= 0 && *percent <= 100 && ascends)
            points.push_back({*percent, *value, text.str()});
    }
    if (points.size() < 2)
        return {};
    return {std::make_unique<QuantilePicture>(*kind, std::move(points), field.fits ? field.fits->reading : ""),
            {},
            baseOf(field)};
}

FieldPicture readOutliers(PrViewer& viewer, const FieldRecord& field) {
    const std::optional<HistogramKind> kind = positionKind(field);
    std::vector<OutlierPicture::Outlier> lowest;
    std::vector<OutlierPicture::Outlier> highest;
    const ProfileCursorHandle rows = checked(viewer, viewer.getOutliers(field.id));
    while (rows->next()) {
        const KvbString value = rows->getColumnValue(layout::OutlierValue);
        auto& list = rows->getColumnValue(layout::OutlierSideLetter).view() == "H" ? highest : lowest;
        list.push_back({labelOf(value),
                        rows->getColumnInt64(layout::OutlierCount),
                        rows->getColumnInt(layout::OutlierFence),
                        kind ? positionOfValue(value, *kind, field) : std::nullopt,
                        {ActionKind::DrillValue, value}});
    }
    if (lowest.empty() && highest.empty())
        return {};
    std::optional<FieldHistogram> histogram;
    std::optional<OutlierPicture::Quartiles> quartiles;
    if (kind) {
        auto read = readFieldHistogram(viewer, field);
        if (!read)
            throw GenException(read.error().text);
        histogram = std::move(*read);
        const ValueMarks marks = readMarks(viewer, field, *kind);
        if (*kind == HistogramKind::Numbers && marks.lowQuartile && marks.highQuartile)
            quartiles = {*marks.lowQuartile, *marks.highQuartile};
    }
    return {std::make_unique<OutlierPicture>(std::move(lowest), std::move(highest), std::move(histogram), quartiles),
            {},
            baseOf(field)};
}

/// The result of `read`, or the failure that it throws.
template <typename Read>
Result<FieldPicture> guarded(Read read) try {
    return read();
} catch (const GenException& failure) {
    return Error{failure.getText().str()};
}

} // namespace

Result<FieldPicture> pictureOfValues(PrViewer& viewer, const FieldRecord& field) {
    return guarded([&] { return readValues(viewer, field); });
}

Result<FieldPicture> pictureOfRanks(PrViewer& viewer, const FieldRecord& field) {
    return guarded([&] { return readRanks(viewer, field); });
}

Result<FieldPicture> pictureOfPercentiles(PrViewer& viewer, const FieldRecord& field) {
    return guarded([&] { return readPercentiles(viewer, field); });
}

Result<FieldPicture> pictureOfOutliers(PrViewer& viewer, const FieldRecord& field) {
    return guarded([&] { return readOutliers(viewer, field); });
}

Result<FieldPicture> pictureOfPatterns(PrViewer& viewer, const FieldRecord& field) {
    return guarded([&] { return readPatterns(viewer, field); });
}

} // namespace tavix::chart
