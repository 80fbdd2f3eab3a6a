#include "blocks/JoinedNulls.h"
#include "blocks/Operand.h"
#include "expression/Conversion.h"
#include "expression/NumberFunctions.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

namespace tavix::expression {

namespace {

/// Calls `use` with a function from row to number. The vector must not be a null constant.
template <typename Number, typename Use>
void withNumbers(const Vector& vector, const Number* values, Number constant, Use use) {
    if (vector.isConstant)
        use([constant](std::uint32_t) { return constant; });
    else
        use([values](std::uint32_t row) { return values[row]; });
}

class ArithmeticOperand : public Operand {
  public:
    explicit ArithmeticOperand(const Node& node)
        : m_node(node), m_left(makeOperand(node.child(0))), m_right(makeOperand(node.child(1))) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& left = m_left->evaluate(frame, rows);
        const Vector& right = m_right->evaluate(frame, rows);
        if (isPlain(left, right)) {
            m_results.begin(m_node.type, frame.rows());
            const bool isDone =
                m_node.type == Type::Real ? calculateReals(rows, left, right) : calculateIntegers(rows, left, right);
            if (isDone) {
                m_results.takeNulls(left.nulls ? left : right);
                return m_results.vector();
            }
        }
        return m_results.makeEach(m_node.type, frame, rows, [&](std::uint32_t row) {
            const Value a = left.at(row);
            const Value b = right.at(row);
            const bool isNull = a.isNull() || b.isNull();
            return isNull ? Value{} : calculate(m_node.arithmetic, a, b, frame.scratch());
        });
    }

  private:
    /// Whether the result has the nulls of one of the two.
    [[nodiscard]] static bool isPlain(const Vector& left, const Vector& right) {
        const auto isNull = [](const Vector& vector) { return vector.isConstant && vector.constant.isNull(); };
        return !isNull(left) && !isNull(right) && !(left.nulls && right.nulls);
    }

    /// False on NaN or infinity; the caller then evaluates row by row, which turns those into null.
    bool calculateReals(const RowSet& rows, const Vector& left, const Vector& right) {
        switch (m_node.arithmetic) {
        case Arithmetic::Add:
            return storeReals(rows, left, right, [](double a, double b) { return a + b; });
        case Arithmetic::Subtract:
            return storeReals(rows, left, right, [](double a, double b) { return a - b; });
        case Arithmetic::Multiply:
            return storeReals(rows, left, right, [](double a, double b) { return a * b; });
        case Arithmetic::Divide:
            return storeReals(rows, left, right, [](double a, double b) { return a / b; });
        case Arithmetic::Remainder:
            return storeReals(rows, left, right, [](double a, double b) { return std::fmod(a, b); });
        }
        return false;
    }
    template <typename Operation>
    bool storeReals(const RowSet& rows, const Vector& left, const Vector& right, Operation operation) {
        double* const out = m_results.reals();
        bool isFinite = true;
        withNumbers(left, left.reals, left.constant.real, [&](auto a) {
            withNumbers(right, right.reals, right.constant.real, [&](auto b) {
                rows.forEach([&](std::uint32_t row) {
                    out[row] = operation(a(row), b(row));
                    isFinite &= std::fabs(out[row]) <= std::numeric_limits<double>::max();
                });
            });
        });
        return isFinite;
    }

    /// False on an overflow or a zero divisor; the caller then evaluates row by row, which distinguishes them.
    bool calculateIntegers(const RowSet& rows, const Vector& left, const Vector& right) {
        switch (m_node.arithmetic) {
        case Arithmetic::Add:
            return storeIntegers(rows, left, right, [](std::int64_t a, std::int64_t b, std::int64_t& out) {
                return __builtin_add_overflow(a, b, &out);
            });
        case Arithmetic::Subtract:
            return storeIntegers(rows, left, right, [](std::int64_t a, std::int64_t b, std::int64_t& out) {
                return __builtin_sub_overflow(a, b, &out);
            });
        case Arithmetic::Multiply:
            return storeIntegers(rows, left, right, [](std::int64_t a, std::int64_t b, std::int64_t& out) {
                return __builtin_mul_overflow(a, b, &out);
            });
        default:
            return right.isConstant && right.constant.integer > 0 && !left.isConstant &&
                   divide(rows, left.integers, right.constant.integer);
        }
    }
    template <typename Operation>
    bool storeIntegers(const RowSet& rows, const Vector& left, const Vector& right, Operation operation) {
        std::int64_t* const out = m_results.integers();
        bool isTooLarge = false;
        withNumbers(left, left.integers, left.constant.integer, [&](auto a) {
            withNumbers(right, right.integers, right.constant.integer, [&](auto b) {
                rows.forEach([&](std::uint32_t row) { isTooLarge |= operation(a(row), b(row), out[row]); });
            });
        });
        return !isTooLarge;
    }
    bool divide(const RowSet& rows, const std::int64_t* in, std::int64_t constant) {
        std::int64_t* const out = m_results.integers();
        // Small numbers, as most counts are, divide several times as fast in 32 bits.
        const bool isSmall = constant <= std::numeric_limits<std::int32_t>::max();
        rows.forEach([&](std::uint32_t row) {
            const std::int64_t value = in[row];
            if (isSmall && value >= 0 && value <= std::numeric_limits<std::int32_t>::max())
                out[row] = static_cast<std::int32_t>(value) % static_cast<std::int32_t>(constant);
            else
                out[row] = value % constant;
        });
        return true;
    }

    const Node& m_node;
    OperandPtr m_left;
    OperandPtr m_right;
    Results m_results;
};

/// A function from number to number.
template <typename Function>
class NumberFunctionOperand : public Operand {
  public:
    NumberFunctionOperand(const Node& number, Function function)
        : m_source(makeOperand(number)), m_function(function) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_source->evaluate(frame, rows);
        m_results.begin(Type::Real, frame.rows());
        double* const out = m_results.reals();
        rows.forEach([&](std::uint32_t row) { out[row] = m_function(source.reals[row]); });
        m_results.takeNulls(source);
        return m_results.vector();
    }

  private:
    OperandPtr m_source;
    Function m_function;
    Results m_results;
};

/// max() or min() of numbers or dates.
template <typename Number>
class ExtremeOperand : public Operand {
  public:
    explicit ExtremeOperand(const Node& node) : m_type(node.type), m_isGreatest(isCallOf(node, "max")) {
        for (const NodePtr& child : node.children)
            m_arguments.push_back(makeOperand(*child));
    }

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        m_results.begin(m_type, frame.rows());
        m_nulls.begin();
        const Vector* best = &m_arguments.front()->evaluate(frame, rows);
        m_nulls.add(*best, frame.rows());
        for (std::size_t i = 1; i < m_arguments.size(); ++i) {
            const Vector& column = m_arguments[i]->evaluate(frame, rows);
            m_nulls.add(column, frame.rows());
            if (m_isGreatest)
                choose(*best, column, rows, [](Number one, Number other) { return other > one ? other : one; });
            else
                choose(*best, column, rows, [](Number one, Number other) { return other < one ? other : one; });
            best = &m_results.vector();
        }
        m_results.takeNulls(m_nulls.get());
        return m_results.vector();
    }

  private:
    template <typename Choose>
    void choose(const Vector& best, const Vector& column, const RowSet& rows, Choose better) {
        const auto store = [&](Number* out, auto values, auto constant) {
            withNumbers(best, best.*values, best.constant.*constant, [&](auto one) {
                withNumbers(column, column.*values, column.constant.*constant, [&](auto other) {
                    rows.forEach([=](std::uint32_t row) { out[row] = better(one(row), other(row)); });
                });
            });
        };
        if constexpr (std::is_same_v<Number, double>)
            store(m_results.reals(), &Vector::reals, &Value::real);
        else
            store(m_results.integers(), &Vector::integers, &Value::integer);
    }

    Type m_type;
    bool m_isGreatest;
    std::vector<OperandPtr> m_arguments;
    JoinedNulls m_nulls;
    Results m_results;
};

OperandPtr makeExtreme(const Node& node) {
    const auto isUsable = [&](const NodePtr& child) {
        return child->type == node.type && !(child->isConstant() && child->constant.isNull());
    };
    if (node.children.size() < 2 || !std::ranges::all_of(node.children, isUsable))
        return nullptr;
    if (node.type == Type::Real)
        return std::make_unique<ExtremeOperand<double>>(node);
    if (node.type == Type::Integer || node.type == Type::Date)
        return std::make_unique<ExtremeOperand<std::int64_t>>(node);
    return nullptr;
}

template <typename Function>
OperandPtr makeFunction(const Node& number, Function function) {
    return std::make_unique<NumberFunctionOperand<Function>>(number, function);
}

} // namespace

OperandPtr makeArithmetic(const Node& node) {
    return std::make_unique<ArithmeticOperand>(node);
}

OperandPtr makeNumberFunction(const Node& node) {
    if (isCallOf(node, "max") || isCallOf(node, "min"))
        return makeExtreme(node);
    const Node& number = node.child(0);
    if (number.isConstant() || number.type != Type::Real)
        return nullptr;
    if (isCallOf(node, "abs"))
        return makeFunction(number, [](double value) { return std::fabs(value); });
    if (isCallOf(node, "ceil"))
        return makeFunction(number, [](double value) { return std::ceil(value); });
    if (isCallOf(node, "floor"))
        return makeFunction(number, [](double value) { return std::floor(value); });
    if (isCallOf(node, "trunc"))
        return makeFunction(number, [](double value) { return std::trunc(value); });
    if (!isCallOf(node, "round"))
        return nullptr;
    if (node.children.size() > 1 && (!node.child(1).isConstant() || node.child(1).constant.isNull()))
        return nullptr;
    const number_functions::DecimalRounding places(node.children.size() > 1 ? node.child(1).constant.integer : 0);
    return makeFunction(number, [places](double value) { return places.round(value); });
}

} // namespace tavix::expression
