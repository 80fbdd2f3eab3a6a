#include "profiling/CellExtreme.h"

#include "base/Characters.h"
#include "base/DateTicks.h"
#include "expression/Cells.h"
#include "expression/NumberReader.h"
#include "expression/TextOperators.h"
#include "profiling/MetricValue.h"

namespace tavix::profiling {

void CellExtreme::add(std::string_view cell) {
    ++m_cells;
    keep(m_text, cell, false);
    if (!isBlank(cell))
        addFilled(cell);
}

void CellExtreme::addFilled(std::string_view cell) {
    ++m_filled;
    m_areNumbers = m_areNumbers && expression::isPlainNumber(cell);
    m_areDates = m_areDates && !m_areNumbers && parseDate(cell);
    if (m_areNumbers || m_areDates)
        keep(m_typed, cell, true);
}

void CellExtreme::keep(std::optional<std::string>& best, std::string_view cell, bool isTyped) const {
    const auto order = [&] {
        return isTyped ? expression::orderOfCells(cell, *best) : expression::compareTexts(cell, *best);
    };
    if (!best || (m_isGreatest ? order() > 0 : order() < 0))
        best = cell;
}

KvbDatavar CellExtreme::result() const {
    if (m_cells == 0)
        return {};
    if (!isTyped())
        return *m_text;
    if (m_areNumbers)
        return metricValue(expression::numberOfText(*m_typed));
    return formatDate(*parseDate(*m_typed));
}

} // namespace tavix::profiling
