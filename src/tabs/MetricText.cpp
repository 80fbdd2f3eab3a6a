#include "tabs/MetricText.h"

#include "base/Metrics.h"
#include "base/NumberText.h"
#include "base/TypeWords.h"

#include <algorithm>

namespace tavix {

namespace {

constexpr std::size_t kLongText = 7;
constexpr int kMostPlaces = 6;

bool has(int metricId, MetricTrait trait) {
    const MetricInfo* const info = findMetric(metricId);
    return info && info->has(trait);
}

} // namespace

std::string metricText(int metricId, std::string_view typeCode, std::string_view value) {
    std::string text(value);
    if (!has(metricId, Rounded) || !isNumericType(typeCode) || text.size() < kLongText)
        return text;
    const auto number = parseNumber(value);
    if (!number)
        return text;
    int places = kMostPlaces;
    do {
        text = formatFixed(*number, places);
        --places;
    } while (text.size() >= kLongText && places >= 0);
    return text;
}

double metricBar(int metricId, std::string_view value) {
    const MetricInfo* const info = findMetric(metricId);
    if (!info || info->value != MetricValue::Percent)
        return kNoBar;
    const auto percent = parseNumber(value);
    return percent ? std::clamp(*percent / 100, 0.0, 1.0) : kNoBar;
}

std::string sampleMark(int metricId, bool isSample) {
    if (!isSample || !has(metricId, OfSampleAlone))
        return {};
    return std::string(kOfSampleAlone.substr(kOfSampleAlone.find('(')));
}

CellAlignment metricAlignment(int metricId) {
    return has(metricId, LeftAligned) ? CellAlignment::Left : CellAlignment::Right;
}

} // namespace tavix
