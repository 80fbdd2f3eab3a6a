#include "report/FieldHistogram.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/Characters.h"
#include "base/DateTicks.h"
#include "base/GenException.h"
#include "base/NumberText.h"
#include "base/TypeWords.h"
#include "report/CheckedCursor.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace tavix {

namespace {

constexpr double kDaysTo1970 = 25'569; ///< from 1899-12-30
constexpr double kSecondsPerDay = 86'400;

std::string dateText(double seconds) {
    return formatDate(static_cast<std::int64_t>(std::llround(seconds)) * kTicksPerSecond);
}

std::string numberText(long double number) {
    constexpr long double kIntegers = 9.2e18L;
    return std::fabs(number) < kIntegers && std::trunc(number) == number
               ? formatInteger(static_cast<std::int64_t>(number))
               : formatReal(static_cast<double>(number));
}

std::optional<FieldHistogram> readStored(PrViewer& viewer, int fieldId) {
    const ProfileCursorHandle rows = checked(viewer, viewer.getHistogram(fieldId));
    FieldHistogram histogram;
    while (rows->next()) {
        histogram.kind = static_cast<HistogramKind>(rows->getColumnValue(layout::HistogramKindLetter).view().front());
        histogram.unit = static_cast<BinUnit>(rows->getColumnValue(layout::HistogramUnitLetter).view().front());
        FieldHistogram::Bin bin;
        bin.low = rows->getColumnDouble(layout::HistogramLow);
        bin.high = rows->getColumnDouble(layout::HistogramHigh);
        bin.count = rows->getColumnInt64(layout::HistogramCount);
        if (histogram.kind == HistogramKind::Dates) {
            bin.low = std::round((bin.low - kDaysTo1970) * kSecondsPerDay);
            bin.high = std::round((bin.high - kDaysTo1970) * kSecondsPerDay);
            bin.lowText = dateText(bin.low);
            bin.highText = dateText(bin.high);
        } else {
            bin.lowText = rows->getColumnValue(layout::HistogramLow).str();
            bin.highText = rows->getColumnValue(layout::HistogramHigh).str();
        }
        histogram.total += bin.count;
        histogram.bins.push_back(std::move(bin));
    }
    return histogram.bins.empty() ? std::nullopt : std::optional(std::move(histogram));
}

std::optional<FieldHistogram> shown(const Histogram& counted) {
    FieldHistogram histogram;
    histogram.kind = counted.kind;
    histogram.unit = counted.unit;
    for (std::size_t i = 0; i < counted.counts.size(); ++i) {
        FieldHistogram::Bin bin;
        if (counted.kind == HistogramKind::Dates) {
            bin.low = static_cast<double>(counted.dateBorder(i)) / static_cast<double>(kTicksPerSecond);
            bin.high = static_cast<double>(counted.dateBorder(i + 1)) / static_cast<double>(kTicksPerSecond);
            bin.lowText = dateText(bin.low);
            bin.highText = dateText(bin.high);
        } else {
            bin.low = static_cast<double>(counted.border(i));
            bin.high = static_cast<double>(counted.border(i + 1));
            bin.lowText = numberText(counted.border(i));
            bin.highText = numberText(counted.border(i + 1));
        }
        bin.count = static_cast<std::int64_t>(counted.counts[i]);
        histogram.total += bin.count;
        histogram.bins.push_back(std::move(bin));
    }
    return histogram;
}

/// A value in the order of its type with its count.
template <typename Value>
using Counted = std::vector<std::pair<Value, std::uint64_t>>;

template <typename Value, typename Parse>
Counted<Value> sortedValues(ProfileCursor& rows, Parse parse) {
    Counted<Value> values;
    while (rows.next()) {
        const KvbString text = rows.getColumnValue(layout::FreqValue);
        if (!rows.isColumnNull(layout::FreqValue) && !isBlank(text.view()))
            if (const auto value = parse(text.view()))
                values.emplace_back(*value, static_cast<std::uint64_t>(rows.getColumnInt64(layout::FreqCount)));
    }
    std::sort(values.begin(), values.end());
    return values;
}

std::optional<FieldHistogram> countLengths(ProfileCursor& rows) {
    LengthBins lengths;
    std::uint64_t shortest = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t longest = 0;
    while (rows.next()) {
        if (rows.isColumnNull(layout::FreqValue))
            continue;
        const std::uint64_t length = countCharacters(rows.getColumnValue(layout::FreqValue).view());
        shortest = std::min(shortest, length);
        longest = std::max(longest, length);
        lengths.add(length, static_cast<std::uint64_t>(rows.getColumnInt64(layout::FreqCount)));
    }
    return shortest > longest ? std::nullopt : shown(lengths.make(shortest, longest));
}

std::optional<FieldHistogram> count(PrViewer& viewer, const FieldRecord& field, FieldType type) {
    const ProfileCursorHandle rows = checked(viewer, viewer.getFreqDist(field.id, {}));
    if (type == FieldType::Text)
        return countLengths(*rows);
    if (type == FieldType::Date) {
        DateBins dates;
        const auto values = sortedValues<std::int64_t>(*rows, [](std::string_view text) { return parseDate(text); });
        for (const auto& [ticks, rowCount] : values)
            dates.add(ticks, rowCount);
        return values.empty() ? std::nullopt : shown(dates.take());
    }
    const auto values = sortedValues<double>(*rows, [](std::string_view text) { return parseNumber(text); });
    if (values.empty())
        return std::nullopt;
    NumberBins numbers(values.front().first, values.back().first, type == FieldType::Integer);
    for (const auto& [number, rowCount] : values)
        numbers.add(number, rowCount);
    return shown(numbers.take());
}

} // namespace

Result<std::optional<FieldHistogram>> readFieldHistogram(PrViewer& viewer, const FieldRecord& field) try {
    const std::string_view code = field.typeCode;
    const bool hasBins = code == "I" || code == "R" || code == "D" || code == "S";
    if (!hasBins)
        return std::optional<FieldHistogram>();
    auto stored = readStored(viewer, field.id);
    if (stored && field.fits && stored->kind != HistogramKind::Lengths)
        stored->reading = field.fits->reading;
    if (stored || field.freqCount > kMostToCount)
        return stored;
    return count(viewer, field, static_cast<FieldType>(code.front()));
} catch (const GenException& failure) {
    return Error{failure.getText().str()};
}

} // namespace tavix
