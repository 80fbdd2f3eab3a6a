#include "chart/RankPicture.h"

#include "base/NumberText.h"
#include "chart/Plot.h"
#include "chart/Scale.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavix::chart {

namespace {

constexpr double kBarShare = 0.62; ///< of the room of a rank
constexpr double kLeastBar = 1.5;
constexpr double kDotFrom = 10; ///< ranks at least so far apart are marked with dots

/// 1, 2, 5, 10, 20, 50 … and the last rank.
std::vector<std::int64_t> roundRanks(std::int64_t last) {
    std::vector<std::int64_t> ranks;
    for (std::int64_t power = 1; power <= last; power *= 10)
        for (const std::int64_t factor : {1, 2, 5})
            if (power * factor < last)
                ranks.push_back(power * factor);
    ranks.push_back(last);
    return ranks;
}

std::string rankLabel(std::int64_t rank) {
    return shortCount(static_cast<double>(rank));
}

} // namespace

RankPicture::RankPicture(std::vector<Value> first, const std::vector<Sum>& sums, std::int64_t values, std::int64_t rows)
    : m_first(std::move(first)), m_values(values), m_rows(rows) {
    m_sums.push_back({0, 0});
    for (const Value& value : m_first)
        m_sums.push_back({m_sums.back().rank + 1, m_sums.back().rows + value.count});
    for (const Sum& sum : sums)
        if (sum.rank > m_sums.back().rank)
            m_sums.push_back(sum);
}

std::string RankPicture::title() const {
    return "Share of the most frequent values";
}

double RankPicture::rowsUpTo(double rank) const {
    const auto next = std::lower_bound(m_sums.begin() + 1, m_sums.end(), rank, [](const Sum& sum, double wanted) {
        return static_cast<double>(sum.rank) < wanted;
    });
    if (next == m_sums.end())
        return static_cast<double>(m_sums.back().rows);
    const Sum& before = *(next - 1);
    const double part = (rank - static_cast<double>(before.rank)) / static_cast<double>(next->rank - before.rank);
    return static_cast<double>(before.rows) + part * static_cast<double>(next->rows - before.rows);
}

std::int64_t RankPicture::rankOfShare(double share) const {
    const double wanted = share * static_cast<double>(m_rows);
    const auto next = std::lower_bound(m_sums.begin() + 1, m_sums.end(), wanted, [](const Sum& sum, double rows) {
        return static_cast<double>(sum.rows) < rows;
    });
    if (next == m_sums.end())
        return m_sums.back().rank;
    const Sum& before = *(next - 1);
    const double part = (wanted - static_cast<double>(before.rows)) / static_cast<double>(next->rows - before.rows);
    return before.rank + static_cast<std::int64_t>(std::ceil(part * static_cast<double>(next->rank - before.rank)));
}

std::string RankPicture::description() const {
    if (m_values == m_rows)
        return fmt::format("All {} values are unique.", formatGrouped(m_values));
    const std::int64_t half = rankOfShare(0.5);
    const std::int64_t most = rankOfShare(0.9);
    return fmt::format("{} of {} values {} half of the rows, {} {} 90 %.", formatGrouped(half), formatGrouped(m_values),
                       half == 1 ? "covers" : "cover", formatGrouped(most), most == 1 ? "covers" : "cover");
}

Drawing RankPicture::draw(const Canvas& canvas) const {
    Drawing drawing{canvas.width, canvas.height, {}, {}};
    std::vector<Tick> shares;
    for (const int percent : {0, 25, 50, 75, 100})
        shares.push_back({percent / 100.0, fmt::format("{} %", percent)});
    const Plot plot(canvas, shares, {}, canvas.lineHeight);
    if (!plot.isLargeEnough() || m_values < 1 || m_rows < 1)
        return drawing;
    plot.drawRows(drawing, shares, Scale(0, 1, plot.bottom(), plot.top()));
    if (m_first.size() <= kMostBars && static_cast<std::int64_t>(m_first.size()) == m_values)
        drawBars(drawing, plot);
    else
        drawCurve(drawing, plot);
    plot.drawNote(drawing, description());
    return drawing;
}

void RankPicture::drawBars(Drawing& drawing, const Plot& plot) const {
    const Scale shares(0, 1, plot.bottom(), plot.top());
    const double room = (plot.right() - plot.left()) / static_cast<double>(m_first.size());
    Curve curve;
    std::vector<std::pair<double, std::string>> labels;
    for (std::size_t i = 0; i < m_first.size(); ++i) {
        const Value& value = m_first[i];
        const double left = plot.left() + room * static_cast<double>(i);
        const double center = left + room / 2;
        const double top = std::min(shares.at(static_cast<double>(value.count) / static_cast<double>(m_rows)),
                                    plot.bottom() - kLeastBar);
        const std::int64_t sum = m_sums[i + 1].rows;
        drawing.shapes.emplace_back(
            Box{{center - room * kBarShare / 2, top, room * kBarShare, plot.bottom() - top}, Role::Bar});
        curve.points.push_back({center, shares.at(static_cast<double>(sum) / static_cast<double>(m_rows))});
        labels.emplace_back(center, rankLabel(static_cast<std::int64_t>(i) + 1));
        std::string text = fmt::format("Rank {}, {}: {}", i + 1, value.label, rowsText(value.count, m_rows));
        if (i > 0)
            text += fmt::format("; the first {} together {}", i + 1,
                                shownShare(static_cast<double>(sum), static_cast<double>(m_rows)));
        drawing.hits.push_back({{left, plot.top(), room, plot.bottom() - plot.top()}, std::move(text), value.action});
    }
    const std::vector<Point> points = curve.points;
    drawing.shapes.emplace_back(std::move(curve));
    if (room >= kDotFrom)
        for (const Point& point : points)
            drawing.shapes.emplace_back(Dot{point, 2.5, Role::Accent});
    plot.drawColumns(drawing, labels);
}

void RankPicture::drawCurve(Drawing& drawing, const Plot& plot) const {
    const Scale shares(0, 1, plot.bottom(), plot.top());
    const double last = std::log(static_cast<double>(std::max<std::int64_t>(m_values, 2)));
    const Scale ranks(0, last, plot.left(), plot.right());
    const auto x = [&](double rank) { return ranks.at(std::log(rank)); };
    const auto y = [&](double rank) { return shares.at(std::min(rowsUpTo(rank) / static_cast<double>(m_rows), 1.0)); };
    Curve curve;
    for (double at = plot.left(); at < plot.right(); at += 2) {
        const double rank = std::exp((at - plot.left()) / (plot.right() - plot.left()) * last);
        curve.points.push_back({at, y(rank)});
    }
    curve.points.push_back({plot.right(), y(static_cast<double>(m_values))});
    Area area{curve.points, Role::Pale};
    area.points.push_back({plot.right(), plot.bottom()});
    area.points.push_back({plot.left(), plot.bottom()});
    drawing.shapes.emplace_back(std::move(area));
    drawing.shapes.emplace_back(std::move(curve));

    const std::vector<std::int64_t> marked = roundRanks(m_values);
    std::vector<std::pair<double, std::string>> labels;
    for (std::size_t i = 0; i < marked.size(); ++i) {
        const auto rank = static_cast<double>(marked[i]);
        const double from = i == 0 ? plot.left() : (x(static_cast<double>(marked[i - 1])) + x(rank)) / 2;
        const double to = i + 1 == marked.size() ? plot.right() : (x(static_cast<double>(marked[i + 1])) + x(rank)) / 2;
        drawing.shapes.emplace_back(Dot{{x(rank), y(rank)}, 2.5, Role::Accent});
        if (const auto digits = std::to_string(marked[i]);
            digits.find_first_not_of('0', 1) == std::string::npos && digits[0] == '1')
            labels.emplace_back(x(rank), rankLabel(marked[i]));
        const std::string which = marked[i] == 1 ? "The most frequent value"
                                                 : fmt::format("The first {} of {} values", formatGrouped(marked[i]),
                                                               formatGrouped(m_values));
        Action action;
        if (marked[i] <= static_cast<std::int64_t>(m_first.size()))
            action = {ActionKind::FilterValues,
                      KvbString(fmt::format("`Count` >= {}", m_first[static_cast<std::size_t>(marked[i]) - 1].count))};
        drawing.hits.push_back(
            {{from, plot.top(), to - from, plot.bottom() - plot.top()},
             fmt::format("{}: {}", which, rowsText(static_cast<std::int64_t>(std::llround(rowsUpTo(rank))), m_rows)),
             std::move(action)});
    }
    plot.drawColumns(drawing, labels);
}

} // namespace tavix::chart
