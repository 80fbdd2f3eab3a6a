#include "profiling/RowAggregate.h"

#include "expression/Conversion.h"
#include "expression/NumberReader.h"
#include "profiling/MetricValue.h"

#include <cmath>
#include <limits>

namespace tavix::profiling {

using expression::Type;
using expression::Value;

RowAggregate::RowAggregate(job::Figure figure, bool isColumn) : m_figure(figure) {
    if (isColumn && (figure == job::Figure::Minimum || figure == job::Figure::Maximum))
        m_cells.emplace(figure == job::Figure::Maximum);
}

void RowAggregate::add(const Value& value) {
    if (value.isNull())
        return;
    if (m_cells)
        m_cells->add(value.text);
    else if (m_figure == job::Figure::Minimum || m_figure == job::Figure::Maximum)
        addExtreme(value);
    else
        addNumber(value);
}

void RowAggregate::addNumber(const Value& value) {
    if (value.type == Type::Integer) {
        m_integers += value.integer;
    } else if (value.type == Type::Real) {
        m_reals += value.real;
        m_hasReals = true;
    } else {
        const Value number = expression::numberOfText(value.text);
        if (!number.isNull())
            addNumber(number);
        return;
    }
    ++m_used;
}

void RowAggregate::addExtreme(const Value& value) {
    if (++m_used > 1) {
        const int order = expression::compareValues(value, m_extreme);
        if (m_figure == job::Figure::Minimum ? order >= 0 : order <= 0)
            return;
    }
    m_extreme = value;
    if (value.type == Type::Text) {
        m_extremeText = value.text;
        m_extreme.text = m_extremeText;
    }
}

KvbDatavar RowAggregate::result() const {
    if (m_cells)
        return m_cells->result();
    if (m_used == 0)
        return {};
    if (m_figure == job::Figure::Minimum || m_figure == job::Figure::Maximum)
        return metricValue(m_extreme);
    const bool isExact = !m_hasReals && m_integers >= std::numeric_limits<std::int64_t>::min() &&
                         m_integers <= std::numeric_limits<std::int64_t>::max();
    if (m_figure == job::Figure::Sum && isExact)
        return static_cast<std::int64_t>(m_integers);
    const long double sum = static_cast<long double>(m_integers) + m_reals;
    const auto figure =
        static_cast<double>(m_figure == job::Figure::Sum ? sum : sum / static_cast<long double>(m_used));
    return std::isfinite(figure) ? metricValue(figure) : KvbDatavar();
}

} // namespace tavix::profiling
