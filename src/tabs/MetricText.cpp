#include "tabs/MetricText.h"

#include "base/Metrics.h"
#include "base/NumberText.h"

#include <algorithm>

namespace tavix {

namespace {

constexpr std::size_t kLongText = 7;
constexpr int kMostPlaces = 6;

bool isRounded(int metricId) {
    switch (static_cast<MetricId>(metricId)) {
    case MetricId::Mean:
    case MetricId::StandardDeviation:
    case MetricId::StandardError:
        return true;
    default:
        return false;
    }
}

} // namespace

std::string metricText(int metricId, std::string_view typeCode, std::string_view value) {
    std::string text(value);
    if (!isRounded(metricId) || (typeCode != "I" && typeCode != "R") || text.size() < kLongText)
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
    const auto id = static_cast<MetricId>(metricId);
    if (id != MetricId::UniquePercent && id != MetricId::PercentNull)
        return kNoBar;
    const auto percent = parseNumber(value);
    return percent ? std::clamp(*percent / 100, 0.0, 1.0) : kNoBar;
}

std::string sampleMark(int metricId, bool isSample) {
    if (!isSample || !isOfSampleAlone(static_cast<MetricId>(metricId)))
        return {};
    return std::string(kOfSampleAlone.substr(kOfSampleAlone.find('(')));
}

CellAlignment metricAlignment(int metricId) {
    switch (static_cast<MetricId>(metricId)) {
    case MetricId::MinimumValue:
    case MetricId::MaximumValue:
    case MetricId::Mode:
    case MetricId::DefinedType:
    case MetricId::DefinedLength:
    case MetricId::PrimaryKey:
    case MetricId::Nullable:
    case MetricId::ActualType:
        return CellAlignment::Left;
    default:
        return CellAlignment::Right;
    }
}

} // namespace tavix
