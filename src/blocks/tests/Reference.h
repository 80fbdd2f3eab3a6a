#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The language once more, as slow and obvious as it can be: texts are lists of code points, an expression is its text
/// beside a function that says what it means. Made together from the same random choices, they check the real thing.
namespace tavix::expression::reference {

using Text = std::u32string;
/// Null, boolean, integer, real or text.
using Value = std::variant<std::monostate, bool, std::int64_t, double, Text>;

struct Row {
    Value value; ///< `Value`, text
    Value other; ///< `Other`, text
    Value count; ///< `Count`, integer, never null
    /// Set when an operation has no result that a program could give; the row is then not compared.
    mutable bool hasFailed = false;
};

struct Expression {
    std::string text;
    std::function<Value(const Row&)> meaning;
};

/// Bytes of no character become code points beyond all characters, and back.
Text decode(std::string_view utf8);
std::string encode(const Text& text);

class Generator {
  public:
    explicit Generator(std::uint32_t seed) : m_random(seed) {}

    /// A condition, or the same as statements.
    Expression program(int depth);
    Expression condition(int depth);
    Expression text(int depth);
    Expression integer(int depth);
    Expression real(int depth);

    /// A text as rows have them: short, with digits, blanks, signs and, unless `onlyAscii`, letters of all kinds.
    std::string rowText(bool onlyAscii);
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

    std::mt19937 m_random;
};

} // namespace tavix::expression::reference
