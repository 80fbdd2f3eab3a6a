#pragma once

#include "expression/Scratch.h"
#include "expression/Syntax.h"
#include "expression/Value.h"

#include <string_view>

/// What operators and conversions make of values.
namespace tavix::expression {

/// To the type; null stays null, and a text that cannot be read as a number or date becomes null. A real becomes an
/// integer by cutting toward zero.
[[nodiscard]] Value convert(const Value& value, Type type, Scratch& scratch);

/// What a cell holds as a value of its field's type: an empty or blank text in a field that is not text is null, and a
/// text that cannot be read is a failure.
[[nodiscard]] Value readCell(const Value& cell, Type type, std::string_view field, Scratch& scratch);

/// Below zero, zero, above, for two values of the same type, or of Integer and Real, and none of them null. Texts are
/// compared by code point, false is before true.
[[nodiscard]] int compareValues(const Value& left, const Value& right);
[[nodiscard]] bool holds(Comparison comparison, int order);

/// Both integers or both reals. Division by zero is null, as is what is no finite number; an integer that grows beyond
/// 64 bits is a failure.
[[nodiscard]] Value calculate(Arithmetic operation, const Value& left, const Value& right, Scratch& scratch);
[[nodiscard]] Value negate(const Value& value, Scratch& scratch);

/// Null for infinities and what is no number.
[[nodiscard]] Value finite(double value);

} // namespace tavix::expression
