#include "alert/AlertPicture.h"

#include "chart/Plot.h"
#include "chart/Scale.h"
#include "report/AlertTexts.h"
#include "report/CountText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace tavix {

using namespace chart;

namespace {

constexpr int kRows = 5;
constexpr double kRoom = 0.08;       ///< above and below the values, as a share of their span
constexpr double kFarthest = 3;      ///< a limit further away than so many spans of the figures is not drawn to scale
constexpr double kLeastForDots = 7;  ///< between two runs
constexpr double kMark = 5;          ///< half the size of the mark of a raised run
constexpr double kLeastColumn = 1.5; ///< of a hit area

std::string dayText(LibraryDate date) {
    const DateParts parts = decompose(date);
    return fmt::format("{:04}-{:02}-{:02}", parts.year, parts.month, parts.day);
}

std::string timeText(LibraryDate date) {
    const DateParts parts = decompose(date);
    return fmt::format("{} {:02}:{:02}", dayText(date), parts.hour, parts.minute);
}

/// A diamond: told from the dots of quiet runs by its shape as well.
Area diamondAt(chart::Point at) {
    return {{{at.x, at.y - kMark}, {at.x + kMark, at.y}, {at.x, at.y + kMark}, {at.x - kMark, at.y}}, Role::Alert};
}

} // namespace

AlertPicture::AlertPicture(AlertBackTest test, std::optional<AlertRule> rule, bool isPercent, std::string figure)
    : m_test(std::move(test)), m_rule(rule), m_isPercent(isPercent), m_figure(std::move(figure)) {}

std::string AlertPicture::description() const {
    std::string text;
    for (const BackTestRun& run : m_test.runs)
        if (run.verdict.state == AlertVerdict::State::Raised)
            text += fmt::format("{}{}", text.empty() ? "" : "; ", TextOf(run));
    if (!m_rule)
        return countOf(static_cast<std::int64_t>(m_test.runs.size()), "run") + ".";
    return fmt::format("Raised in {} of {}{}{}.", m_test.raised, countOf(m_test.judged, "run"),
                       text.empty() ? "" : ": ", text);
}

AlertPicture::Limits AlertPicture::LimitsOf(const BackTestRun& run) const {
    if (!m_rule)
        return {};
    const AlertRule& rule = *m_rule;
    switch (rule.comparison) {
    case AlertComparison::Greater:
        return {{}, rule.value1};
    case AlertComparison::Less:
    case AlertComparison::Equal: // a single limit, drawn like a lower one
        return {rule.value1, {}};
    case AlertComparison::Outside:
    case AlertComparison::Inside:
        return {rule.value1, rule.value2};
    case AlertComparison::ChangedBy:
    case AlertComparison::ChangedByPercent:
        break;
    }
    if (!run.verdict.reference)
        return {};
    const double reference = *run.verdict.reference;
    const double change =
        rule.comparison == AlertComparison::ChangedBy ? rule.value1 : rule.value1 / 100 * std::abs(reference);
    return {reference - change, reference + change};
}

std::string AlertPicture::TextOf(const BackTestRun& run) const {
    std::string text = timeText(run.date) + ": ";
    text += run.figure ? alertNumberText(*run.figure, m_isPercent) : "no figure";
    if (run.verdict.reference)
        text += fmt::format(", compared with {}", alertNumberText(*run.verdict.reference, m_isPercent));
    if (!m_rule)
        return text;
    switch (run.verdict.state) {
    case AlertVerdict::State::Raised:
        return text + ", raised";
    case AlertVerdict::State::Quiet:
        return text + ", quiet";
    case AlertVerdict::State::Unknown:
        break;
    }
    return text + ", cannot be judged";
}

/// One drawing of the picture.
class AlertPicture::Painter {
  public:
    Painter(const AlertPicture& picture, const Canvas& canvas)
        : m_picture(picture), m_canvas(canvas), m_drawing{canvas.width, canvas.height, {}, {}} {}

    Drawing Paint() {
        if (!FindRange())
            return m_drawing;
        std::vector<Tick> rows = numberTicks(m_low, m_high, kRows);
        if (rows.empty())
            rows.push_back({m_low, shownNumber(m_low)});
        m_plot = Plot(m_canvas, rows, {});
        if (!m_plot.isLargeEnough())
            return m_drawing;
        m_values = Scale(m_low, m_high, m_plot.bottom(), m_plot.top());
        m_plot.drawRows(m_drawing, rows, m_values);
        DrawLimits();
        DrawFigures();
        DrawRuns();
        return m_drawing;
    }

  private:
    [[nodiscard]] const std::vector<BackTestRun>& Runs() const { return m_picture.m_test.runs; }
    [[nodiscard]] double Step() const {
        return (m_plot.right() - m_plot.left()) / static_cast<double>(std::max<std::size_t>(Runs().size(), 1));
    }
    /// The middle of the run's column.
    [[nodiscard]] double At(std::size_t run) const { return m_plot.left() + (static_cast<double>(run) + 0.5) * Step(); }
    [[nodiscard]] double InPlot(double value) const {
        return std::clamp(m_values.at(value), m_plot.top(), m_plot.bottom());
    }

    /// From the figures, and the limits as far as they are not so far away that the line would look flat.
    bool FindRange() {
        bool isFirst = true;
        const auto include = [&](double value) {
            m_low = isFirst ? value : std::min(m_low, value);
            m_high = isFirst ? value : std::max(m_high, value);
            isFirst = false;
        };
        for (const BackTestRun& run : Runs())
            if (run.figure)
                include(*run.figure);
        if (isFirst)
            return false;
        const double low = m_low;
        const double high = m_high;
        const double span = high > low ? high - low : std::max(std::abs(high), 1.0);
        for (const BackTestRun& run : Runs()) {
            const Limits limits = m_picture.LimitsOf(run);
            for (const std::optional<double>& limit : {limits.lower, limits.upper})
                if (limit && *limit >= low - kFarthest * span && *limit <= high + kFarthest * span)
                    include(*limit);
        }
        const double room = (m_high > m_low ? m_high - m_low : span) * kRoom;
        // A figure that is never negative gets no room below 0.
        m_low = m_low >= 0 && m_low < room ? 0 : m_low - room;
        m_high += room;
        return std::isfinite(m_high - m_low);
    }

    void DrawLimits() {
        if (!m_picture.m_rule)
            return;
        if (isChange(m_picture.m_rule->comparison)) {
            DrawMovingLimits();
            return;
        }
        const Limits limits = m_picture.LimitsOf(Runs().front());
        for (const std::optional<double>& limit : {limits.upper, limits.lower})
            if (limit)
                DrawLimit(*limit);
    }

    /// A limit beyond the plot is told at its edge.
    void DrawLimit(double limit) {
        const double exact = m_values.at(limit);
        const double y = InPlot(limit);
        const bool isBeyond = std::abs(exact - y) > 1;
        if (!isBeyond)
            m_drawing.shapes.emplace_back(Line{{m_plot.left(), y}, {m_plot.right(), y}, Role::Alert, 1.5, true});
        const std::string text =
            fmt::format("{} {}{}", isBeyond ? "limit beyond:" : "limit", alertLimitText(limit, m_picture.m_isPercent),
                        !isBeyond   ? ""
                        : exact < y ? " ↑"
                                    : " ↓");
        m_drawing.shapes.emplace_back(Text{{m_plot.right() - 4, LabelAt(y)}, text, Role::Alert, Anchor::End});
    }

    /// Beside a limit at `y`, on the side of it where the line does not end.
    [[nodiscard]] double LabelAt(double y) const {
        const double away = m_canvas.lineHeight / 2 + 2;
        const std::optional<double>& last = Runs().back().figure;
        const bool isLineAbove = last && m_values.at(*last) < y;
        const bool isRoomBelow = y + 2 * away < m_plot.bottom();
        if (y - 2 * away < m_plot.top() || (isLineAbove && isRoomBelow))
            return y + away;
        return y - away;
    }

    /// Around the reference of each run, as steps.
    void DrawMovingLimits() {
        const double half = Step() / 2;
        for (std::size_t i = 0; i < Runs().size(); ++i) {
            const Limits limits = m_picture.LimitsOf(Runs()[i]);
            for (const std::optional<double>& limit : {limits.lower, limits.upper}) {
                const double y = limit ? InPlot(*limit) : 0;
                if (limit && std::abs(m_values.at(*limit) - y) < 1)
                    m_drawing.shapes.emplace_back(Line{{At(i) - half, y}, {At(i) + half, y}, Role::Alert, 1.5});
            }
        }
    }

    /// A line that is interrupted where runs have no figure.
    void DrawFigures() {
        Curve curve;
        const auto finish = [&] {
            if (curve.points.size() > 1)
                m_drawing.shapes.emplace_back(curve);
            curve.points.clear();
        };
        for (std::size_t i = 0; i < Runs().size(); ++i) {
            if (Runs()[i].figure)
                curve.points.push_back({At(i), m_values.at(*Runs()[i].figure)});
            else
                finish();
        }
        finish();
        for (std::size_t i = 0; i < Runs().size(); ++i) {
            const BackTestRun& run = Runs()[i];
            if (!run.figure)
                continue;
            const chart::Point at{At(i), m_values.at(*run.figure)};
            if (run.verdict.state == AlertVerdict::State::Raised)
                m_drawing.shapes.emplace_back(diamondAt(at));
            else if (Step() >= kLeastForDots || Runs().size() == 1)
                m_drawing.shapes.emplace_back(Dot{at, 2.5, Role::Accent});
        }
    }

    /// The days below, and the figures of each run under the pointer. Runs too close to point at are left out, but for
    /// raised ones.
    void DrawRuns() {
        std::vector<std::pair<double, std::string>> labels;
        const std::size_t between =
            std::max<std::size_t>(1, Runs().size() / static_cast<std::size_t>(m_plot.ticksAcross()));
        double free = m_plot.left();
        for (std::size_t i = 0; i < Runs().size(); ++i) {
            const BackTestRun& run = Runs()[i];
            if (i % between == 0)
                labels.emplace_back(At(i), dayText(run.date));
            const double from = std::max(free, At(i) - Step() / 2);
            const double to = std::min(std::max(At(i) + Step() / 2, from + kLeastColumn), m_plot.right());
            const bool isRaised = run.verdict.state == AlertVerdict::State::Raised;
            if (to - from < kLeastColumn / 2 || (Step() < kLeastColumn && !isRaised))
                continue;
            m_drawing.hits.push_back(
                {{from, m_plot.top(), to - from, m_plot.bottom() - m_plot.top()}, m_picture.TextOf(run), {}});
            free = to;
        }
        m_plot.drawColumns(m_drawing, labels);
    }

    const AlertPicture& m_picture;
    const Canvas& m_canvas;
    Drawing m_drawing;
    Plot m_plot;
    Scale m_values{0, 1, 0, 1};
    double m_low = 0;
    double m_high = 0;
};

Drawing AlertPicture::draw(const Canvas& canvas) const {
    return Painter(*this, canvas).Paint();
}

} // namespace tavix
