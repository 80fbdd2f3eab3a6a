#include "expression/Operand.h"

#include "base/NumberText.h"
#include "expression/Conversion.h"
#include "expression/Interpreter.h"

#include <algorithm>
#include <limits>

namespace tavix::expression {

void Results::begin(Type type, std::size_t rows) {
    m_vector = Vector{};
    m_vector.type = type;
    const auto reserve = [rows](auto& list) {
        if (list.size() < rows)
            list.resize(rows);
        return list.data();
    };
    switch (type) {
    case Type::Text:
        m_vector.texts = reserve(m_texts);
        break;
    case Type::Integer:
    case Type::Date:
        m_vector.integers = reserve(m_integers);
        break;
    case Type::Real:
        m_vector.reals = reserve(m_reals);
        break;
    case Type::Boolean:
        m_vector.booleans = reserve(m_booleans);
        break;
    case Type::Null:
        break;
    }
    reserve(m_nulls);
}

void Results::set(std::uint32_t row, const Value& value) {
    if (value.isNull()) {
        // The rows before this one were not null, whatever stands in the list from the block before.
        if (!m_vector.nulls)
            std::ranges::fill(m_nulls, std::uint8_t{0});
        m_vector.nulls = m_nulls.data();
        m_nulls[row] = 1;
        if (m_vector.type == Type::Text)
            m_texts[row] = {}; // may be read as any other
        return;
    }
    switch (m_vector.type) {
    case Type::Text:
        m_texts[row] = value.text;
        break;
    case Type::Integer:
    case Type::Date:
        m_integers[row] = value.integer;
        break;
    case Type::Real:
        m_reals[row] = value.real;
        break;
    case Type::Boolean:
        m_booleans[row] = value.boolean ? 1 : 0;
        break;
    case Type::Null:
        break;
    }
}

namespace {

class ConstantOperand : public Operand {
  public:
    explicit ConstantOperand(const Node& node) {
        m_vector.type = node.type;
        m_vector.isConstant = true;
        m_vector.constant = node.constant;
    }
    const Vector& evaluate(Frame& /*frame*/, const RowSet& /*rows*/) override { return m_vector; }

  private:
    Vector m_vector;
};

/// A cell of a block as it lies there.
Value cellAt(const BlockColumn& column, std::uint32_t row) {
    if (!column.nulls.empty() && column.nulls[row] != 0)
        return {};
    if (!column.counts.empty())
        return Value::ofInteger(static_cast<std::int64_t>(column.counts[row]));
    return Value::ofText(AdjacentTexts{column.bytes.data(), column.ends.data()}[row]);
}

class FieldOperand : public Operand {
  public:
    explicit FieldOperand(const Node& node) : m_node(node) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const BlockColumn& column = frame.block().columns[m_node.field];
        const bool isCount = !column.counts.empty();
        if (m_node.type != (isCount ? Type::Integer : Type::Text))
            return read(frame, rows, column);
        m_vector = Vector{};
        m_vector.type = m_node.type;
        m_vector.nulls = column.nulls.empty() ? nullptr : column.nulls.data();
        if (isCount) {
            m_vector.integers = reinterpret_cast<const std::int64_t*>(column.counts.data());
        } else {
            m_vector.bytes = column.bytes.data();
            m_vector.ends = column.ends.data();
            m_vector.isAscii = frame.isAscii(m_node.field);
        }
        return m_vector;
    }

  private:
    /// The column holds its values in another form than the field's type.
    const Vector& read(Frame& frame, const RowSet& rows, const BlockColumn& column) {
        m_results.begin(m_node.type, frame.rows());
        rows.forEach([&](std::uint32_t row) {
            m_results.set(row, readCell(cellAt(column, row), m_node.type, m_node.text, frame.scratch()));
            frame.collectFailure(row);
        });
        return m_results.vector();
    }

    const Node& m_node;
    Vector m_vector;
    Results m_results;
};

class ConvertOperand : public Operand {
  public:
    explicit ConvertOperand(const Node& node) : m_type(node.type), m_source(makeOperand(node.child(0))) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_source->evaluate(frame, rows);
        m_results.begin(m_type, frame.rows());
        if (source.integers && source.type == Type::Integer && m_type == Type::Real) {
            double* const out = m_results.reals();
            rows.forEach([&](std::uint32_t row) { out[row] = static_cast<double>(source.integers[row]); });
            m_results.takeNulls(source);
            return m_results.vector();
        }
        rows.forEach([&](std::uint32_t row) {
            m_results.set(row, convert(source.at(row), m_type, frame.scratch()));
            frame.collectFailure(row);
        });
        return m_results.vector();
    }

  private:
    Type m_type;
    OperandPtr m_source;
    Results m_results;
};

/// A call of any function: its arguments a column each, the function row by row.
class CallOperand : public Operand {
  public:
    explicit CallOperand(const Node& node) : m_node(node), m_values(node.children.size()) {
        for (const NodePtr& child : node.children)
            m_arguments.push_back(makeOperand(*child));
    }

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        m_columns.clear();
        for (const OperandPtr& argument : m_arguments)
            m_columns.push_back(&argument->evaluate(frame, rows));
        m_results.begin(m_node.type, frame.rows());
        const Implementation call = m_node.function->implementation;
        rows.forEach([&](std::uint32_t row) {
            bool isNull = false;
            for (std::size_t i = 0; i < m_columns.size(); ++i) {
                m_values[i] = m_columns[i]->at(row);
                isNull = isNull || m_values[i].isNull();
            }
            m_results.set(row, isNull ? Value{} : call(m_values, frame.scratch()));
            frame.collectFailure(row);
        });
        return m_results.vector();
    }

  private:
    const Node& m_node;
    std::vector<OperandPtr> m_arguments;
    std::vector<const Vector*> m_columns;
    std::vector<Value> m_values;
    Results m_results;
};

class ArithmeticOperand : public Operand {
  public:
    explicit ArithmeticOperand(const Node& node)
        : m_node(node), m_left(makeOperand(node.child(0))), m_right(makeOperand(node.child(1))) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& left = m_left->evaluate(frame, rows);
        const Vector& right = m_right->evaluate(frame, rows);
        m_results.begin(m_node.type, frame.rows());
        if (m_node.type == Type::Integer && left.integers && isCalculated(rows, left, right))
            return m_results.vector();
        rows.forEach([&](std::uint32_t row) {
            const Value a = left.at(row);
            const Value b = right.at(row);
            const bool isNull = a.isNull() || b.isNull();
            m_results.set(row, isNull ? Value{} : calculate(m_node.arithmetic, a, b, frame.scratch()));
            frame.collectFailure(row);
        });
        return m_results.vector();
    }

  private:
    /// An integer and a constant, as in `Count` % 2, while nothing overflows and nothing is divided by 0.
    bool isCalculated(const RowSet& rows, const Vector& left, const Vector& right) {
        if (!right.isConstant || right.constant.isNull() || left.nulls)
            return false;
        const std::int64_t* const in = left.integers;
        const std::int64_t constant = right.constant.integer;
        std::int64_t* const out = m_results.integers();
        bool isTooLarge = false;
        switch (m_node.arithmetic) {
        case Arithmetic::Add:
            rows.forEach(
                [&](std::uint32_t row) { isTooLarge |= __builtin_add_overflow(in[row], constant, &out[row]); });
            break;
        case Arithmetic::Subtract:
            rows.forEach(
                [&](std::uint32_t row) { isTooLarge |= __builtin_sub_overflow(in[row], constant, &out[row]); });
            break;
        case Arithmetic::Multiply:
            rows.forEach(
                [&](std::uint32_t row) { isTooLarge |= __builtin_mul_overflow(in[row], constant, &out[row]); });
            break;
        default:
            if (constant <= 0)
                return false;
            divide(rows, in, constant);
            break;
        }
        return !isTooLarge;
    }
    void divide(const RowSet& rows, const std::int64_t* in, std::int64_t constant) {
        std::int64_t* const out = m_results.integers();
        // Small numbers, which counts mostly are, divide several times as fast in 32 bits.
        const bool isSmall = constant <= std::numeric_limits<std::int32_t>::max();
        rows.forEach([&](std::uint32_t row) {
            const std::int64_t value = in[row];
            if (isSmall && value >= 0 && value <= std::numeric_limits<std::int32_t>::max())
                out[row] = static_cast<std::int32_t>(value) % static_cast<std::int32_t>(constant);
            else
                out[row] = value % constant;
        });
    }

    const Node& m_node;
    OperandPtr m_left;
    OperandPtr m_right;
    Results m_results;
};

class NegateOperand : public Operand {
  public:
    explicit NegateOperand(const Node& node) : m_type(node.type), m_source(makeOperand(node.child(0))) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_source->evaluate(frame, rows);
        m_results.begin(m_type, frame.rows());
        rows.forEach([&](std::uint32_t row) {
            const Value value = source.at(row);
            m_results.set(row, value.isNull() ? value : negate(value, frame.scratch()));
            frame.collectFailure(row);
        });
        return m_results.vector();
    }

  private:
    Type m_type;
    OperandPtr m_source;
    Results m_results;
};

/// Each further argument only for the rows that are still null.
class FirstNonNullOperand : public Operand {
  public:
    explicit FirstNonNullOperand(const Node& node) : m_type(node.type) {
        for (const NodePtr& child : node.children)
            m_arguments.push_back(makeOperand(*child));
    }

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        m_results.begin(m_type, frame.rows());
        Frame::Loan rest(frame);
        rest.rows().assign(rows);
        for (const OperandPtr& argument : m_arguments) {
            const Vector& column = argument->evaluate(frame, rest.rows());
            rest.rows().forEach([&](std::uint32_t row) {
                if (!column.isNull(row))
                    m_results.set(row, column.at(row));
            });
            rest.rows().keepIf([&](std::uint32_t row) { return column.isNull(row); });
        }
        rest.rows().forEach([&](std::uint32_t row) { m_results.set(row, Value{}); });
        return m_results.vector();
    }

  private:
    Type m_type;
    std::vector<OperandPtr> m_arguments;
    Results m_results;
};

/// A condition whose value is an argument, as in isnull(a and b): the one place where rows are walked by the tree.
class ConditionOperand : public Operand {
  public:
    explicit ConditionOperand(const Node& node) : m_node(node) { collectFields(node); }

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        Interpreter interpreter(frame.scratch());
        m_row.resize(frame.block().columns.size());
        m_results.begin(m_node.type, frame.rows());
        rows.forEach([&](std::uint32_t row) {
            for (const std::size_t field : m_fields)
                m_row[field] = cellAt(frame.block().columns[field], row);
            m_results.set(row, interpreter.evaluate(m_node, m_row));
            frame.collectFailure(row);
        });
        return m_results.vector();
    }

  private:
    void collectFields(const Node& node) {
        if (node.kind == NodeKind::Field)
            m_fields.push_back(node.field);
        for (const NodePtr& child : node.children)
            collectFields(*child);
    }

    const Node& m_node;
    std::vector<std::size_t> m_fields;
    std::vector<Value> m_row;
    Results m_results;
};

} // namespace

OperandPtr makeOperand(const Node& node) {
    switch (node.kind) {
    case NodeKind::Constant:
        return std::make_unique<ConstantOperand>(node);
    case NodeKind::Field:
        return std::make_unique<FieldOperand>(node);
    case NodeKind::Convert:
        return std::make_unique<ConvertOperand>(node);
    case NodeKind::Call:
        if (OperandPtr special = makeTextOperand(node))
            return special;
        return std::make_unique<CallOperand>(node);
    case NodeKind::Arithmetic:
        return std::make_unique<ArithmeticOperand>(node);
    case NodeKind::Negate:
        return std::make_unique<NegateOperand>(node);
    case NodeKind::FirstNonNull:
        return std::make_unique<FirstNonNullOperand>(node);
    default:
        return std::make_unique<ConditionOperand>(node);
    }
}

} // namespace tavix::expression
