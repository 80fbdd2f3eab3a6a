#include "base/Ascii.h"
#include "base/DateTicks.h"
#include "blocks/Operand.h"
#include "blocks/Predicate.h"
#include "expression/ByteSearch.h"
#include "expression/CheckDigits.h"
#include "expression/NumberReader.h"
#include "expression/TextOperators.h"
#include "forms/Reading.h"

#include <algorithm>
#include <string>
#include <vector>

namespace tavix::expression {

namespace {

/// Tests each text separately.
template <typename Test>
class EachText : public Predicate {
  public:
    EachText(const Node& text, Test test) : m_operand(makeOperand(text)), m_test(std::move(test)) {}

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Vector& vector = m_operand->evaluate(frame, rows);
        dropNulls(rows, vector);
        withTexts(vector,
                  [&](auto texts) { rows.keepIf([&](std::uint32_t row) { return m_test(texts[row]) == wanted; }); });
    }

  private:
    OperandPtr m_operand;
    Test m_test;
};

template <typename Test>
PredicatePtr makeEach(const Node& text, Test test) {
    return std::make_unique<EachText<Test>>(text, std::move(test));
}

/// Whether a constant occurs in a text. A block of longer texts is searched at once, and the hits are assigned to rows.
class ContainsPredicate : public Predicate {
  public:
    ContainsPredicate(const Node& text, std::string_view part) : m_operand(makeOperand(text)), m_search(part) {}

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Vector& vector = m_operand->evaluate(frame, rows);
        dropNulls(rows, vector);
        if (vector.ends && frame.rows() > 0) {
            narrowAdjacent(vector, frame.rows(), rows, wanted);
            return;
        }
        withTexts(vector, [&](auto texts) {
            rows.keepIf(
                [&](std::uint32_t row) { return (m_search.find(texts[row]) != ByteSearch::kNotFound) == wanted; });
        });
    }

  private:
    void narrowAdjacent(const Vector& vector, std::size_t count, RowSet& rows, bool wanted) {
        constexpr std::size_t kLong = 48;
        const std::size_t size = vector.ends[count - 1];
        if (size > count * kLong && rows.isDense() && !m_search.needle().empty()) {
            searchBlock(vector, count);
            rows.keepIf([&](std::uint32_t row) { return (m_found[row] != 0) == wanted; });
            return;
        }
        const AdjacentTexts texts{vector.bytes, vector.ends};
        const auto search = m_search.inShortTexts(vector.bytes + size);
        rows.keepIf([texts, search, wanted](std::uint32_t row) { return search.occursIn(texts[row]) == wanted; });
    }
    void searchBlock(const Vector& vector, std::size_t rows) {
        m_found.assign(rows, 0);
        const std::uint32_t* const ends = vector.ends;
        const std::string_view bytes(vector.bytes, rows == 0 ? 0 : ends[rows - 1]);
        const std::size_t size = m_search.needle().size();
        std::size_t row = 0;
        std::size_t at = m_search.find(bytes);
        while (at != ByteSearch::kNotFound) {
            while (ends[row] <= at)
                ++row;
            const bool isWithin = at + size <= ends[row];
            m_found[row] |= isWithin ? 1 : 0;
            // a hit across two rows is not a hit in either
            at = m_search.find(bytes, isWithin ? ends[row] : at + 1);
        }
    }

    OperandPtr m_operand;
    ByteSearch m_search;
    std::vector<std::uint8_t> m_found;
};

class MatchPredicate : public Predicate {
  public:
    explicit MatchPredicate(const Node& node)
        : m_operand(makeOperand(node.child(0))),
          m_matcher(*node.matcher),
          m_required(m_matcher.requiredPart()),
          m_isWorthSearching(m_required.needle().size() > 1) {}

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Vector& vector = m_operand->evaluate(frame, rows);
        dropNulls(rows, vector);
        const bool isAscii = vector.isAscii();
        const auto matches = [&](std::uint32_t row, std::string_view text) {
            const bool isMatch = m_matcher.matches(text, isAscii, frame.scratch());
            frame.collectFailure(row);
            return isMatch;
        };
        if (m_isWorthSearching && vector.ends && frame.rows() > 0) {
            const AdjacentTexts texts{vector.bytes, vector.ends};
            const auto search = m_required.inShortTexts(vector.bytes + vector.ends[frame.rows() - 1]);
            rows.keepIf([&, search](std::uint32_t row) {
                const std::string_view text = texts[row];
                return (search.occursIn(text) && matches(row, text)) == wanted;
            });
            return;
        }
        withTexts(vector, [&](auto texts) {
            rows.keepIf([&](std::uint32_t row) { return matches(row, texts[row]) == wanted; });
        });
    }

  private:
    OperandPtr m_operand;
    const Matcher& m_matcher;
    ByteSearch m_required;
    bool m_isWorthSearching; ///< a single byte occurs in too many texts
};

/// fits(). Most values of a field of numbers are plain digits, which need no closer look.
class FitTest {
  public:
    explicit FitTest(const forms::Reading& reading)
        : m_reading(reading),
          m_fitsDigits((reading.type == FieldType::Integer || reading.type == FieldType::Real) && reading.fits("12")) {}

    bool operator()(std::string_view text) const { return (m_fitsDigits && isPlain(text)) || m_reading.fits(text); }

  private:
    static bool isPlain(std::string_view text) {
        constexpr std::size_t kMost = 15;
        return !text.empty() && text.size() <= kMost && (text.front() != '0' || text.size() == 1) &&
               std::ranges::all_of(text, isAsciiDigit);
    }

    forms::Reading m_reading;
    bool m_fitsDigits;
};

PredicatePtr makeUnaryTest(const Node& node) {
    const Node& text = node.child(0);
    if (isCallOf(node, "isnumber"))
        return makeEach(text, isNumberText);
    if (isCallOf(node, "isinteger"))
        return makeEach(text, [](std::string_view whole) { return numberOfText(whole).type == Type::Integer; });
    if (isCallOf(node, "isdate"))
        return makeEach(text, [](std::string_view whole) { return parseDate(whole).has_value(); });
    if (isCallOf(node, "isean"))
        return makeEach(text, check_digits::isEan);
    if (isCallOf(node, "isiban"))
        return makeEach(text, check_digits::isIban);
    if (isCallOf(node, "isluhn"))
        return makeEach(text, check_digits::isLuhn);
    if (isCallOf(node, "isblank"))
        return makeEach(text, isBlank);
    if (isCallOf(node, "has_control_chars"))
        return makeEach(text, hasControlCharacter);
    return nullptr;
}

} // namespace

PredicatePtr makeTextTest(const Node& node) {
    if (node.children.empty() || node.child(0).isConstant() || node.child(0).type != Type::Text)
        return nullptr;
    const Node& text = node.child(0);
    if (node.kind == NodeKind::Matches)
        return std::make_unique<MatchPredicate>(node);
    if (node.kind != NodeKind::Call)
        return nullptr;
    if (node.children.size() == 1)
        return makeUnaryTest(node);
    if (node.children.size() != 2 || !isFixedText(node.child(1)))
        return nullptr;
    const std::string_view part = node.child(1).text;
    if (isCallOf(node, "contains"))
        return std::make_unique<ContainsPredicate>(text, part);
    if (isCallOf(node, "starts_with"))
        return makeEach(text, [part](std::string_view whole) { return whole.starts_with(part); });
    if (isCallOf(node, "fits"))
        return makeEach(text, FitTest(*forms::Reading::parse(part)));
    if (isCallOf(node, "ends_with"))
        return makeEach(text, [part](std::string_view whole) { return whole.ends_with(part); });
    return nullptr;
}

} // namespace tavix::expression
