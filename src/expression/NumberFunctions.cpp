#include "expression/NumberFunctions.h"

#include "base/DateTicks.h"
#include "expression/Conversion.h"

#include <algorithm>
#include <cmath>

namespace tavix::expression::number_functions {

namespace {

Value pick(Arguments arguments, int sign) {
    const Value* best = &arguments.front();
    for (const Value& argument : arguments) {
        if (compareValues(argument, *best) * sign > 0)
            best = &argument;
    }
    return *best;
}

/// The part of the day in units of `seconds`.
std::int64_t inDay(const Value& date, std::int64_t seconds) {
    return (date.integer - dayOf(date.integer) * kTicksPerDay) / kTicksPerSecond / seconds;
}

} // namespace

Value absolute(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofReal(std::fabs(arguments[0].real));
}

Value addDays(Arguments arguments, Scratch& /*scratch*/) {
    constexpr double kMostDays = 4'000'000;
    const double days = arguments[1].real;
    if (!(std::fabs(days) <= kMostDays))
        return {};
    const double whole = std::trunc(days);
    const auto part = static_cast<std::int64_t>(std::llround((days - whole) * static_cast<double>(kTicksPerDay)));
    const std::int64_t ticks = arguments[0].integer + static_cast<std::int64_t>(whole) * kTicksPerDay + part;
    return isSupportedDate(ticks) ? Value::ofDate(ticks) : Value{};
}

Value between(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofBoolean(compareValues(arguments[0], arguments[1]) >= 0 &&
                            compareValues(arguments[0], arguments[2]) <= 0);
}

Value ceiling(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofReal(std::ceil(arguments[0].real));
}

Value day(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofInteger(calendarDay(arguments[0].integer).day);
}

Value floor(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofReal(std::floor(arguments[0].real));
}

Value greatest(Arguments arguments, Scratch& /*scratch*/) {
    return pick(arguments, 1);
}

Value hour(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofInteger(inDay(arguments[0], 3600));
}

Value least(Arguments arguments, Scratch& /*scratch*/) {
    return pick(arguments, -1);
}

Value minute(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofInteger(inDay(arguments[0], 60) % 60);
}

Value month(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofInteger(calendarDay(arguments[0].integer).month);
}

Value nullIf(Arguments arguments, Scratch& /*scratch*/) {
    return compareValues(arguments[0], arguments[1]) == 0 ? Value{} : arguments[0];
}

Value power(Arguments arguments, Scratch& /*scratch*/) {
    return finite(std::pow(arguments[0].real, arguments[1].real));
}

Value remainder(Arguments arguments, Scratch& /*scratch*/) {
    return finite(std::fmod(arguments[0].real, arguments[1].real));
}

DecimalRounding::DecimalRounding(std::int64_t places)
    : m_unit(std::pow(10.0, static_cast<double>(std::abs(std::clamp(places, -kMost, kMost))))), m_isWhole(places < 0) {}

double DecimalRounding::round(double value) const {
    constexpr double kWithoutPlaces = 4503599627370496.0; // 2 to the power of 52
    const double size = std::fabs(value);
    const double scaled = m_isWhole ? size / m_unit : size * m_unit;
    // A value too large to be scaled has no such decimal places.
    if (!(scaled < kWithoutPlaces))
        return value;
    // The double 1.005 is slightly below the decimal 1.005. A value counts as half when it is the double nearest to the
    // decimal half.
    const double whole = std::floor(scaled);
    const double half = m_isWhole ? (whole + 0.5) * m_unit : (whole + 0.5) / m_unit;
    const double rounded = size >= half ? whole + 1 : whole;
    return std::copysign(m_isWhole ? rounded * m_unit : rounded / m_unit, value);
}

Value round(Arguments arguments, Scratch& /*scratch*/) {
    const DecimalRounding places(arguments.size() > 1 ? arguments[1].integer : 0);
    return Value::ofReal(places.round(arguments[0].real));
}

Value same(Arguments arguments, Scratch& /*scratch*/) {
    return arguments[0];
}

Value second(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofInteger(inDay(arguments[0], 1) % 60);
}

Value squareRoot(Arguments arguments, Scratch& /*scratch*/) {
    return finite(std::sqrt(arguments[0].real));
}

Value truncate(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofReal(std::trunc(arguments[0].real));
}

Value weekday(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofInteger(calendarDay(arguments[0].integer).weekday);
}

Value year(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofInteger(calendarDay(arguments[0].integer).year);
}

} // namespace tavix::expression::number_functions
