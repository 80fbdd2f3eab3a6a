#include "base/Characters.h"
#include "blocks/Operand.h"
#include "blocks/PairPredicate.h"
#include "blocks/Predicate.h"
#include "blocks/TextKey.h"
#include "expression/Conversion.h"
#include "expression/TextOperators.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <string>
#include <type_traits>

namespace tavix::expression {

namespace {

/// Calls `use` with the operator as a type, so that each loop is compiled for one operator.
template <typename Use>
void withOperator(Comparison comparison, bool wanted, Use use) {
    const auto either = [&](auto positive, auto negative) {
        if (wanted)
            use(positive);
        else
            use(negative);
    };
    switch (comparison) {
    case Comparison::Equal:
        return either(std::equal_to<>(), std::not_equal_to<>());
    case Comparison::NotEqual:
        return either(std::not_equal_to<>(), std::equal_to<>());
    case Comparison::Less:
        return either(std::less<>(), std::greater_equal<>());
    case Comparison::LessOrEqual:
        return either(std::less_equal<>(), std::greater<>());
    case Comparison::Greater:
        return either(std::greater<>(), std::less_equal<>());
    case Comparison::GreaterOrEqual:
        return either(std::greater_equal<>(), std::less<>());
    }
}

template <typename Compare>
inline constexpr bool kAsksForEquality =
    std::is_same_v<Compare, std::equal_to<>> || std::is_same_v<Compare, std::not_equal_to<>>;

/// Most texts differ within the first eight bytes.
template <typename Compare>
bool compareTextsBy(Compare compare, std::string_view left, const char* leftReadable, std::string_view right,
                    const char* rightReadable) {
    const std::uint64_t leftKey = textKey(left, leftReadable);
    const std::uint64_t rightKey = textKey(right, rightReadable);
    if (leftKey != rightKey)
        return compare(leftKey, rightKey);
    if constexpr (kAsksForEquality<Compare>)
        return compare(left, right);
    else
        return compare(left.compare(right), 0);
}

/// Compares two expressions of one type, or an integer and a real.
class PairComparison : public PairPredicate {
  public:
    explicit PairComparison(const Node& node) : PairPredicate(node) {}

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Sides sides = evaluate(frame, rows);
        const Vector& left = sides.left;
        const Vector& right = sides.right;
        withOperator(comparison(), wanted, [&](auto compare) {
            if (left.type == Type::Text && !left.isConstant && !right.isConstant)
                narrowTexts(rows, left, right, compare);
            else
                rows.keepIf([&](std::uint32_t row) { return compare(compareValues(left.at(row), right.at(row)), 0); });
        });
    }

  private:
    template <typename Compare>
    static void narrowTexts(RowSet& rows, const Vector& left, const Vector& right, Compare compare) {
        withTexts(left, [&](auto leftTexts) {
            withTexts(right, [&](auto rightTexts) {
                rows.keepIf([&](std::uint32_t row) {
                    return compareTextsBy(compare, leftTexts[row], left.readable, rightTexts[row], right.readable);
                });
            });
        });
    }
};

/// Compares integers, reals or dates with a constant.
class NumberComparison : public Predicate {
  public:
    explicit NumberComparison(const Node& node)
        : m_comparison(node.comparison), m_operand(makeOperand(node.child(0))), m_constant(node.child(1).constant) {}

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Vector& vector = m_operand->evaluate(frame, rows);
        dropNulls(rows, vector);
        withOperator(m_comparison, wanted, [&](auto compare) {
            if (vector.type == Type::Real || m_constant.type == Type::Real)
                narrowReals(rows, vector, compare);
            else
                rows.keepIf([compare, values = vector.integers, constant = m_constant.integer](std::uint32_t row) {
                    return compare(values[row], constant);
                });
        });
    }

  private:
    template <typename Compare>
    void narrowReals(RowSet& rows, const Vector& vector, Compare compare) const {
        const double constant =
            m_constant.type == Type::Real ? m_constant.real : static_cast<double>(m_constant.integer);
        if (vector.type == Type::Real)
            rows.keepIf([&](std::uint32_t row) { return compare(vector.reals[row], constant); });
        else
            rows.keepIf(
                [&](std::uint32_t row) { return compare(static_cast<double>(vector.integers[row]), constant); });
    }

    Comparison m_comparison;
    OperandPtr m_operand;
    Value m_constant;
};

/// Compares texts with a constant.
class TextComparison : public Predicate {
  public:
    explicit TextComparison(const Node& node)
        : m_comparison(node.comparison), m_operand(makeOperand(node.child(0))), m_constant(node.child(1).text) {}

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Vector& vector = m_operand->evaluate(frame, rows);
        dropNulls(rows, vector);
        const bool asksForEquality = m_comparison == Comparison::Equal || m_comparison == Comparison::NotEqual;
        if (asksForEquality && !mayHaveSize(vector, rows, frame.rows(), m_constant.size())) {
            if (wanted == (m_comparison == Comparison::Equal))
                rows.clear();
            return;
        }
        const KeyedText constant = m_constant;
        const char* const readable = vector.readable;
        withOperator(m_comparison, wanted, [&](auto compare) {
            withTexts(vector, [&](auto texts) {
                rows.keepIf([compare, texts, constant, readable](std::uint32_t row) {
                    const std::string_view text = texts[row];
                    const std::uint64_t key = textKey(text, readable);
                    if constexpr (kAsksForEquality<decltype(compare)>)
                        return compare(constant.equals(text, key), true);
                    else
                        return compare(constant.order(text, key), 0);
                });
            });
        });
    }

  private:
    Comparison m_comparison;
    OperandPtr m_operand;
    KeyedText m_constant;
};

/// The orders of a text and a constant for which the comparison is true: bit 0 for before, bit 1 for equal, bit 2 for
/// after.
std::uint32_t ordersOf(Comparison comparison) {
    switch (comparison) {
    case Comparison::Less:
        return 0b001;
    case Comparison::LessOrEqual:
        return 0b011;
    case Comparison::Equal:
        return 0b010;
    case Comparison::NotEqual:
        return 0b101;
    case Comparison::GreaterOrEqual:
        return 0b110;
    case Comparison::Greater:
        return 0b100;
    }
    return 0;
}

/// Compares a text with two constants: both comparisons, or one of them, must be true.
class TextRange : public Predicate {
  public:
    TextRange(const Node& first, const Node& second, bool isAnd)
        : m_isAnd(isAnd), m_operand(makeOperand(first.child(0))), m_bounds{Bound(first), Bound(second)} {}

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Vector& vector = m_operand->evaluate(frame, rows);
        dropNulls(rows, vector);
        // "not (a and b)" is "not a or not b".
        std::array<Bound, 2> bounds = m_bounds;
        for (Bound& bound : bounds)
            bound.orders ^= wanted ? 0 : 0b111;
        withTexts(vector, [&](auto texts) {
            if (m_isAnd == wanted)
                narrowBy(rows, texts, vector.readable, bounds, std::bit_and<>());
            else
                narrowBy(rows, texts, vector.readable, bounds, std::bit_or<>());
        });
    }

  private:
    struct Bound {
        explicit Bound(const Node& comparison)
            : text(comparison.child(1).text), orders(ordersOf(comparison.comparison)) {}

        KeyedText text;
        std::uint32_t orders;
    };

    template <typename Texts, typename Join>
    static void narrowBy(RowSet& rows, Texts texts, const char* readable, const std::array<Bound, 2>& bounds,
                         Join join) {
        const std::uint64_t first = bounds[0].text.key();
        const std::uint64_t second = bounds[1].text.key();
        // Whether the condition is true in each of the three ranges between the two keys, by the number of keys below
        // the text's.
        const std::uint64_t low = std::min(first, second);
        const std::uint64_t high = std::max(first, second);
        std::array<bool, 3> holds{};
        for (std::size_t i = 0; i < holds.size(); ++i) {
            const auto isAbove = [&](std::uint64_t key) { return i == 2 || (i == 1 && key == low && low != high); };
            const auto holdsFor = [&](const Bound& bound) {
                return (bound.orders >> (isAbove(bound.text.key()) ? 2 : 0)) & 1U;
            };
            holds[i] = join(holdsFor(bounds[0]), holdsFor(bounds[1])) != 0;
        }
        rows.keepIf([=, &bounds](std::uint32_t row) {
            const std::string_view text = texts[row];
            const std::uint64_t key = textKey(text, readable);
            if (key == low || key == high) [[unlikely]] {
                const auto order = [&](const Bound& bound) {
                    const int found = bound.text.order(text, key);
                    return found < 0 ? 0 : found == 0 ? 1 : 2;
                };
                return (join(bounds[0].orders >> order(bounds[0]), bounds[1].orders >> order(bounds[1])) & 1U) != 0;
            }
            return holds[static_cast<std::size_t>(key > low) + static_cast<std::size_t>(key > high)];
        });
    }

    bool m_isAnd;
    OperandPtr m_operand;
    std::array<Bound, 2> m_bounds;
};

/// A text expression compared by order with a constant. Equality has cheaper tests, by length or by sets.
bool isTextOrder(const Node& node) {
    return node.kind == NodeKind::Compare && node.comparison != Comparison::Equal &&
           node.comparison != Comparison::NotEqual && !node.child(0).isConstant() && node.child(0).type == Type::Text &&
           isFixedText(node.child(1));
}

/// lower(x) or upper(x) compared for equality with a constant: the length decides most rows, and no text is made.
class FoldedEquality : public Predicate {
  public:
    explicit FoldedEquality(const Node& node)
        : m_isLower(isCallOf(node.child(0), "lower")),
          m_isEqual(node.comparison == Comparison::Equal),
          m_operand(makeOperand(node.child(0).child(0))),
          m_constant(node.child(1).text) {
        for (std::size_t i = 0; i < m_map.size(); ++i) {
            const char c = static_cast<char>(i);
            (m_isLower ? lowerAscii : upperAscii)(&c, 1, &m_map[i]);
        }
    }

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Vector& vector = m_operand->evaluate(frame, rows);
        dropNulls(rows, vector);
        const bool isWanted = wanted == m_isEqual;
        withTexts(vector, [&](auto texts) {
            if (vector.isAscii())
                rows.keepIf([&](std::uint32_t row) { return equalsAscii(texts[row]) == isWanted; });
            else
                rows.keepIf([&](std::uint32_t row) { return equals(texts[row]) == isWanted; });
        });
    }

  private:
    [[nodiscard]] bool equalsAscii(std::string_view text) const {
        if (text.size() != m_constant.size())
            return false;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (m_map[static_cast<unsigned char>(text[i])] != m_constant[i])
                return false;
        }
        return true;
    }
    [[nodiscard]] bool equals(std::string_view text) {
        // No character gets more than three times as long by a case mapping.
        if (text.size() > m_constant.size() * 3 || m_constant.size() > text.size() * 3)
            return false;
        if (tavix::isAscii(text))
            return equalsAscii(text);
        m_folded.clear();
        (m_isLower ? appendLower : appendUpper)(m_folded, text);
        return m_folded == m_constant;
    }

    bool m_isLower;
    bool m_isEqual;
    OperandPtr m_operand;
    std::string_view m_constant;
    std::array<char, 256> m_map{};
    std::string m_folded;
};

} // namespace

PredicatePtr makeComparison(const Node& node) {
    const Node& left = node.child(0);
    const Node& right = node.child(1);
    if (left.isConstant() || !right.isConstant() || right.constant.isNull())
        return std::make_unique<PairComparison>(node);
    if (left.type == Type::Text) {
        const bool isFolded = isCallOf(left, "lower") || isCallOf(left, "upper");
        const bool isEquality = node.comparison == Comparison::Equal || node.comparison == Comparison::NotEqual;
        if (isFolded && isEquality)
            return std::make_unique<FoldedEquality>(node);
        return std::make_unique<TextComparison>(node);
    }
    if (isNumber(left.type) || left.type == Type::Date)
        return std::make_unique<NumberComparison>(node);
    return std::make_unique<PairComparison>(node);
}

PredicatePtr makeRange(const Node& first, const Node& second, bool isAnd) {
    if (!isTextOrder(first) || !isTextOrder(second) || !isSame(first.child(0), second.child(0)))
        return nullptr;
    return std::make_unique<TextRange>(first, second, isAnd);
}

} // namespace tavix::expression
