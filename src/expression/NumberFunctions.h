#pragma once

#include "expression/Scratch.h"
#include "expression/Value.h"

#include <cstdint>
#include <span>

/// The catalogue's functions over numbers and dates, and those that take any type.
namespace tavix::expression::number_functions {

using Arguments = std::span<const Value>;

/// Rounds to decimal places, or to powers of ten when `places` is negative; halves away from zero.
class DecimalRounding {
  public:
    explicit DecimalRounding(std::int64_t places);
    [[nodiscard]] double round(double value) const;

  private:
    static constexpr std::int64_t kMost = 15;
    double m_unit;
    bool m_isWhole;
};

Value absolute(Arguments arguments, Scratch& scratch);
Value addDays(Arguments arguments, Scratch& scratch);
Value between(Arguments arguments, Scratch& scratch);
Value ceiling(Arguments arguments, Scratch& scratch);
Value day(Arguments arguments, Scratch& scratch);
Value floor(Arguments arguments, Scratch& scratch);
Value greatest(Arguments arguments, Scratch& scratch);
Value hour(Arguments arguments, Scratch& scratch);
Value least(Arguments arguments, Scratch& scratch);
Value minute(Arguments arguments, Scratch& scratch);
Value month(Arguments arguments, Scratch& scratch);
Value nullIf(Arguments arguments, Scratch& scratch);
Value power(Arguments arguments, Scratch& scratch);
Value remainder(Arguments arguments, Scratch& scratch);
Value round(Arguments arguments, Scratch& scratch);
/// Returns the argument: the conversion to the parameter's type does all the work.
Value same(Arguments arguments, Scratch& scratch);
Value second(Arguments arguments, Scratch& scratch);
Value squareRoot(Arguments arguments, Scratch& scratch);
Value truncate(Arguments arguments, Scratch& scratch);
Value weekday(Arguments arguments, Scratch& scratch);
Value year(Arguments arguments, Scratch& scratch);

} // namespace tavix::expression::number_functions
