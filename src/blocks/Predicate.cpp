#include "blocks/Predicate.h"

#include "blocks/Operand.h"
#include "expression/Conversion.h"

#include <algorithm>
#include <vector>

namespace tavix::expression {

namespace {

class ConstantPredicate : public Predicate {
  public:
    explicit ConstantPredicate(const Value& value) : m_value(value) {}
    void narrow(Frame& /*frame*/, RowSet& rows, bool wanted) override {
        if (m_value.isNull() || m_value.boolean != wanted)
            rows.clear();
    }

  private:
    Value m_value;
};

class NotPredicate : public Predicate {
  public:
    explicit NotPredicate(const Node& node) : m_inner(makePredicate(node.child(0))) {}
    void narrow(Frame& frame, RowSet& rows, bool wanted) override { m_inner->narrow(frame, rows, !wanted); }

  private:
    PredicatePtr m_inner;
};

/// Collects the rows found by several predicates.
class Union {
  public:
    explicit Union(std::size_t rows) : m_marks(rows) {}
    void add(const RowSet& rows) {
        rows.forEach([this](std::uint32_t row) { m_marks[row] = 1; });
    }
    [[nodiscard]] bool holds(std::uint32_t row) const { return m_marks[row] != 0; }

  private:
    std::vector<std::uint8_t> m_marks;
};

/// "and" and "or". When all parts must agree, each narrows the rows further; when one suffices, each part is asked
/// about the rows that no part before it has found.
class Junction : public Predicate {
  public:
    explicit Junction(const Node& node) : m_isAnd(node.kind == NodeKind::And) {
        for (std::size_t i = 0; i < node.children.size(); ++i) {
            PredicatePtr pair;
            if (i + 1 < node.children.size())
                pair = makeRange(node.child(i), node.child(i + 1), m_isAnd);
            if (pair)
                ++i;
            m_parts.push_back(pair ? std::move(pair) : makePredicate(node.child(i)));
        }
    }

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        if (m_isAnd != wanted) {
            narrowToSome(frame, rows, wanted);
            return;
        }
        for (const PredicatePtr& part : m_parts) {
            if (rows.isEmpty())
                return;
            part->narrow(frame, rows, wanted);
        }
    }

  private:
    void narrowToSome(Frame& frame, RowSet& rows, bool wanted) {
        Union found(frame.rows());
        Frame::Loan rest(frame);
        Frame::Loan part(frame);
        rest.rows().assign(rows);
        for (const PredicatePtr& predicate : m_parts) {
            if (rest.rows().isEmpty())
                break;
            part.rows().assign(rest.rows());
            predicate->narrow(frame, part.rows(), wanted);
            found.add(part.rows());
            rest.rows().keepIf([&](std::uint32_t row) { return !found.holds(row); });
        }
        rows.keepIf([&](std::uint32_t row) { return found.holds(row); });
    }

    bool m_isAnd;
    std::vector<PredicatePtr> m_parts;
};

class Choice : public Predicate {
  public:
    explicit Choice(const Node& node) {
        for (const NodePtr& child : node.children)
            m_parts.push_back(makePredicate(*child));
    }

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        Union found(frame.rows());
        Frame::Loan rest(frame);
        Frame::Loan part(frame);
        rest.rows().assign(rows);
        const std::size_t last = m_parts.size() - 1;
        for (std::size_t i = 0; i < last && !rest.rows().isEmpty(); i += 2) {
            part.rows().assign(rest.rows());
            m_parts[i]->narrow(frame, part.rows(), true);
            Union taken(frame.rows());
            taken.add(part.rows());
            rest.rows().keepIf([&](std::uint32_t row) { return !taken.holds(row); });
            m_parts[i + 1]->narrow(frame, part.rows(), wanted);
            found.add(part.rows());
        }
        m_parts[last]->narrow(frame, rest.rows(), wanted);
        found.add(rest.rows());
        rows.keepIf([&](std::uint32_t row) { return found.holds(row); });
    }

  private:
    std::vector<PredicatePtr> m_parts;
};

class NullPredicate : public Predicate {
  public:
    explicit NullPredicate(const Node& node) : m_operand(makeOperand(node.child(0))) {}
    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Vector& vector = m_operand->evaluate(frame, rows);
        if (!vector.isConstant && !vector.nulls) {
            if (wanted)
                rows.clear();
            return;
        }
        rows.keepIf([&](std::uint32_t row) { return vector.isNull(row) == wanted; });
    }

  private:
    OperandPtr m_operand;
};

/// Any operand of type Boolean.
class TruthPredicate : public Predicate {
  public:
    explicit TruthPredicate(const Node& node) : m_operand(makeOperand(node)) {}
    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Vector& vector = m_operand->evaluate(frame, rows);
        dropNulls(rows, vector);
        rows.keepIf([&](std::uint32_t row) { return vector.at(row).boolean == wanted; });
    }

  private:
    OperandPtr m_operand;
};

/// A condition on numbers only. When a block has the same number in all rows, as most blocks of counts do, it evaluates
/// a single row.
class UniformPredicate : public Predicate {
  public:
    UniformPredicate(PredicatePtr inner, std::vector<std::size_t> fields)
        : m_inner(std::move(inner)), m_fields(std::move(fields)) {}

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const auto isUniform = [&](std::size_t field) {
            const BlockColumn& column = frame.block().columns[field];
            return column.isUniform && column.nulls.empty();
        };
        if (rows.isEmpty() || !std::ranges::all_of(m_fields, isUniform))
            return m_inner->narrow(frame, rows, wanted);
        const std::uint32_t first = rows.first();
        Frame::Loan one(frame);
        one.rows().assign(rows);
        one.rows().keepFirst();
        m_inner->narrow(frame, one.rows(), wanted);
        if (frame.hasFailures() && frame.isFailed(first))
            m_inner->narrow(frame, rows, wanted); // report each row as failed
        else if (one.rows().isEmpty())
            rows.clear();
    }

  private:
    PredicatePtr m_inner;
    std::vector<std::size_t> m_fields;
};

/// Collects the fields; false when one of them is not an integer.
bool collectNumberFields(const Node& node, std::vector<std::size_t>& fields) {
    if (node.kind == NodeKind::Field) {
        if (node.type != Type::Integer)
            return false;
        fields.push_back(node.field);
    }
    return std::ranges::all_of(node.children,
                               [&](const NodePtr& child) { return collectNumberFields(*child, fields); });
}

PredicatePtr makePlainPredicate(const Node& node) {
    switch (node.kind) {
    case NodeKind::Constant:
        return std::make_unique<ConstantPredicate>(node.constant);
    case NodeKind::Not:
        return std::make_unique<NotPredicate>(node);
    case NodeKind::And:
    case NodeKind::Or:
        return std::make_unique<Junction>(node);
    case NodeKind::If:
        return std::make_unique<Choice>(node);
    case NodeKind::IsNull:
        return std::make_unique<NullPredicate>(node);
    case NodeKind::Compare:
        return makeComparison(node);
    case NodeKind::CompareCell:
        return makeCellComparison(node);
    default:
        break;
    }
    if (node.kind == NodeKind::InList)
        return makeListTest(node);
    if (PredicatePtr test = makeTextTest(node))
        return test;
    return std::make_unique<TruthPredicate>(node);
}

} // namespace

PredicatePtr makePredicate(const Node& node) {
    PredicatePtr plain = makePlainPredicate(node);
    const bool isTest = node.kind == NodeKind::Compare || node.kind == NodeKind::InList ||
                        node.kind == NodeKind::Call || node.kind == NodeKind::Matches;
    std::vector<std::size_t> fields;
    if (!isTest || !collectNumberFields(node, fields) || fields.empty())
        return plain;
    return std::make_unique<UniformPredicate>(std::move(plain), std::move(fields));
}

} // namespace tavix::expression
