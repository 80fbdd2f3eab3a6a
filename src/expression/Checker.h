#pragma once

#include "expression/ExpressionError.h"
#include "expression/Node.h"
#include "expression/Syntax.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace tavix::expression {

/// A field that an expression may name.
struct Field {
    std::string name;
    Type type = Type::Text;

    bool operator==(const Field&) const = default;
};

/// What kind of expression the caller needs.
enum class Wanted : std::uint8_t {
    Condition, ///< true or false
    Value,     ///< a value of any type
};

/// How an expression compares the values of text fields.
enum class Columns : std::uint8_t {
    Texts, ///< texts
    Typed, ///< numbers or dates where they are such, as the columns of tables; see Cells.h
};

struct Checked {
    NodePtr tree; ///< null on an error
    std::optional<ExpressionError> error;
    std::optional<ExpressionError> remark; ///< about the first place that probably does not mean what its author thinks
};

/// Resolves names and types and evaluates constants. A field is found by its exact name, or else by its name in any
/// case when only one field has it. `size`: bytes of the text, which bound the memory. `now`: see compile().
[[nodiscard]] Checked check(const Syntax& syntax, std::size_t size, std::span<const Field> fields, Wanted wanted,
                            std::int64_t now, Columns columns);

} // namespace tavix::expression
