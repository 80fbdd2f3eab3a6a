#include "tabs/FieldPictures.h"

#include "base/Metrics.h"
#include "base/NumberText.h"
#include "report/CountText.h"

#include <algorithm>
#include <cmath>

namespace tavix {

namespace {

std::string figureText(int metricId, double figure) {
    const MetricInfo* const info = findMetric(metricId);
    if (info && info->value == MetricValue::Percent)
        return shareText(figure);
    if (info && info->value == MetricValue::WholeNumber)
        return groupedCount(saturateToInt64(figure));
    return formatReadable(figure);
}

std::string changeText(int metricId, double change) {
    if (change == 0)
        return "=";
    return (change > 0 ? "▲ " : "▼ ") + figureText(metricId, std::abs(change));
}

} // namespace

GridCell filledCell(std::int64_t rows, std::int64_t nulls, std::int64_t blanks) {
    GridCell cell;
    if (rows <= 0)
        return cell;
    const std::int64_t filled = std::max<std::int64_t>(0, rows - nulls - blanks);
    const auto shareOf = [rows](std::int64_t part) { return static_cast<double>(part) / static_cast<double>(rows); };
    cell.picture.parts = {shareOf(nulls), shareOf(blanks), shareOf(filled)};
    cell.order = formatReal(shareOf(filled));
    if (nulls > 0)
        cell.text += groupedCount(nulls) + " null, ";
    if (blanks > 0)
        cell.text += groupedCount(blanks) + " blank, ";
    cell.text += groupedCount(filled) + " filled of " + groupedCount(rows);
    return cell;
}

GridCell trendCell(int metricId, const std::vector<double>& figures) {
    GridCell cell;
    cell.alignment = CellAlignment::Right;
    if (std::none_of(figures.begin(), figures.end(), [](double figure) { return std::isfinite(figure); })) {
        cell.state = CellState::Unknown;
        return cell;
    }
    cell.picture.line = figures;
    if (figures.size() < 2 || !std::isfinite(figures.back()))
        return cell;
    const double before = figures[figures.size() - 2];
    if (std::isfinite(before)) {
        cell.text = changeText(metricId, figures.back() - before);
        cell.order = formatReal(figures.back() - before);
    } else if (std::none_of(figures.begin(), figures.end() - 1, [](double figure) { return std::isfinite(figure); })) {
        cell.text = "new";
    }
    return cell;
}

std::string trendToolTip(int metricId, const MetricHistory& history, const std::vector<double>& figures,
                         const std::locale& locale) {
    std::string lines;
    for (std::size_t at = figures.size(); at-- > 0;) {
        lines += lines.empty() ? "" : "\n";
        lines += formatDateTime(decompose(history.dates.at(at)), locale) + ": ";
        lines += std::isfinite(figures[at]) ? figureText(metricId, figures[at]) : "no figure";
    }
    return lines;
}

std::vector<int> trendMetrics() {
    std::vector<int> ids;
    for (const MetricInfo& metric : metricCatalogue()) {
        if (metric.isFigure())
            ids.push_back(static_cast<int>(metric.id));
    }
    return ids;
}

} // namespace tavix
