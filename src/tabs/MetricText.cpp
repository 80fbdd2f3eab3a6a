#include "tabs/MetricText.h"

#include "base/Metrics.h"
#include "base/NumberText.h"
#include "base/TypeWords.h"
#include "report/CountText.h"

#include <algorithm>
#include <utility>

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

GridCell metricCell(int metricId, std::string_view typeCode, const KvbString& value) {
    GridCell cell;
    cell.alignment = metricAlignment(metricId);
    if (value.isNull()) {
        cell.text = kUnknownMetric;
        cell.state = CellState::Unknown;
        return cell;
    }
    cell.text = value.str();
    const MetricInfo* const info = findMetric(metricId);
    if (!info)
        return cell;
    std::string shown = metricText(metricId, typeCode, cell.text);
    if (info->value == MetricValue::WholeNumber) {
        if (const auto count = parseInteger(cell.text))
            shown = groupedCount(*count);
    } else if (info->value == MetricValue::Percent) {
        if (const auto percent = parseNumber(cell.text)) {
            shown = shareText(*percent);
            cell.bar = std::clamp(*percent / 100, 0.0, 1.0);
        }
    }
    if (shown != cell.text)
        cell.shown = std::move(shown);
    return cell;
}

std::string sampleMark(int metricId, bool isSample) {
    if (!isSample || !has(metricId, OfSampleAlone))
        return {};
    return std::string(kOfSampleAlone.substr(kOfSampleAlone.find('(')));
}

std::string figureMark(int metricId, bool isSample, const std::optional<FitFigures>& fits) {
    const std::string sample = sampleMark(metricId, isSample);
    const std::string_view suffix = fitSuffix(metricId, fits);
    if (suffix.empty())
        return sample;
    return sample.empty() ? std::string(suffix.substr(1)) : "(sample, fits)";
}

std::string fitToolTip(int metricId, const std::optional<FitFigures>& fits) {
    return fits && isOverFits(metricId) ? fitSentence(*fits) : std::string();
}

CellAlignment metricAlignment(int metricId) {
    return has(metricId, LeftAligned) ? CellAlignment::Left : CellAlignment::Right;
}

} // namespace tavix
