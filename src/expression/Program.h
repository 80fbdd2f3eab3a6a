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

/// The expression language of filter conditions, business rules and custom metrics; see docs/expressions.md.
namespace tavix::expression {

/// The integers from low to high, inclusive; empty when low is above high.
struct IntegerRange {
    std::int64_t low = std::numeric_limits<std::int64_t>::min();
    std::int64_t high = std::numeric_limits<std::int64_t>::max();

    [[nodiscard]] bool isEmpty() const { return low > high; }
    bool operator==(const IntegerRange&) const = default;
};

struct Compiled;

/// A compiled expression. Immutable and cheap to copy; any number of threads may evaluate it, each with its own
/// evaluator.
class Program {
  public:
    /// The type of its result; Null when that is always null.
    [[nodiscard]] Type type() const { return m_tree->type; }

    /// The fields that it was compiled for. Rows and blocks have a value or column for each, in this order.
    [[nodiscard]] std::span<const Field> fields() const { return *m_fields; }
    /// Whether the field's values are used; others need not be provided.
    [[nodiscard]] bool uses(std::size_t field) const;

    /// The range in which an Integer field must be for the condition to be true: rows and blocks outside can be skipped
    /// unless their failures matter. `Count` > 10 and (...) gives 11 and above.
    [[nodiscard]] IntegerRange passingRange(std::size_t field) const;

    /// Whether it is a text field and nothing else.
    [[nodiscard]] bool isTextField() const { return m_tree->kind == NodeKind::Field && type() == Type::Text; }

    [[nodiscard]] const Node& tree() const { return *m_tree; }

  private:
    friend Compiled compile(std::string_view text, std::span<const Field> fields, Wanted wanted, std::int64_t now,
                            Columns columns);
    Program(NodePtr tree, std::span<const Field> fields);

    std::shared_ptr<const Node> m_tree;
    std::shared_ptr<const std::vector<Field>> m_fields;
    std::vector<bool> m_used;
};

struct Compiled {
    std::optional<Program> program; ///< none on an error
    ExpressionError error;
    /// About the first place that probably does not mean what its author thinks.
    std::optional<ExpressionError> remark;

    [[nodiscard]] bool ok() const { return program.has_value(); }
};

/// The moment of the call, as a date.
[[nodiscard]] std::int64_t thisMoment();

/// Gives a program or an error for any text, in time and memory bounded by its length. `now` is the date that now()
/// means, in units of base/DateTicks.h: the start of a run, so that all its rows and rules agree. `columns`: Typed for
/// the expressions of jobs, Texts for the filters of distributions.
[[nodiscard]] Compiled compile(std::string_view text, std::span<const Field> fields, Wanted wanted,
                               std::int64_t now = thisMoment(), Columns columns = Columns::Texts);

} // namespace tavix::expression
