#pragma once

#include "expression/Scratch.h"
#include "expression/Value.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

/// The catalogue's functions over dates that need the calendar. Weeks are those of ISO 8601: they begin on Monday, and
/// week 1 has the year's first Thursday.
namespace tavix::expression::calendar_functions {

using Arguments = std::span<const Value>;

enum class Unit : std::uint8_t { Second, Minute, Hour, Day, Week, Month, Quarter, Year };
/// By its name, in any case and with or without "s".
[[nodiscard]] std::optional<Unit> findUnit(std::string_view name);

// Of dates within the supported years.
/// How many units have begun since a fixed moment.
[[nodiscard]] std::int64_t unitsUntil(std::int64_t ticks, Unit unit);
/// When the date's unit began.
[[nodiscard]] std::int64_t beginningOf(std::int64_t ticks, Unit unit);
/// The last day of the date's month.
[[nodiscard]] std::int64_t monthEndOf(std::int64_t ticks);
[[nodiscard]] std::int64_t quarterOf(std::int64_t ticks);

Value addMonths(Arguments arguments, Scratch& scratch);
Value dateDifference(Arguments arguments, Scratch& scratch);
Value dayOfYear(Arguments arguments, Scratch& scratch);
Value lastDay(Arguments arguments, Scratch& scratch);
Value quarter(Arguments arguments, Scratch& scratch);
Value startOf(Arguments arguments, Scratch& scratch);
Value week(Arguments arguments, Scratch& scratch);

} // namespace tavix::expression::calendar_functions
