#pragma once

#include "blocks/tests/ReferenceValues.h"
#include "expression/Program.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

/// A reference implementation of the language, as slow and obvious as possible. An expression is its text together with
/// a function that computes its value; both are made from the same random choices.
namespace tavix::expression::reference {

struct Row {
    Value value; ///< `Value`, text
    Value other; ///< `Other`, text
    Value count; ///< `Count`, integer, never null
    /// Set when an operation has no result in a program; the row is then not compared.
    mutable bool hasFailed = false;
};

struct Expression {
    std::string text;
    std::function<Value(const Row&)> meaning;
};

class Generator {
  public:
    explicit Generator(std::uint32_t seed, Columns columns = Columns::Texts) : m_random(seed), m_columns(columns) {}

    /// A condition, or the same as statements.
    Expression program(int depth);
    Expression condition(int depth);
    Expression text(int depth);
    Expression integer(int depth);
    Expression real(int depth);

    /// A short text as in rows, with digits, blanks, signs and, unless `onlyAscii`, letters of all kinds.
    std::string rowText(bool onlyAscii);
    /// The cell of a row: rowText(), or for typed columns at times a number or a date.
    std::string cell(bool onlyAscii);
    std::size_t below(std::size_t bound) { return std::uniform_int_distribution<std::size_t>(0, bound - 1)(m_random); }

  private:
    Expression call(const std::string& name, const std::vector<Expression>& arguments,
                    std::function<Value(const std::vector<Value>&)> meaning);
    Expression compare(const Expression& left, const Expression& right);
    Expression junction(int depth);
    Expression quoted(const std::string& utf8);
    Expression number(std::int64_t value);
    Expression any(int depth);
    Expression numberList(int depth);
    Expression listTest(std::vector<Expression> members);
    Expression part(int depth);
    Expression between(int depth);
    Expression compareWithDate();
    /// A number of a date.
    Expression datePart(int depth);
    Expression field();
    /// Whether the expression is a column that is compared by what its cells are.
    [[nodiscard]] bool isCell(const Expression& expression) const;
    /// None when the values are not in any order; neither is null.
    [[nodiscard]] std::optional<int> orderOf(const Expression& left, const Expression& right, const Value& a,
                                             const Value& b) const;

    std::mt19937 m_random;
    Columns m_columns;
};

} // namespace tavix::expression::reference
