#include "chart/BarsPicture.h"

#include "base/NumberText.h"
#include "chart/Scale.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tavix::chart {

namespace {

constexpr double kMargin = 12;
constexpr double kGap = 10;
constexpr double kMostRowHeight = 30;
constexpr double kBarShare = 0.56; ///< of the height of a row
constexpr double kLabelShare = 0.4;
constexpr double kLeastBar = 1.5;

} // namespace

BarsPicture::BarsPicture(std::string title, std::vector<Bar> bars, std::int64_t total, std::string base)
    : m_title(std::move(title)), m_bars(std::move(bars)), m_total(total), m_base(std::move(base)) {}

std::string BarsPicture::description() const {
    std::string text;
    for (const Bar& bar : m_bars)
        text += fmt::format("{}{}: {}", text.empty() ? "" : "; ", bar.label, rowsText(bar.count, m_total));
    return text + ".";
}

Drawing BarsPicture::draw(const Canvas& canvas) const {
    Drawing drawing{canvas.width, canvas.height, {}, {}};
    double labels = 0;
    double figures = 0;
    double shares = 0;
    for (const Bar& bar : m_bars) {
        labels = std::max(labels, canvas.textWidth(bar.label));
        figures = std::max(figures, canvas.textWidth(formatGrouped(bar.count)));
        shares = std::max(shares,
                          canvas.textWidth(shownShare(static_cast<double>(bar.count), static_cast<double>(m_total))));
    }
    const double inside = canvas.width - 2 * kMargin;
    labels = std::min(labels, inside * kLabelShare);
    const double left = kMargin + labels + kGap;
    const double right = canvas.width - kMargin - figures - shares - 2 * kGap;
    const double room = canvas.height - 2 * kMargin - canvas.lineHeight;
    const double rowHeight = std::clamp(room / static_cast<double>(std::max<std::size_t>(m_bars.size(), 1)),
                                        canvas.lineHeight + 2, kMostRowHeight);
    if (right - left < 30 || room < rowHeight)
        return drawing;
    const auto whole = static_cast<double>(std::max<std::int64_t>(m_total, 1));
    double top = kMargin;
    for (const Bar& bar : m_bars) {
        if (top + rowHeight > canvas.height - kMargin - canvas.lineHeight)
            break;
        const double middle = top + rowHeight / 2;
        const double height = rowHeight * kBarShare;
        const double width = std::min(static_cast<double>(bar.count) / whole, 1.0) * (right - left);
        const std::string share = shownShare(static_cast<double>(bar.count), whole);
        drawing.shapes.emplace_back(Text{{kMargin + labels, middle},
                                         fittedText(canvas, bar.label, labels),
                                         bar.isRest ? Role::Label : Role::Text,
                                         Anchor::End});
        drawing.shapes.emplace_back(Box{{left, middle - height / 2, right - left, height}, Role::Faint, 2});
        if (bar.count > 0)
            drawing.shapes.emplace_back(Box{{left, middle - height / 2, std::max(width, kLeastBar), height},
                                            bar.isRest ? Role::Pale : Role::Bar,
                                            2});
        drawing.shapes.emplace_back(
            Text{{right + kGap + figures, middle}, formatGrouped(bar.count), Role::Text, Anchor::End});
        drawing.shapes.emplace_back(Text{{canvas.width - kMargin, middle}, share, Role::Label, Anchor::End});
        drawing.hits.push_back(
            {{0, top, canvas.width, rowHeight}, bar.label + ": " + rowsText(bar.count, m_total), bar.action});
        top += rowHeight;
    }
    drawing.shapes.emplace_back(Text{{left, top + kGap / 2 + canvas.lineHeight / 2},
                                     fittedText(canvas, m_base, canvas.width - left - kMargin),
                                     Role::Label});
    return drawing;
}

} // namespace tavix::chart
