#include "chart/QuantilePicture.h"

#include "base/NumberText.h"
#include "chart/Plot.h"
#include "chart/Scale.h"
#include "report/FitFigures.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tavix::chart {

namespace {

constexpr int kRows = 7;

/// A date that people have written is converted like the values; a number is computed.
std::string filterUpTo(HistogramKind kind, const QuantilePicture::Point& point, const std::string& reading) {
    if (kind != HistogramKind::Dates)
        return fmt::format("{} <= {}", convertedValue("tonumber", reading),
                           reading.empty() ? point.text : formatReal(point.value));
    const std::string date = quotedText(point.text);
    return fmt::format("{} <= {}", convertedValue("todate", reading),
                       reading.empty() ? date : fmt::format("todate({}, {})", date, quotedText(reading)));
}

} // namespace

QuantilePicture::QuantilePicture(HistogramKind kind, std::vector<Point> points, std::string reading)
    : m_kind(kind), m_points(std::move(points)), m_reading(std::move(reading)) {}

std::string QuantilePicture::description() const {
    std::string text;
    for (const Point& point : m_points)
        text += fmt::format("{}{:g} %: {}", text.empty() ? "" : "; ", point.percent, point.text);
    return text + ".";
}

Drawing QuantilePicture::draw(const Canvas& canvas) const {
    Drawing drawing{canvas.width, canvas.height, {}, {}};
    const double low = m_points.front().value;
    const double high = m_points.back().value;
    auto rows = m_kind == HistogramKind::Dates ? dateTicks(low, high, kRows) : numberTicks(low, high, kRows);
    if (rows.empty())
        rows.push_back({low, m_points.front().text});
    const Plot plot(canvas, rows, {});
    if (!plot.isLargeEnough())
        return drawing;
    // The lowest value is above the base line, so that its dot is seen.
    constexpr double kAbove = 6;
    const Scale values(low, high, plot.bottom() - kAbove, plot.top());
    const Scale percents(0, 100, plot.left(), plot.right());
    plot.drawRows(drawing, rows, values);
    Curve curve;
    for (const Point& point : m_points)
        curve.points.push_back({percents.at(point.percent), values.at(point.value)});
    const std::vector<chart::Point> points = curve.points;
    drawing.shapes.emplace_back(std::move(curve));
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double from = i == 0 ? plot.left() : (points[i - 1].x + points[i].x) / 2;
        const double to = i + 1 == points.size() ? plot.right() : (points[i].x + points[i + 1].x) / 2;
        const Point& point = m_points[i];
        const bool isQuartile = point.percent == 25 || point.percent == 50 || point.percent == 75;
        drawing.shapes.emplace_back(Dot{points[i], isQuartile ? 3.5 : 2.5, Role::Accent});
        drawing.hits.push_back({{from, plot.top(), to - from, plot.bottom() - plot.top()},
                                fmt::format("{:g} % of the values are at most {}", point.percent, point.text),
                                {ActionKind::FilterValues, KvbString(filterUpTo(m_kind, point, m_reading))}});
    }
    std::vector<std::pair<double, std::string>> labels;
    for (const int percent : {0, 25, 50, 75, 100})
        labels.emplace_back(percents.at(percent), fmt::format("{} %", percent));
    plot.drawColumns(drawing, labels);
    return drawing;
}

} // namespace tavix::chart
