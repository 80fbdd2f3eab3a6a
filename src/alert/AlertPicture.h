#pragma once

#include "base/AlertRule.h"
#include "chart/Picture.h"
#include "report/AlertBackTest.h"

#include <optional>
#include <string>

namespace tavix {

/// A figure over the stored runs as a line, with the limits of an alert and marks at the runs that raise it. The limits
/// of a change move with its reference.
class AlertPicture final : public chart::Picture {
  public:
    /// `rule`: nothing draws the figures alone. `figure` names what is drawn.
    AlertPicture(AlertBackTest test, std::optional<AlertRule> rule, bool isPercent, std::string figure);

    [[nodiscard]] std::string title() const override { return m_figure + " of the stored runs"; }
    [[nodiscard]] std::string description() const override;
    [[nodiscard]] chart::Drawing draw(const chart::Canvas& canvas) const override;

  private:
    /// The limits below and above which a run raises the alert, as far as it has them.
    struct Limits {
        std::optional<double> lower;
        std::optional<double> upper;
    };
    class Painter;
    [[nodiscard]] Limits LimitsOf(const BackTestRun& run) const;
    [[nodiscard]] std::string TextOf(const BackTestRun& run) const;

    AlertBackTest m_test;
    std::optional<AlertRule> m_rule;
    bool m_isPercent;
    std::string m_figure;
};

} // namespace tavix
