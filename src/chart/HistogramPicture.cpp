#include "chart/HistogramPicture.h"

#include "base/DateTicks.h"
#include "base/NumberText.h"
#include "chart/Plot.h"
#include "chart/Scale.h"
#include "report/FitFigures.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavix::chart {

namespace {

constexpr double kStripHeight = 30;
constexpr double kLeastBar = 1.5; ///< the height of a bar of any rows
constexpr double kGapFrom = 5;    ///< bars of this width or more have a gap between them
constexpr double kFenceFactor = 1.5;

/// Whether each bin holds a single whole number, which is then drawn in its middle.
bool areSingle(const FieldHistogram& histogram) {
    const FieldHistogram::Bin& bin = histogram.bins.front();
    return histogram.kind != HistogramKind::Dates && bin.high - bin.low == 1 && std::trunc(bin.low) == bin.low;
}

/// "1250000" as "1,250,000"; other texts as they are.
std::string readable(const std::string& number) {
    const auto integer = parseInteger(number);
    return integer ? formatGrouped(*integer) : number;
}

/// The picture while it is drawn.
class HistogramDrawing {
  public:
    HistogramDrawing(const Canvas& canvas, const FieldHistogram& histogram, const ValueMarks& marks)
        : m_canvas(canvas), m_histogram(histogram), m_marks(marks), m_areSingle(areSingle(histogram)) {
        m_drawing.width = canvas.width;
        m_drawing.height = canvas.height;
    }

    Drawing draw() {
        std::int64_t most = 1;
        for (const auto& bin : m_histogram.bins)
            most = std::max(most, bin.count);
        const auto counts = numberTicks(0, static_cast<double>(most), 5, true);
        m_hasStrip = m_marks.lowQuartile && m_marks.median && m_marks.highQuartile;
        m_plot = Plot(m_canvas, counts, shortCount(static_cast<double>(most)),
                      m_hasStrip ? kStripHeight + m_canvas.lineHeight : 0);
        if (!m_plot.isLargeEnough())
            return std::move(m_drawing);
        const Scale rows(0, static_cast<double>(most), m_plot.bottom(), m_plot.top());
        m_plot.drawRows(m_drawing, counts, rows);
        drawBars(rows);
        const Scale values = valueScale();
        drawTicks(values);
        if (m_hasStrip)
            drawStrip(values);
        return std::move(m_drawing);
    }

  private:
    /// From the first border to the last.
    [[nodiscard]] Scale valueScale() const {
        return {m_histogram.bins.front().low, m_histogram.bins.back().high, m_plot.left(), m_plot.right()};
    }
    /// A whole number in a bin of its own is in the middle of it.
    [[nodiscard]] double at(const Scale& values, double value) const {
        return values.at(value) + (m_areSingle ? (values.at(values.low() + 1) - values.at(values.low())) / 2 : 0);
    }

    void drawBars(const Scale& rows) {
        const Scale values = valueScale();
        const double even = (m_plot.right() - m_plot.left()) / static_cast<double>(m_histogram.bins.size());
        const double gap = even >= kGapFrom ? 1 : 0;
        for (const auto& bin : m_histogram.bins) {
            const double left = values.at(bin.low);
            const double width = std::max(values.at(bin.high) - left, 1.0);
            if (bin.count == 0)
                continue;
            const double top = std::min(rows.at(static_cast<double>(bin.count)), m_plot.bottom() - kLeastBar);
            m_drawing.shapes.emplace_back(
                Box{{left + gap / 2, top, std::max(width - gap, 1.0), m_plot.bottom() - top}, Role::Bar});
            m_drawing.hits.push_back({{left, m_plot.top(), width, m_plot.bottom() - m_plot.top()},
                                      rangeText(m_histogram, bin) + ": " + rowsText(bin.count, m_histogram.total),
                                      {ActionKind::FilterValues, KvbString(rangeFilter(m_histogram, bin))}});
        }
    }

    void drawTicks(const Scale& values) {
        const int wanted = m_plot.ticksAcross();
        auto ticks =
            m_histogram.kind == HistogramKind::Dates
                ? dateTicks(values.low(), values.high(), wanted)
                : numberTicks(values.low(), m_areSingle ? values.high() - 1 : values.high(), wanted, m_areSingle);
        if (ticks.empty())
            ticks.push_back({values.low(), readable(m_histogram.bins.front().lowText)});
        std::vector<std::pair<double, std::string>> placed;
        placed.reserve(ticks.size());
        for (Tick& tick : ticks)
            placed.emplace_back(at(values, tick.value), std::move(tick.label));
        m_plot.drawColumns(m_drawing, placed);
    }

    void drawStrip(const Scale& values) {
        const double q1 = *m_marks.lowQuartile;
        const double q3 = *m_marks.highQuartile;
        const double reach = kFenceFactor * (q3 - q1);
        const double y = m_plot.below() + kStripHeight / 2;
        const auto x = [&](double value) { return std::clamp(at(values, value), m_plot.left(), m_plot.right()); };
        const bool hasFences = std::isfinite(reach);
        const double from = hasFences ? x(q1 - reach) : m_plot.left();
        const double to = hasFences ? x(q3 + reach) : m_plot.right();
        m_drawing.shapes.emplace_back(Line{{from, y}, {to, y}, Role::Axis});
        for (const auto& [fence, position] : {std::pair(q1 - reach, from), std::pair(q3 + reach, to)}) {
            const bool isInside = hasFences && fence > values.low() && fence < values.high();
            m_drawing.shapes.emplace_back(
                Line{{position, y - 4}, {position, y + 4}, isInside ? Role::Fence : Role::Axis});
            if (isInside)
                m_drawing.shapes.emplace_back(
                    Line{{position, m_plot.top()}, {position, m_plot.bottom()}, Role::Fence, 1, true});
        }
        const double left = x(q1);
        const double width = std::max(x(q3) - left, 2.0);
        m_drawing.shapes.emplace_back(Box{{left, y - 7, width, 14}, Role::Pale, 2});
        const double median = x(*m_marks.median);
        m_drawing.shapes.emplace_back(Line{{median, y - 7}, {median, y + 7}, Role::Accent, 2});
        if (m_marks.mean)
            m_drawing.shapes.emplace_back(Dot{{x(*m_marks.mean), y}, 3, Role::Text});
        m_plot.drawNote(m_drawing, marksText());
        m_drawing.hits.push_back({{from, y - kStripHeight / 2, std::max(to - from, 4.0), kStripHeight}, stripText()});
    }

    [[nodiscard]] std::string marksText() const {
        std::string text = fmt::format("Median {}", readable(m_marks.medianText));
        if (m_marks.mean)
            text += fmt::format(" · mean {}", readable(m_marks.meanText));
        return text + fmt::format(" · middle half {} to {}", readable(m_marks.lowQuartileText),
                                  readable(m_marks.highQuartileText));
    }

    [[nodiscard]] std::string stripText() const {
        std::string text = marksText();
        if (m_histogram.kind == HistogramKind::Numbers) {
            const double reach = kFenceFactor * (*m_marks.highQuartile - *m_marks.lowQuartile);
            text += fmt::format(" · fences at {} and {}", shownNumber(*m_marks.lowQuartile - reach),
                                shownNumber(*m_marks.highQuartile + reach));
        }
        return text;
    }

    const Canvas& m_canvas;
    const FieldHistogram& m_histogram;
    const ValueMarks& m_marks;
    bool m_areSingle;
    bool m_hasStrip = false;
    Plot m_plot;
    Drawing m_drawing;
};

} // namespace

HistogramPicture::HistogramPicture(FieldHistogram histogram, ValueMarks marks)
    : m_histogram(std::move(histogram)), m_marks(std::move(marks)) {}

std::string HistogramPicture::title() const {
    switch (m_histogram.kind) {
    case HistogramKind::Dates:
        return "Rows over time";
    case HistogramKind::Lengths:
        return "Lengths of texts, in characters";
    case HistogramKind::Numbers:
        break;
    }
    return "Distribution of numbers";
}

std::string HistogramPicture::description() const {
    const auto most = std::max_element(m_histogram.bins.begin(), m_histogram.bins.end(),
                                       [](const auto& left, const auto& right) { return left.count < right.count; });
    return fmt::format("{} rows in {} ranges from {} to {}. Most are in {}: {}.", formatGrouped(m_histogram.total),
                       m_histogram.bins.size(), readable(m_histogram.bins.front().lowText),
                       readable(m_histogram.bins.back().highText), rangeText(m_histogram, *most),
                       rowsText(most->count, m_histogram.total));
}

Drawing HistogramPicture::draw(const Canvas& canvas) const {
    return HistogramDrawing(canvas, m_histogram, m_marks).draw();
}

std::string rangeText(const FieldHistogram& histogram, const FieldHistogram::Bin& bin) {
    constexpr double kDay = 86'400;
    if (histogram.kind != HistogramKind::Dates) {
        const std::string low = readable(bin.lowText);
        if (areSingle(histogram))
            return histogram.kind == HistogramKind::Lengths ? low + (bin.low == 1 ? " character" : " characters") : low;
        return fmt::format("{} to {}{}", low, readable(bin.highText),
                           histogram.kind == HistogramKind::Lengths ? " characters" : "");
    }
    if (histogram.unit == BinUnit::Week)
        return "week from " + bin.lowText;
    if (histogram.unit == BinUnit::Second && bin.high - bin.low == kDay)
        return bin.lowText;
    constexpr std::size_t kMonthLength = 7; // 2026-11
    constexpr std::size_t kYearLength = 4;
    if (histogram.unit == BinUnit::Month && bin.high - bin.low < 32 * kDay)
        return bin.lowText.substr(0, kMonthLength);
    if (histogram.unit == BinUnit::Month && bin.high - bin.low > 364 * kDay && bin.high - bin.low < 367 * kDay)
        return bin.lowText.substr(0, kYearLength);
    return bin.lowText + " to " + bin.highText;
}

std::string rangeFilter(const FieldHistogram& histogram, const FieldHistogram::Bin& bin) {
    std::string subject = convertedValue("tonumber", histogram.reading);
    std::string low = bin.lowText;
    std::string high = bin.highText;
    if (histogram.kind == HistogramKind::Lengths)
        subject = "length(`Value`)";
    else if (histogram.kind == HistogramKind::Dates)
        subject = convertedValue("todate", histogram.reading);
    if (histogram.kind != HistogramKind::Dates && areSingle(histogram))
        return fmt::format("{} = {}", subject, low);
    if (histogram.kind == HistogramKind::Dates) {
        // The first and the last range may reach beyond the years that a date can have.
        low = parseDate(low) ? "'" + low + "'" : "";
        high = parseDate(high) ? "'" + high + "'" : "";
    }
    if (low.empty() || high.empty())
        return fmt::format("{} {} {}", subject, low.empty() ? "<" : ">=", low.empty() ? high : low);
    return fmt::format("{0} >= {1} and {0} < {2}", subject, low, high);
}

} // namespace tavix::chart
