#include "base/DateTicks.h"
#include "blocks/JoinedNulls.h"
#include "blocks/Operand.h"
#include "expression/CalendarFunctions.h"

#include <array>
#include <cstdint>
#include <optional>

namespace tavix::expression {

namespace {

using calendar_functions::Unit;

/// A function of a date.
template <typename Function>
class DateFunctionOperand : public Operand {
  public:
    DateFunctionOperand(const Node& node, Function function)
        : m_type(node.type), m_source(makeOperand(node.child(0))), m_function(function) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_source->evaluate(frame, rows);
        m_results.begin(m_type, frame.rows());
        std::int64_t* const out = m_results.integers();
        const std::int64_t* const dates = source.integers;
        if (source.nulls) {
            // Where a row is null, its number need not be a date.
            rows.forEach([&, nulls = source.nulls](std::uint32_t row) {
                out[row] = nulls[row] != 0 ? 0 : m_function(dates[row]);
            });
        } else {
            rows.forEach([&](std::uint32_t row) { out[row] = m_function(dates[row]); });
        }
        m_results.takeNulls(source);
        return m_results.vector();
    }

  private:
    Type m_type;
    OperandPtr m_source;
    Function m_function;
    Results m_results;
};

template <typename Function>
OperandPtr makeOf(const Node& node, Function function) {
    return std::make_unique<DateFunctionOperand<Function>>(node, function);
}

/// datediff() in a constant unit; one of the dates may be constant.
class DifferenceOperand : public Operand {
  public:
    DifferenceOperand(const Node& node, Unit unit)
        : m_unit(unit), m_sides{makeOperand(node.child(0)), makeOperand(node.child(1))} {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& from = m_sides[0]->evaluate(frame, rows);
        const Vector& to = m_sides[1]->evaluate(frame, rows);
        m_results.begin(Type::Integer, frame.rows());
        m_nulls.begin();
        for (const Vector* side : {&from, &to})
            m_nulls.add(*side, frame.rows());
        std::int64_t* const out = m_results.integers();
        const std::uint8_t* const nulls = m_nulls.get();
        withUnits(from, [&](auto begin) {
            withUnits(to, [&](auto end) {
                rows.forEach(
                    [&](std::uint32_t row) { out[row] = nulls && nulls[row] != 0 ? 0 : end(row) - begin(row); });
            });
        });
        m_results.takeNulls(nulls);
        return m_results.vector();
    }

  private:
    /// Calls `use` with a function from row to number of units.
    template <typename Use>
    void withUnits(const Vector& dates, Use use) const {
        if (dates.isConstant)
            use([units = calendar_functions::unitsUntil(dates.constant.integer, m_unit)](std::uint32_t) {
                return units;
            });
        else
            use([values = dates.integers, unit = m_unit](std::uint32_t row) {
                return calendar_functions::unitsUntil(values[row], unit);
            });
    }

    Unit m_unit;
    std::array<OperandPtr, 2> m_sides;
    JoinedNulls m_nulls;
    Results m_results;
};

std::optional<Unit> fixedUnit(const Node& node) {
    return isFixedText(node) ? calendar_functions::findUnit(node.text) : std::nullopt;
}

OperandPtr makeDifference(const Node& node) {
    const auto isNull = [](const Node& side) { return side.isConstant() && side.constant.isNull(); };
    const auto unit = node.children.size() > 2 ? fixedUnit(node.child(2)) : std::optional(Unit::Day);
    if (!unit || isNull(node.child(0)) || isNull(node.child(1)))
        return nullptr;
    return std::make_unique<DifferenceOperand>(node, *unit);
}

/// The part of the day in units of `seconds`.
std::int64_t inDay(std::int64_t ticks, std::int64_t seconds) {
    return (ticks - dayOf(ticks) * kTicksPerDay) / kTicksPerSecond / seconds;
}

} // namespace

OperandPtr makeDateFunction(const Node& node) {
    if (node.children.empty() || node.child(0).type != Type::Date)
        return nullptr;
    if (isCallOf(node, "datediff"))
        return makeDifference(node);
    if (node.child(0).isConstant())
        return nullptr;
    if (isCallOf(node, "year"))
        return makeOf(node, [](std::int64_t ticks) { return std::int64_t{calendarDay(ticks).year}; });
    if (isCallOf(node, "month"))
        return makeOf(node, [](std::int64_t ticks) { return std::int64_t{calendarDay(ticks).month}; });
    if (isCallOf(node, "day"))
        return makeOf(node, [](std::int64_t ticks) { return std::int64_t{calendarDay(ticks).day}; });
    if (isCallOf(node, "weekday"))
        return makeOf(node, [](std::int64_t ticks) { return std::int64_t{calendarDay(ticks).weekday}; });
    if (isCallOf(node, "quarter"))
        return makeOf(node, calendar_functions::quarterOf);
    if (isCallOf(node, "lastday"))
        return makeOf(node, calendar_functions::monthEndOf);
    if (isCallOf(node, "hour"))
        return makeOf(node, [](std::int64_t ticks) { return inDay(ticks, 3600); });
    if (isCallOf(node, "minute"))
        return makeOf(node, [](std::int64_t ticks) { return inDay(ticks, 60) % 60; });
    if (isCallOf(node, "second"))
        return makeOf(node, [](std::int64_t ticks) { return inDay(ticks, 1) % 60; });
    const auto unit = isCallOf(node, "startof") ? fixedUnit(node.child(1)) : std::nullopt;
    if (!unit)
        return nullptr;
    return makeOf(node, [unit = *unit](std::int64_t ticks) { return calendar_functions::beginningOf(ticks, unit); });
}

} // namespace tavix::expression
