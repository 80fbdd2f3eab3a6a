#pragma once

#include "expression/Syntax.h"
#include "expression/Value.h"

#include <optional>
#include <string_view>

/// How the cells of a table's columns are compared: they are texts, but mean numbers or dates where they are such.
/// docs/expressions.md, "Columns of tables", explains it to users.
namespace tavix::expression {

/// Below zero, zero or above; none when the cell is not a number (as isnumber() says). Integers within 64 bits are
/// compared exactly, everything else as doubles.
[[nodiscard]] std::optional<int> orderOfCell(std::string_view cell, const Value& number);

/// Two numbers by value, two dates by instant, anything else by code point. Numbers are those of docs/definitions.md
/// here, which have no leading zeros: 007 is a code. Integers of any length are compared exactly.
[[nodiscard]] int orderOfCells(std::string_view left, std::string_view right);

/// Whether the cell is a number without leading zeros.
[[nodiscard]] bool isPlainNumber(std::string_view cell);

/// Compares a cell with a number, or with another cell when `other` is a text; neither is null. A cell that is not a
/// number differs from each number, and is neither less nor greater: null.
[[nodiscard]] Value compareCell(Comparison comparison, std::string_view cell, const Value& other);

} // namespace tavix::expression
