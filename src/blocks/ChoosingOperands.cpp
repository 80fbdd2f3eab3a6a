#include "blocks/Operand.h"
#include "blocks/Predicate.h"
#include "blocks/TextKey.h"

#include <vector>

namespace tavix::expression {

namespace {

/// Evaluates each further argument only for the rows that are still null.
class FirstNonNullOperand : public Operand {
  public:
    explicit FirstNonNullOperand(const Node& node) : m_type(node.type) {
        for (const NodePtr& child : node.children)
            m_arguments.push_back(makeOperand(*child));
    }

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& first = m_arguments.front()->evaluate(frame, rows);
        if (!first.isConstant && !first.nulls && first.type == m_type)
            return first;
        m_results.begin(m_type, frame.rows());
        Frame::Loan rest(frame);
        Frame::Loan found(frame);
        rest.rows().assign(rows);
        bool isAscii = true;
        for (std::size_t i = 0; i < m_arguments.size() && !rest.rows().isEmpty(); ++i) {
            const Vector& column = i == 0 ? first : m_arguments[i]->evaluate(frame, rest.rows());
            found.rows().assign(rest.rows());
            dropNulls(found.rows(), column);
            m_results.takeValues(found.rows(), column);
            isAscii = isAscii && column.isAscii();
            rest.rows().keepIf([&](std::uint32_t row) { return column.isNull(row); });
        }
        rest.rows().forEach([&](std::uint32_t row) { m_results.set(row, Value{}); });
        m_results.vector().ascii = AsciiAnswer(isAscii);
        return m_results.vector();
    }

  private:
    Type m_type;
    std::vector<OperandPtr> m_arguments;
    Results m_results;
};

/// The value after the first condition that is true. Computes each value only for its rows.
class ChoiceOperand : public Operand {
  public:
    explicit ChoiceOperand(const Node& node) : m_type(node.type) {
        for (std::size_t i = 0; i + 1 < node.children.size(); i += 2) {
            m_conditions.push_back(makePredicate(node.child(i)));
            m_values.push_back(makeOperand(node.child(i + 1)));
        }
        m_values.push_back(makeOperand(*node.children.back()));
    }

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        m_results.begin(m_type, frame.rows());
        Frame::Loan rest(frame);
        Frame::Loan part(frame);
        rest.rows().assign(rows);
        for (std::size_t i = 0; i < m_conditions.size() && !rest.rows().isEmpty(); ++i) {
            part.rows().assign(rest.rows());
            m_conditions[i]->narrow(frame, part.rows(), true);
            m_isTaken.assign(frame.rows(), 0);
            part.rows().forEach([&](std::uint32_t row) { m_isTaken[row] = 1; });
            rest.rows().keepIf([&](std::uint32_t row) { return m_isTaken[row] == 0; });
            takeValues(i, frame, part.rows());
        }
        takeValues(m_conditions.size(), frame, rest.rows());
        return m_results.vector();
    }

  private:
    void takeValues(std::size_t value, Frame& frame, const RowSet& rows) {
        if (!rows.isEmpty())
            m_results.take(rows, m_values[value]->evaluate(frame, rows));
    }

    Type m_type;
    std::vector<PredicatePtr> m_conditions;
    std::vector<OperandPtr> m_values; ///< for each condition, and for the rows where none is true
    std::vector<std::uint8_t> m_isTaken;
    Results m_results;
};

/// A condition as a value: true, false or null.
class ConditionOperand : public Operand {
  public:
    explicit ConditionOperand(const Node& node) : m_predicate(makePredicate(node)) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        m_results.begin(Type::Boolean, frame.rows());
        Frame::Loan decided(frame);
        m_isDecided.assign(frame.rows(), 0);
        for (const bool answer : {true, false}) {
            decided.rows().assign(rows);
            decided.rows().keepIf([&](std::uint32_t row) { return m_isDecided[row] == 0; });
            m_predicate->narrow(frame, decided.rows(), answer);
            decided.rows().forEach([&](std::uint32_t row) {
                m_isDecided[row] = 1;
                m_results.set(row, Value::ofBoolean(answer));
            });
        }
        rows.forEach([&](std::uint32_t row) {
            if (m_isDecided[row] == 0)
                m_results.set(row, Value{});
        });
        return m_results.vector();
    }

  private:
    PredicatePtr m_predicate;
    std::vector<std::uint8_t> m_isDecided;
    Results m_results;
};

/// nullif() of a text and a constant: the same texts with more nulls.
class NullIfOperand : public Operand {
  public:
    NullIfOperand(const Node& text, std::string_view member) : m_source(makeOperand(text)), m_member(member) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_source->evaluate(frame, rows);
        if (!mayHaveSize(source, rows, frame.rows(), m_member.size()))
            return source;
        m_nulls.resize(frame.rows());
        std::uint8_t found = 0;
        withTexts(source, [&](auto texts) {
            rows.forEach([&](std::uint32_t row) {
                const std::string_view text = texts[row];
                // Texts that mean null are short and rare, so the size rules out most texts.
                const bool isMember =
                    text.size() == m_member.size() && m_member.equals(text, textKey(text, source.readable));
                m_nulls[row] = isMember ? 1 : 0;
                found |= m_nulls[row];
            });
        });
        if (found == 0)
            return source;
        m_vector = source;
        if (m_vector.nulls)
            rows.forEach([&](std::uint32_t row) { m_nulls[row] |= m_vector.nulls[row]; });
        m_vector.nulls = m_nulls.data();
        return m_vector;
    }

  private:
    OperandPtr m_source;
    KeyedText m_member;
    std::vector<std::uint8_t> m_nulls;
    Vector m_vector;
};

} // namespace

OperandPtr makeChoosing(const Node& node) {
    switch (node.kind) {
    case NodeKind::FirstNonNull:
        return std::make_unique<FirstNonNullOperand>(node);
    case NodeKind::If:
        return std::make_unique<ChoiceOperand>(node);
    case NodeKind::Not:
    case NodeKind::And:
    case NodeKind::Or:
    case NodeKind::Compare:
    case NodeKind::CompareCell:
    case NodeKind::InList:
    case NodeKind::IsNull:
        return std::make_unique<ConditionOperand>(node);
    case NodeKind::Matches:
        return node.child(0).isConstant() ? nullptr : std::make_unique<ConditionOperand>(node);
    case NodeKind::Call:
        if (isCallOf(node, "nullif") && node.child(0).type == Type::Text && !node.child(0).isConstant() &&
            isFixedText(node.child(1)))
            return std::make_unique<NullIfOperand>(node.child(0), node.child(1).text);
        return nullptr;
    default:
        return nullptr;
    }
}

} // namespace tavix::expression
