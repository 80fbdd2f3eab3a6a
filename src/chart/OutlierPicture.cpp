#include "chart/OutlierPicture.h"

#include "base/NumberText.h"
#include "chart/Scale.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tavix::chart {

namespace {

constexpr double kMargin = 12;
constexpr double kGap = 8;
constexpr double kStripHeight = 56;
constexpr double kLeastWidth = 160;
constexpr double kBetweenLists = 28;
/// A count of this or more has a full bar, so that single rows are no wall of bars.
constexpr std::int64_t kLeastScale = 5;
constexpr double kMostRow = 24;
constexpr double kLeastBar = 1.5;
constexpr std::array kFenceFactors = {1.5, 3.0};
constexpr std::array<std::string_view, 3> kFenceTexts = {"", ", beyond 1.5 times the interquartile range",
                                                         ", beyond 3 times the interquartile range"};

std::string_view fenceText(int fence) {
    return kFenceTexts[static_cast<std::size_t>(std::clamp(fence, 0, 2))];
}

} // namespace

OutlierPicture::OutlierPicture(std::vector<Outlier> lowest, std::vector<Outlier> highest,
                               std::optional<FieldHistogram> histogram, std::optional<Quartiles> quartiles)
    : m_lowest(std::move(lowest)),
      m_highest(std::move(highest)),
      m_histogram(std::move(histogram)),
      m_quartiles(quartiles) {}

std::string OutlierPicture::title() const {
    return "Lowest and highest values";
}

std::string OutlierPicture::description() const {
    std::string text;
    const auto add = [&](std::string_view name, const std::vector<Outlier>& outliers) {
        if (outliers.empty())
            return;
        const auto beyond =
            std::count_if(outliers.begin(), outliers.end(), [](const Outlier& o) { return o.fence > 0; });
        text += fmt::format("{}{}: {}, {} of {} beyond a fence.", text.empty() ? "" : " ", name, outliers.front().label,
                            beyond, outliers.size());
    };
    add("Lowest", m_lowest);
    add("Highest", m_highest);
    return text;
}

Drawing OutlierPicture::draw(const Canvas& canvas) const {
    Drawing drawing{canvas.width, canvas.height, {}, {}};
    if (canvas.width < kLeastWidth || canvas.height < 4 * canvas.lineHeight)
        return drawing;
    double top = kMargin;
    if (m_histogram && canvas.height > 3 * kStripHeight)
        top = drawStrip(drawing, canvas);
    const double width = (canvas.width - 2 * kMargin - kBetweenLists) / 2;
    const double height = canvas.height - kMargin - top;
    drawList(drawing, canvas, "Lowest", m_lowest, {kMargin, top, width, height});
    drawList(drawing, canvas, "Highest", m_highest, {kMargin + width + kBetweenLists, top, width, height});
    return drawing;
}

double OutlierPicture::drawStrip(Drawing& drawing, const Canvas& canvas) const {
    const FieldHistogram& histogram = *m_histogram;
    const double top = kMargin + canvas.lineHeight;
    const double bottom = top + kStripHeight;
    const Scale scale(histogram.bins.front().low, histogram.bins.back().high, kMargin, canvas.width - kMargin);
    std::int64_t most = 1;
    for (const auto& bin : histogram.bins)
        most = std::max(most, bin.count);
    for (const auto& bin : histogram.bins) {
        if (bin.count == 0)
            continue;
        const double left = scale.at(bin.low);
        const double share = static_cast<double>(bin.count) / static_cast<double>(most);
        const double height = std::max(share * (kStripHeight - kGap), kLeastBar);
        drawing.shapes.emplace_back(
            Box{{left, bottom - height, std::max(scale.at(bin.high) - left, 1.0), height}, Role::Pale});
    }
    drawing.shapes.emplace_back(Line{{kMargin, bottom}, {canvas.width - kMargin, bottom}, Role::Axis});
    drawFences(drawing, canvas, scale, bottom);
    const auto drawDots = [&](const std::vector<Outlier>& outliers) {
        for (const Outlier& outlier : outliers) {
            if (!outlier.position)
                continue;
            const double x = std::clamp(scale.at(*outlier.position), kMargin, canvas.width - kMargin);
            drawing.shapes.emplace_back(Dot{{x, bottom}, 3, outlier.fence > 0 ? Role::Fence : Role::Accent});
        }
    };
    drawDots(m_lowest);
    drawDots(m_highest);
    const double labels = bottom + kGap + canvas.lineHeight / 2;
    const std::string low = m_lowest.empty() ? std::string() : m_lowest.front().label;
    const std::string high = m_highest.empty() ? std::string() : m_highest.front().label;
    const double half = canvas.width / 2 - kMargin - kGap;
    drawing.shapes.emplace_back(Text{{kMargin, labels}, fittedText(canvas, low, half)});
    drawing.shapes.emplace_back(
        Text{{canvas.width - kMargin, labels}, fittedText(canvas, high, half), Role::Label, Anchor::End});
    return labels + canvas.lineHeight / 2 + kMargin;
}

void OutlierPicture::drawFences(Drawing& drawing, const Canvas& canvas, const Scale& scale, double bottom) const {
    if (!m_quartiles)
        return;
    const double top = bottom - kStripHeight;
    double free = 0;
    const double range = m_quartiles->high - m_quartiles->low;
    const std::array fences = {std::pair(m_quartiles->low - kFenceFactors[1] * range, 1),
                               std::pair(m_quartiles->low - kFenceFactors[0] * range, 0),
                               std::pair(m_quartiles->high + kFenceFactors[0] * range, 0),
                               std::pair(m_quartiles->high + kFenceFactors[1] * range, 1)};
    for (const auto& [fence, which] : fences) {
        if (!(fence > scale.low() && fence < scale.high()))
            continue;
        const double x = scale.at(fence);
        drawing.shapes.emplace_back(Line{{x, top}, {x, bottom}, Role::Fence, 1, true});
        const std::string label = fmt::format("{} × IQR", which == 0 ? "1.5" : "3");
        const double width = canvas.textWidth(label);
        const double center = std::clamp(x, kMargin + width / 2, canvas.width - kMargin - width / 2);
        if (center - width / 2 < free)
            continue;
        drawing.shapes.emplace_back(Text{{center, top - canvas.lineHeight / 2}, label, Role::Label, Anchor::Middle});
        free = center + width / 2 + kGap;
    }
}

void OutlierPicture::drawList(Drawing& drawing, const Canvas& canvas, const std::string& heading,
                              const std::vector<Outlier>& outliers, const Rect& rect) const {
    if (outliers.empty())
        return;
    drawing.shapes.emplace_back(Text{{rect.x, rect.y + canvas.lineHeight / 2}, heading, Role::Label});
    std::int64_t most = kLeastScale;
    double labels = 0;
    double figures = 0;
    for (const Outlier& outlier : outliers) {
        most = std::max(most, outlier.count);
        labels = std::max(labels, canvas.textWidth(outlier.label));
        figures = std::max(figures, canvas.textWidth(formatGrouped(outlier.count)));
    }
    labels = std::min(labels, rect.width * 0.55);
    const double left = rect.x + labels + kGap;
    const double right = rect.x + rect.width - figures - kGap;
    const double room = rect.height - canvas.lineHeight - kGap;
    const double row = std::clamp(room / static_cast<double>(outliers.size()), canvas.lineHeight + 2, kMostRow);
    double top = rect.y + canvas.lineHeight + kGap;
    for (const Outlier& outlier : outliers) {
        if (top + row > rect.y + rect.height + 0.5)
            break;
        const double middle = top + row / 2;
        const Role role = outlier.fence > 0 ? Role::Fence : Role::Bar;
        drawing.shapes.emplace_back(Text{
            {rect.x, middle}, fittedText(canvas, outlier.label, labels), outlier.fence > 0 ? Role::Fence : Role::Text});
        if (right > left) {
            const double width = static_cast<double>(outlier.count) / static_cast<double>(most) * (right - left);
            drawing.shapes.emplace_back(Box{{left, middle - row / 4, std::max(width, kLeastBar), row / 2}, role, 2});
        }
        drawing.shapes.emplace_back(
            Text{{rect.x + rect.width, middle}, formatGrouped(outlier.count), Role::Label, Anchor::End});
        drawing.hits.push_back(
            {{rect.x, top, rect.width, row},
             fmt::format("{}: {}{}", outlier.label, rowsText(outlier.count, 0), fenceText(outlier.fence)),
             outlier.action});
        top += row;
    }
}

} // namespace tavix::chart
