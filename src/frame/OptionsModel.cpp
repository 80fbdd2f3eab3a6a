#include "frame/OptionsModel.h"

#include <algorithm>

namespace tavix {

std::vector<OptionNumber> optionNumbers() {
    return {
        {Setting::MaxChartVals, &OptionValues::maxChartVals},
        {Setting::MaxFreqVals, &OptionValues::maxFreqVals},
        {Setting::MaxPkFkOutliers, &OptionValues::maxPkFkOutliers},
        {Setting::MaxRdndntCmnVals, &OptionValues::maxRdndntCmnVals},
        {Setting::MaxDrillThruRows, &OptionValues::maxDrillThruRows},
        {Setting::FirstRDAThreshold, &OptionValues::firstThreshold},
        {Setting::SecondRDAThreshold, &OptionValues::secondThreshold},
    };
}

OptionsModel::OptionsModel(const SettingsStore& store, std::vector<MetricDisplay> metrics)
    : m_metrics(std::move(metrics)), m_order(metricOrder(m_metrics)) {
    for (const OptionNumber& number : optionNumbers())
        values.*number.value = readInteger(store, number.setting);
    values.newestNotesFirst = readFlag(store, Setting::NotesSortOrder);
    values.hideWelcome = readFlag(store, Setting::HideWelcomeDialog);
    values.colorScheme = readColorScheme(store);
    values.statFont = readStatFont(store);
    values.defaultLocale = readText(store, Setting::DefaultLocale);
    values.overrideFieldWidths = readFlag(store, Setting::OverrideFieldWidths);
}

std::optional<OptionProblem> OptionsModel::Check() const {
    if (values.secondThreshold < values.firstThreshold)
        return OptionProblem{Setting::SecondRDAThreshold,
                             "The second RDA warning threshold must be greater than or equal to the first"};
    return std::nullopt;
}

Status OptionsModel::Save(SettingsStore& store) const {
    std::vector<Status> outcomes;
    for (const OptionNumber& number : optionNumbers())
        outcomes.push_back(writeInteger(store, number.setting, values.*number.value));
    outcomes.push_back(writeFlag(store, Setting::NotesSortOrder, values.newestNotesFirst));
    outcomes.push_back(writeFlag(store, Setting::HideWelcomeDialog, values.hideWelcome));
    if (values.colorScheme)
        outcomes.push_back(writeColorScheme(store, *values.colorScheme));
    outcomes.push_back(writeStatFont(store, values.statFont));
    outcomes.push_back(writeText(store, Setting::DefaultLocale, values.defaultLocale));
    outcomes.push_back(writeFlag(store, Setting::OverrideFieldWidths, values.overrideFieldWidths));
    const auto failed = std::find_if(outcomes.begin(), outcomes.end(), [](const Status& s) { return !s.ok(); });
    return failed == outcomes.end() ? Status() : *failed;
}

const MetricDisplay& OptionsModel::Row(int row) const {
    return m_metrics[IdOf(row)];
}

void OptionsModel::SetShown(int row, bool shown) {
    m_metrics[IdOf(row)].shown = shown;
}

void OptionsModel::ShowAll(bool shown) {
    for (MetricDisplay& metric : m_metrics)
        metric.shown = shown;
}

bool OptionsModel::CanMove(int row, int steps) const {
    return row >= 0 && row < RowCount() && row + steps >= 0 && row + steps < RowCount();
}

bool OptionsModel::Move(int row, int steps) {
    if (!CanMove(row, steps))
        return false;
    const auto from = m_order.begin() + row;
    const auto to = m_order.begin() + row + steps;
    if (steps < 0)
        std::rotate(to, from, from + 1);
    else
        std::rotate(from, from + 1, to + 1);
    for (int place = 0; place < RowCount(); ++place)
        m_metrics[IdOf(place)].position = place;
    return true;
}

int OptionsModel::ShownCount() const {
    return static_cast<int>(std::count_if(m_metrics.begin(), m_metrics.end(), [](const auto& m) { return m.shown; }));
}

} // namespace tavix
