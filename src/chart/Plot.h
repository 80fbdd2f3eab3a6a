#pragma once

#include "chart/Picture.h"
#include "chart/Scale.h"

#include <string>
#include <utility>
#include <vector>

namespace tavix::chart {

/// The frame of a diagram: labels at the left, the plot, labels below, and perhaps room under them.
class Plot {
  public:
    Plot() = default;
    /// Wide enough at the left for these labels. `under` is the height below the labels of the columns.
    Plot(const Canvas& canvas, const std::vector<Tick>& rows, const std::string& highest, double under = 0);

    [[nodiscard]] bool isLargeEnough() const { return m_right - m_left >= 60 && m_bottom - m_top >= 30; }
    [[nodiscard]] double left() const { return m_left; }
    [[nodiscard]] double right() const { return m_right; }
    [[nodiscard]] double top() const { return m_top; }
    [[nodiscard]] double bottom() const { return m_bottom; }
    /// The upper end of the room under the labels.
    [[nodiscard]] double below() const { return m_below; }
    /// How many labels fit side by side.
    [[nodiscard]] int ticksAcross() const;

    /// Grid lines with their labels at the left.
    void drawRows(Drawing& drawing, const std::vector<Tick>& ticks, const Scale& scale) const;
    /// The base line, and labels with ticks below it, as far as they do not touch.
    void drawColumns(Drawing& drawing, const std::vector<std::pair<double, std::string>>& labels) const;
    /// A line of text at the lower end of the room under the labels.
    void drawNote(Drawing& drawing, const std::string& text) const;

  private:
    Canvas m_canvas;
    double m_left = 0;
    double m_right = 0;
    double m_top = 0;
    double m_bottom = 0;
    double m_below = 0;
};

} // namespace tavix::chart
