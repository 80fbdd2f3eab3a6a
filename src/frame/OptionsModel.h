#pragma once

#include "base/DataFont.h"
#include "settings/MetricDisplay.h"
#include "settings/Settings.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix {

/// The settings that the Options sheet edits, apart from the metrics.
struct OptionValues {
    int maxChartVals = 0;
    int maxFreqVals = 0;
    int maxPkFkOutliers = 0;
    int maxRdndntCmnVals = 0;
    int maxDrillThruRows = 0;
    int firstThreshold = 0;
    int secondThreshold = 0;
    bool newestNotesFirst = false;
    bool hideWelcome = false;
    DataFont statFont;
    std::string defaultLocale;
    bool overrideFieldWidths = false;
    std::optional<ColorScheme> colorScheme; ///< nothing when the program does not follow the choice

    bool operator==(const OptionValues&) const = default;
};

/// One integer of the sheet and its setting, which gives the range.
struct OptionNumber {
    Setting setting;
    int OptionValues::*value;
};
[[nodiscard]] std::vector<OptionNumber> optionNumbers();

/// Why the sheet cannot be closed with OK, and the field to correct.
struct OptionProblem {
    Setting field;
    std::string text;

    bool operator==(const OptionProblem&) const = default;
};

/// The Options sheet without its window.
class OptionsModel {
  public:
    /// `metrics` is the document's list, indexed by metric id.
    OptionsModel(const SettingsStore& store, std::vector<MetricDisplay> metrics);

    OptionValues values;

    [[nodiscard]] std::optional<OptionProblem> Check() const;
    /// Writes all values, even after one fails, and returns the first failure. The document writes the metrics. Call it
    /// only when Check finds nothing.
    Status Save(SettingsStore& store) const;

    /// The metrics in the user's order, one a row.
    [[nodiscard]] int RowCount() const { return static_cast<int>(m_order.size()); }
    [[nodiscard]] const MetricDisplay& Row(int row) const;
    void SetShown(int row, bool shown);
    void ShowAll(bool shown);
    [[nodiscard]] bool CanMove(int row, int steps) const;
    /// Moves a row down by `steps`, or up if negative. False, without a change, when it cannot go there.
    bool Move(int row, int steps);
    /// How many are shown.
    [[nodiscard]] int ShownCount() const;
    /// The edited list in the order of the ids. Positions change only when a row was moved.
    [[nodiscard]] const std::vector<MetricDisplay>& Metrics() const { return m_metrics; }

  private:
    [[nodiscard]] std::size_t IdOf(int row) const {
        return static_cast<std::size_t>(m_order[static_cast<std::size_t>(row)]);
    }

    std::vector<MetricDisplay> m_metrics;
    std::vector<int> m_order;
};

} // namespace tavix
