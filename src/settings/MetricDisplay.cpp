#include "settings/MetricDisplay.h"

#include "base/Metrics.h"
#include "base/NumberText.h"
#include "settings/Settings.h"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>

namespace tavix {

namespace {

/// The metrics that tell most about a field at a glance.
constexpr std::array kDecisive = {MetricId::ActualType,    MetricId::PercentNull,  MetricId::UniqueCount,
                                  MetricId::UniquePercent, MetricId::MinimumValue, MetricId::MaximumValue,
                                  MetricId::Mean,          MetricId::Mode};

std::string readChoice(const SettingsStore& store, std::size_t id) {
    return readMember(store, SettingFamily::MetricChoice, formatInteger(static_cast<std::int64_t>(id)));
}

Status writeChoice(SettingsStore& store, std::size_t id, const MetricDisplay& metric) {
    return writeMember(store, SettingFamily::MetricChoice, formatInteger(static_cast<std::int64_t>(id)),
                       formatMetricChoice(metric));
}

} // namespace

MetricDisplay parseMetricChoice(std::string_view text) {
    MetricDisplay metric;
    if (text.empty())
        return metric;
    metric.shown = text.front() == 'S';
    metric.position = static_cast<int>(std::clamp<std::int64_t>(
        decimalPrefix(text.substr(1)), std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
    return metric;
}

std::string formatMetricChoice(const MetricDisplay& metric) {
    return (metric.shown ? "S" : "U") + formatInteger(metric.position);
}

void readMetricChoices(const SettingsStore& store, std::span<MetricDisplay> metrics) {
    for (std::size_t id = 0; id < metrics.size(); ++id) {
        const MetricDisplay choice = parseMetricChoice(readChoice(store, id));
        metrics[id].shown = choice.shown;
        metrics[id].position = choice.position;
    }
}

Status writeMetricChoices(SettingsStore& store, std::span<const MetricDisplay> metrics) {
    Status outcome;
    for (std::size_t id = 0; id < metrics.size(); ++id)
        if (auto status = writeChoice(store, id, metrics[id]); !status && outcome)
            outcome = std::move(status);
    return outcome;
}

std::vector<MetricDisplay> standardMetricDisplay(const SettingsStore& store) {
    std::vector<MetricDisplay> metrics;
    for (const MetricInfo& info : metricCatalogue())
        metrics.push_back({std::string(info.name), false, 0});
    readMetricChoices(store, metrics);
    return metrics;
}

Status writeFirstStartDefaults(SettingsStore& store) {
    std::vector<MetricDisplay> metrics(kMetricCount);
    for (std::size_t id = 0; id < metrics.size(); ++id) {
        if (!readChoice(store, id).empty())
            return {};
        metrics[id] = {{}, true, static_cast<int>(kDecisive.size() + id)};
    }
    for (std::size_t place = 0; place < kDecisive.size(); ++place)
        metrics[index(kDecisive[place])].position = static_cast<int>(place);
    // Without gaps.
    const std::vector<int> order = metricOrder(metrics);
    for (std::size_t place = 0; place < order.size(); ++place)
        metrics[static_cast<std::size_t>(order[place])].position = static_cast<int>(place);
    return writeMetricChoices(store, metrics);
}

std::vector<int> metricOrder(std::span<const MetricDisplay> metrics) {
    std::vector<int> ids(metrics.size());
    std::iota(ids.begin(), ids.end(), 0);
    std::stable_sort(ids.begin(), ids.end(), [metrics](int a, int b) {
        return metrics[static_cast<std::size_t>(a)].position < metrics[static_cast<std::size_t>(b)].position;
    });
    return ids;
}

std::vector<int> shownMetrics(std::span<const MetricDisplay> metrics) {
    std::vector<int> ids = metricOrder(metrics);
    std::erase_if(ids, [metrics](int id) { return !metrics[static_cast<std::size_t>(id)].shown; });
    return ids;
}

} // namespace tavix
