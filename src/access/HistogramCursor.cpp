#include "access/HistogramCursor.h"

#include "access/Layouts.h"
#include "base/DateTicks.h"

#include <cmath>
#include <string>
#include <utility>

namespace tavix {

namespace {

/// Below it, every whole number is a 64-bit integer.
constexpr long double kIntegers = 9.2e18L;
/// 1899-12-30, day 0 of the library's dates, in days since 1970.
constexpr double kFirstDay = -25'569;

const layout::Layout& ownLayout() {
    static const layout::Layout& found = layout::of("getHistogram");
    return found;
}

template <typename Code>
KvbDatavar letter(Code code) {
    return KvbString(std::string(1, static_cast<char>(code)));
}

} // namespace

HistogramCursor::HistogramCursor(std::optional<Histogram> histogram) {
    if (histogram)
        m_histogram = std::move(*histogram);
}

bool HistogramCursor::next() {
    if (m_next <= m_histogram.counts.size())
        ++m_next;
    return m_next <= m_histogram.counts.size();
}

int HistogramCursor::getColumnCount() const {
    return static_cast<int>(ownLayout().columns.size());
}

KvbString HistogramCursor::getColumnName(int column) const {
    return isColumnValid(column) ? KvbString(ownLayout().columns[static_cast<std::size_t>(column)].name) : KvbString();
}

bool HistogramCursor::isColumnNull(int column) const {
    return !isColumnValid(column) || m_next == 0 || m_next > m_histogram.counts.size();
}

KvbDatavar HistogramCursor::border(std::size_t index) const {
    if (m_histogram.kind == HistogramKind::Dates)
        return static_cast<double>(m_histogram.dateBorder(index)) / static_cast<double>(kTicksPerDay) - kFirstDay;
    const long double border = m_histogram.border(index);
    if (std::fabs(border) < kIntegers && std::trunc(border) == border)
        return static_cast<std::int64_t>(border);
    return static_cast<double>(border);
}

KvbDatavar HistogramCursor::cell(int column) const {
    const std::size_t bin = m_next - 1;
    switch (column) {
    case layout::HistogramKindLetter:
        return letter(m_histogram.kind);
    case layout::HistogramUnitLetter:
        return letter(m_histogram.unit);
    case layout::HistogramLow:
        return border(bin);
    case layout::HistogramHigh:
        return border(bin + 1);
    default:
        return static_cast<std::int64_t>(m_histogram.counts[bin]);
    }
}

} // namespace tavix
