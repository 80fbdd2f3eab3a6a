#pragma once

#include "expression/Checker.h"
#include "expression/ExpressionError.h"
#include "expression/Node.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

/// The expression language: filter conditions, business rules and custom metrics. docs/expressions.md is its reference.
namespace tavix::expression {

/// Integers from low to high, both included; none when low is above high.
struct IntegerRange {
    std::int64_t low = std::numeric_limits<std::int64_t>::min();
    std::int64_t high = std::numeric_limits<std::int64_t>::max();

    [[nodiscard]] bool isEmpty() const { return low > high; }
    bool operator==(const IntegerRange&) const = default;
};

struct Compiled;

/// A compiled expression. Immutable and cheap to copy; any number of threads may evaluate it at once, each with an
/// evaluator of its own.
class Program {
  public:
    /// The type of its result; Null when it can only be null.
    [[nodiscard]] Type type() const { return m_tree->type; }

    /// The fields that it was compiled for; rows and blocks have a value or column for each, in this order.
    [[nodiscard]] std::span<const Field> fields() const { return *m_fields; }
    /// Whether the field's values are looked at; of a field that is not used, nothing needs to be provided.
    [[nodiscard]] bool uses(std::size_t field) const;

    /// Where an Integer field has to lie for the condition to be true: a row, or a block of rows, outside need not be
    /// looked at unless its failures matter. `Count` > 10 and (...) gives 11 and above.
    [[nodiscard]] IntegerRange passingRange(std::size_t field) const;

    [[nodiscard]] const Node& tree() const { return *m_tree; }

  private:
    friend Compiled compile(std::string_view text, std::span<const Field> fields, Wanted wanted);
    Program(NodePtr tree, std::span<const Field> fields);

    std::shared_ptr<const Node> m_tree;
    std::shared_ptr<const std::vector<Field>> m_fields;
    std::vector<bool> m_used;
};

struct Compiled {
    std::optional<Program> program; ///< none when there is an error
    ExpressionError error;
    /// On the first place of a program that probably does not mean what its author thinks.
    std::optional<ExpressionError> remark;

    [[nodiscard]] bool ok() const { return program.has_value(); }
};

/// Any text gives a program or an error, in time and memory that are bounded by its length.
[[nodiscard]] Compiled compile(std::string_view text, std::span<const Field> fields, Wanted wanted);

} // namespace tavix::expression
