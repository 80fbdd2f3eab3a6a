#include "blocks/Operand.h"

#include "blocks/RowCalls.h"
#include "expression/Conversion.h"
#include "expression/Interpreter.h"

#include <algorithm>

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
        // The rows before this one are not null, whatever an earlier block left in the list.
        if (!m_vector.nulls)
            std::ranges::fill(m_nulls, std::uint8_t{0});
        m_vector.nulls = m_nulls.data();
        m_nulls[row] = 1;
        if (m_vector.type == Type::Text)
            m_texts[row] = {}; // it may be read like any other
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

void Results::take(const RowSet& rows, const Vector& from) {
    if (from.isConstant || from.nulls || from.type != m_vector.type)
        rows.forEach([&](std::uint32_t row) { set(row, from.at(row)); });
    else
        takeValues(rows, from);
}

void Results::takeValues(const RowSet& rows, const Vector& from) {
    if (from.isConstant) {
        rows.forEach([&](std::uint32_t row) { set(row, from.constant); });
        return;
    }
    const auto copy = [&](auto* to, const auto* values) {
        rows.forEach([&](std::uint32_t row) { to[row] = values[row]; });
    };
    switch (from.type) {
    case Type::Text:
        withTexts(from, [&](auto texts) { rows.forEach([&](std::uint32_t row) { m_texts[row] = texts[row]; }); });
        break;
    case Type::Integer:
    case Type::Date:
        copy(m_integers.data(), from.integers);
        break;
    case Type::Real:
        copy(m_reals.data(), from.reals);
        break;
    case Type::Boolean:
        copy(m_booleans.data(), from.booleans);
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

/// A cell of a block as it is stored.
Value cellAt(const BlockColumn& column, std::uint32_t row) {
    if (!column.nulls.empty() && column.nulls[row] != 0)
        return {};
    if (!column.counts.empty())
        return Value::ofInteger(static_cast<std::int64_t>(column.counts[column.isUniform ? 0 : row]));
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
        if (isCount && column.isUniform) {
            m_same.assign(frame.rows(), static_cast<std::int64_t>(column.counts.front()));
            m_vector.integers = m_same.data();
        } else if (isCount) {
            m_vector.integers = reinterpret_cast<const std::int64_t*>(column.counts.data());
        } else {
            m_vector.bytes = column.bytes.data();
            m_vector.ends = column.ends.data();
            m_vector.readable = column.bytes.data() + column.bytes.size();
            m_vector.ascii = AsciiAnswer(frame, m_node.field);
        }
        return m_vector;
    }

  private:
    /// Reads a column whose values are not of the field's type.
    const Vector& read(Frame& frame, const RowSet& rows, const BlockColumn& column) {
        return m_results.makeEach(m_node.type, frame, rows, [&](std::uint32_t row) {
            return readCell(cellAt(column, row), m_node.type, m_node.text, frame.scratch());
        });
    }

    const Node& m_node;
    Vector m_vector;
    std::vector<std::int64_t> m_same;
    Results m_results;
};

class ConvertOperand : public Operand {
  public:
    explicit ConvertOperand(const Node& node) : m_type(node.type), m_source(makeOperand(node.child(0))) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_source->evaluate(frame, rows);
        if (source.integers && source.type == Type::Integer && m_type == Type::Real) {
            m_results.begin(m_type, frame.rows());
            double* const out = m_results.reals();
            rows.forEach([&](std::uint32_t row) { out[row] = static_cast<double>(source.integers[row]); });
            m_results.takeNulls(source);
            return m_results.vector();
        }
        return m_results.makeEach(m_type, frame, rows,
                                  [&](std::uint32_t row) { return convert(source.at(row), m_type, frame.scratch()); });
    }

  private:
    Type m_type;
    OperandPtr m_source;
    Results m_results;
};

/// Calls any function: evaluates its arguments for all rows, then the function row by row.
class CallOperand : public Operand {
  public:
    explicit CallOperand(const Node& node) : m_call(node) {
        for (const NodePtr& child : node.children)
            m_arguments.push_back(makeOperand(*child));
    }

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        m_columns.clear();
        for (const OperandPtr& argument : m_arguments)
            m_columns.push_back(&argument->evaluate(frame, rows));
        return m_call.evaluate(frame, rows, m_columns);
    }

  private:
    RowCalls m_call;
    std::vector<OperandPtr> m_arguments;
    std::vector<const Vector*> m_columns;
};

class NegateOperand : public Operand {
  public:
    explicit NegateOperand(const Node& node) : m_type(node.type), m_source(makeOperand(node.child(0))) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_source->evaluate(frame, rows);
        return m_results.makeEach(m_type, frame, rows, [&](std::uint32_t row) {
            const Value value = source.at(row);
            return value.isNull() ? value : negate(value, frame.scratch());
        });
    }

  private:
    Type m_type;
    OperandPtr m_source;
    Results m_results;
};

/// A node without an operator of its own, such as a pattern that is matched with a constant whose evaluation fails.
class InterpretedOperand : public Operand {
  public:
    explicit InterpretedOperand(const Node& node) : m_node(node) { collectFields(node); }

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        Interpreter interpreter(frame.scratch());
        m_row.resize(frame.block().columns.size());
        return m_results.makeEach(m_node.type, frame, rows, [&](std::uint32_t row) {
            for (const std::size_t field : m_fields)
                m_row[field] = cellAt(frame.block().columns[field], row);
            return interpreter.evaluate(m_node, m_row);
        });
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
        for (const auto make : {makeTextOperand, makeMeasuredCut, makeTextPart, makeBuiltText, makeNumberFunction,
                                makeDateFunction, makeChoosing}) {
            if (OperandPtr special = make(node))
                return special;
        }
        return std::make_unique<CallOperand>(node);
    case NodeKind::Arithmetic:
        return makeArithmetic(node);
    case NodeKind::Negate:
        return std::make_unique<NegateOperand>(node);
    default:
        if (OperandPtr choosing = makeChoosing(node))
            return choosing;
        return std::make_unique<InterpretedOperand>(node);
    }
}

} // namespace tavix::expression
