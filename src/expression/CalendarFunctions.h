#pragma once

#include "expression/Scratch.h"
#include "expression/Value.h"

#include <span>

/// The catalogue's functions over dates that need the calendar. Weeks are those of ISO 8601: they begin on Monday, and
/// week 1 has the year's first Thursday.
namespace tavix::expression::calendar_functions {

using Arguments = std::span<const Value>;

Value addMonths(Arguments arguments, Scratch& scratch);
Value dateDifference(Arguments arguments, Scratch& scratch);
Value dayOfYear(Arguments arguments, Scratch& scratch);
Value lastDay(Arguments arguments, Scratch& scratch);
Value quarter(Arguments arguments, Scratch& scratch);
Value startOf(Arguments arguments, Scratch& scratch);
Value week(Arguments arguments, Scratch& scratch);

} // namespace tavix::expression::calendar_functions
