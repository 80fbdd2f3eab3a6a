#include "chart/Plot.h"

#include <algorithm>

namespace tavix::chart {

namespace {

constexpr double kMargin = 12;
constexpr double kGap = 6;      ///< between a label and what it belongs to
constexpr double kTick = 4;     ///< the length of a tick
constexpr double kBetween = 14; ///< at least between two labels side by side
constexpr double kPerLabel = 72;

} // namespace

Plot::Plot(const Canvas& canvas, const std::vector<Tick>& rows, const std::string& highest, double under)
    : m_canvas(canvas) {
    double widest = canvas.textWidth(highest);
    for (const Tick& tick : rows)
        widest = std::max(widest, canvas.textWidth(tick.label));
    m_left = kMargin + widest + kGap;
    m_right = canvas.width - kMargin;
    m_top = canvas.lineHeight / 2 + kGap;
    m_below = canvas.height - kMargin - under;
    m_bottom = m_below - kTick - kGap / 2 - canvas.lineHeight;
}

int Plot::ticksAcross() const {
    return std::clamp(static_cast<int>((m_right - m_left) / kPerLabel), 1, 10);
}

void Plot::drawRows(Drawing& drawing, const std::vector<Tick>& ticks, const Scale& scale) const {
    for (const Tick& tick : ticks) {
        const double y = scale.at(tick.value);
        if (y < m_bottom - 1)
            drawing.shapes.emplace_back(Line{{m_left, y}, {m_right, y}, Role::Faint});
        drawing.shapes.emplace_back(Text{{m_left - kGap, y}, tick.label, Role::Label, Anchor::End});
    }
}

void Plot::drawColumns(Drawing& drawing, const std::vector<std::pair<double, std::string>>& labels) const {
    drawing.shapes.emplace_back(Line{{m_left, m_bottom}, {m_right, m_bottom}, Role::Axis});
    double free = 0;
    for (const auto& [x, label] : labels) {
        const double width = m_canvas.textWidth(label);
        const double center = std::clamp(x, width / 2, std::max(width / 2, m_canvas.width - 2 - width / 2));
        drawing.shapes.emplace_back(Line{{x, m_bottom}, {x, m_bottom + kTick}, Role::Axis});
        if (center - width / 2 < free)
            continue;
        drawing.shapes.emplace_back(
            Text{{center, m_bottom + kTick + kGap / 2 + m_canvas.lineHeight / 2}, label, Role::Label, Anchor::Middle});
        free = center + width / 2 + kBetween;
    }
}

void Plot::drawNote(Drawing& drawing, const std::string& text) const {
    drawing.shapes.emplace_back(Text{{m_left, m_canvas.height - kMargin - m_canvas.lineHeight / 2 + kGap},
                                     fittedText(m_canvas, text, m_right - m_left)});
}

} // namespace tavix::chart
