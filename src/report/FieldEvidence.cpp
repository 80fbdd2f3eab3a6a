#include "report/FieldEvidence.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/Ascii.h"
#include "base/Characters.h"
#include "base/DateTicks.h"
#include "base/NumberText.h"
#include "report/CheckedCursor.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tavix {

namespace {

constexpr int kMostRuns = 100;
constexpr std::int64_t kMostPatterns = 500;
constexpr std::string_view kBlank = "isblank(`Value`)";

std::int64_t countAt(const FieldRecord& field, MetricId metric) {
    return parseInteger(field.metrics[index(metric)].view()).value_or(0);
}

void readValues(PrViewer& viewer, FieldEvidence& made, std::size_t mostValues) {
    made.hasAllValues = made.distinct >= 0 && static_cast<std::size_t>(made.distinct) <= mostValues;
    if (!made.hasAllValues)
        return;
    const ProfileCursorHandle rows = checked(viewer, viewer.getFreqDist(made.field.id, ""));
    while (rows->next()) {
        if (rows->isColumnNull(layout::FreqValue))
            continue;
        CountedText value{textAt(*rows, layout::FreqValue), rows->getColumnInt64(layout::FreqCount)};
        if (!isBlank(value.text))
            made.values.push_back(std::move(value));
    }
}

void readPatterns(PrViewer& viewer, FieldEvidence& made) {
    made.hasAllPatterns = made.field.patternCount <= kMostPatterns;
    if (!made.hasAllPatterns)
        return;
    const ProfileCursorHandle rows = checked(viewer, viewer.getPatternDist(made.field.id, ""));
    while (rows->next()) {
        CountedText pattern{textAt(*rows, layout::PatternText), rows->getColumnInt64(layout::PatternCountColumn)};
        if (!isBlank(pattern.text))
            made.patterns.push_back(std::move(pattern));
    }
}

void readExtremes(PrViewer& viewer, FieldEvidence& made) {
    const ProfileCursorHandle rows = checked(viewer, viewer.getOutliers(made.field.id));
    while (rows->next()) {
        ExtremeValue value{textAt(*rows, layout::OutlierValue), rows->getColumnInt64(layout::OutlierCount),
                           rows->getColumnInt(layout::OutlierFence) == 2};
        (textAt(*rows, layout::OutlierSideLetter) == "L" ? made.lowest : made.highest).push_back(std::move(value));
    }
}

/// Whether one of the words of a name is one of those that identifiers have: "customer_id", "zip code", "OrderNo".
bool hasKeyWord(std::string_view name) {
    constexpr std::array<std::string_view, 13> kWords{"id",   "key",  "code", "no",   "nr",   "number", "uuid",
                                                      "guid", "iata", "zip",  "isbn", "iban", "ean"};
    std::string word;
    const auto isKey = [&] { return std::find(kWords.begin(), kWords.end(), word) != kWords.end(); };
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        const bool isUpper = c >= 'A' && c <= 'Z';
        const bool beginsWord = isUpper && i > 0 && name[i - 1] >= 'a' && name[i - 1] <= 'z';
        if (!isAsciiLetter(c) || beginsWord) {
            if (isKey())
                return true;
            word.clear();
        }
        if (isAsciiLetter(c))
            word += asciiLower(c);
    }
    return isKey();
}

} // namespace

TableEvidence readTableEvidence(PrViewer& viewer, int tableId) {
    const auto history = [&](MetricId metric) {
        return readMetricHistory(viewer, tableId, static_cast<int>(metric), kMostRuns);
    };
    TableEvidence table{history(MetricId::NonNullCount),
                        history(MetricId::NullCount),
                        history(MetricId::UniqueCount),
                        history(MetricId::MinimumValue),
                        history(MetricId::MaximumValue),
                        history(MetricId::MaximumLength),
                        {}};
    const ProfileCursorHandle rows = checked(viewer, viewer.getFitReadings(tableId));
    while (rows->next()) {
        const auto reading = forms::Reading::parse(textAt(*rows, layout::FitReading));
        if (reading && rows->getColumnInt(layout::FitHasFigures) != 0)
            table.readings.emplace(
                rows->getColumnInt(layout::FitFieldId),
                std::pair(*reading, rows->getColumnInt64(layout::FitRows) - rows->getColumnInt64(layout::FitFitRows)));
    }
    return table;
}

std::optional<double> FieldEvidence::number(MetricId metric) const {
    return parseNumber(field.metrics[index(metric)].view());
}

bool FieldEvidence::holdsNumbers() const {
    return reading ? reading->type == FieldType::Integer || reading->type == FieldType::Real : type && type->isNumeric;
}

bool FieldEvidence::holdsDates() const {
    return reading ? reading->type == FieldType::Date : isType(FieldType::Date);
}

std::optional<double> FieldEvidence::numberIn(std::string_view text) const {
    return reading ? reading->number(text) : parseNumber(text);
}

std::optional<std::int64_t> FieldEvidence::ticksIn(std::string_view text) const {
    return reading ? reading->ticks(text) : parseDate(text);
}

RunShare FieldEvidence::uniqueRuns() const {
    RunShare share;
    for (std::size_t i = 0; i < uniqueHistory.size() && i < nonNullHistory.size(); ++i) {
        if (std::isnan(uniqueHistory[i]) || std::isnan(nonNullHistory[i]))
            continue;
        ++share.all;
        share.meeting += uniqueHistory[i] == nonNullHistory[i] ? 1 : 0;
    }
    return share;
}

bool FieldEvidence::looksLikeKey() const {
    if (hasKeyWord(field.name))
        return true;
    const auto low = number(MetricId::MinimumValue);
    const auto high = number(MetricId::MaximumValue);
    constexpr double kDense = 2; // places for each value
    const bool isDense =
        isType(FieldType::Integer) && low && high && *high - *low + 1 <= kDense * static_cast<double>(distinct);
    return isDense && distinct == rows - nulls;
}

bool FieldEvidence::isGrowingIdentifier() const {
    constexpr double kNearlyAll = 0.99;
    return isType(FieldType::Integer) && looksLikeKey() &&
           static_cast<double>(distinct) >= kNearlyAll * static_cast<double>(rows - nulls);
}

std::int64_t rowsThatMeet(PrViewer& viewer, int fieldId, std::string_view condition) {
    std::int64_t sum = 0;
    const ProfileCursorHandle rows = checked(viewer, viewer.getFreqDist(fieldId, KvbString(condition)));
    while (rows->next())
        sum += rows->getColumnInt64(layout::FreqCount);
    return sum;
}

LengthTail readLengthTail(PrViewer& viewer, int fieldId, std::int64_t longest) {
    LengthTail tail;
    const auto valuesThatMeet = [&](const std::string& condition) {
        std::int64_t values = 0;
        const ProfileCursorHandle rows = checked(viewer, viewer.getFreqDist(fieldId, KvbString(condition)));
        while (rows->next())
            ++values;
        return values;
    };
    tail.valuesAtEnd = valuesThatMeet(fmt::format("length(`Value`) = {}", longest));
    tail.valuesBefore =
        valuesThatMeet(fmt::format("length(`Value`) between {} and {}", longest - LengthTail::kBefore, longest - 1));
    return tail;
}

FieldEvidence readFieldEvidence(PrViewer& viewer, FieldRecord field, const TableEvidence& table, bool isSample,
                                std::size_t mostValues) {
    FieldEvidence made;
    made.isSample = isSample;
    made.type = findFieldType(field.typeCode);
    made.rows = countAt(field, MetricId::Count);
    made.nulls = countAt(field, MetricId::NullCount);
    made.distinct = countAt(field, MetricId::UniqueCount);
    made.nonNullHistory = table.nonNulls.Of(field.id);
    made.nullHistory = table.nulls.Of(field.id);
    made.uniqueHistory = table.unique.Of(field.id);
    made.minimumHistory = table.minimum.Of(field.id);
    made.maximumHistory = table.maximum.Of(field.id);
    made.longestHistory = table.longest.Of(field.id);
    if (const auto found = table.readings.find(field.id);
        found != table.readings.end() && made.isType(FieldType::Text)) {
        made.reading = found->second.first;
        made.misfitRows = found->second.second;
    }
    // The metrics count blank texts, but not empty ones.
    const bool mayHaveBlanks =
        countAt(field, MetricId::BlankCount) > 0 || field.metrics[index(MetricId::MinimumLength)].view() == "0";
    made.field = std::move(field);
    if (mayHaveBlanks)
        made.blanks = rowsThatMeet(viewer, made.field.id, kBlank);
    readValues(viewer, made, mostValues);
    readPatterns(viewer, made);
    readExtremes(viewer, made);
    return made;
}

} // namespace tavix
