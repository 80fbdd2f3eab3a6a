#pragma once

#include "expression/Scratch.h"
#include "expression/Syntax.h"
#include "expression/Value.h"

#include <string_view>

/// The operators and conversions of values.
namespace tavix::expression {

/// Converts to the type. Null stays null; a text that cannot be read as a number or date becomes null; a real becomes
/// an integer by truncation.
[[nodiscard]] Value convert(const Value& value, Type type, Scratch& scratch);

/// A cell as a value of its field's type: an empty or blank text is null unless the field is text, and a text that
/// cannot be read is a failure.
[[nodiscard]] Value readCell(const Value& cell, Type type, std::string_view field, Scratch& scratch);

/// Below zero, zero or above, for two non-null values of the same type, or of Integer and Real. Texts are compared by
/// code point; false comes before true.
[[nodiscard]] int compareValues(const Value& left, const Value& right);
[[nodiscard]] bool holds(Comparison comparison, int order);
/// The comparison of the exchanged sides that means the same.
[[nodiscard]] Comparison mirrored(Comparison comparison);

/// Calculates with two integers or two reals. Division by zero and a result that is not finite give null; an integer
/// beyond 64 bits is a failure.
[[nodiscard]] Value calculate(Arithmetic operation, const Value& left, const Value& right, Scratch& scratch);
[[nodiscard]] Value negate(const Value& value, Scratch& scratch);

/// Null for infinities and NaN.
[[nodiscard]] Value finite(double value);

} // namespace tavix::expression
