#pragma once

#include "blocks/Frame.h"
#include "blocks/RowSet.h"
#include "blocks/Vector.h"
#include "expression/Node.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace tavix::expression {

/// Computes the values of an expression for a set of rows of a block.
class Operand {
  public:
    Operand() = default;
    Operand(const Operand&) = delete;
    Operand& operator=(const Operand&) = delete;
    virtual ~Operand() = default;

    /// The result is valid until the next call, as long as the block is.
    [[nodiscard]] virtual const Vector& evaluate(Frame& frame, const RowSet& rows) = 0;
};

using OperandPtr = std::unique_ptr<Operand>;

/// Storage for the values that an operand makes row by row.
class Results {
  public:
    /// Prepares for a block of `rows` rows.
    void begin(Type type, std::size_t rows);
    void set(std::uint32_t row, const Value& value);
    /// Copies the values of these rows from a vector of the same type or a null constant.
    void take(const RowSet& rows, const Vector& from);
    /// take() when none of the rows is null.
    void takeValues(const RowSet& rows, const Vector& from);
    /// Sets the value of each row to `valueOf(row)`, which may leave a failure in the frame's scratch.
    template <typename ValueOf>
    const Vector& makeEach(Type type, Frame& frame, const RowSet& rows, ValueOf valueOf) {
        begin(type, frame.rows());
        rows.forEach([&](std::uint32_t row) {
            set(row, valueOf(row));
            frame.collectFailure(row);
        });
        return m_vector;
    }
    [[nodiscard]] std::string_view* texts() { return m_texts.data(); }
    [[nodiscard]] std::int64_t* integers() { return m_integers.data(); }
    [[nodiscard]] double* reals() { return m_reals.data(); }
    /// For operands that add no nulls: uses the nulls of another vector.
    void takeNulls(const Vector& from) { m_vector.nulls = from.nulls; }
    void takeNulls(const std::uint8_t* nulls) { m_vector.nulls = nulls; }
    [[nodiscard]] Vector& vector() { return m_vector; }

  private:
    Vector m_vector;
    std::vector<std::string_view> m_texts;
    std::vector<std::int64_t> m_integers;
    std::vector<double> m_reals;
    std::vector<std::uint8_t> m_booleans;
    std::vector<std::uint8_t> m_nulls;
};

/// Makes the operator for a node, which must outlive it.
[[nodiscard]] OperandPtr makeOperand(const Node& node);

/// Functions over texts; null when the node is not such a call.
[[nodiscard]] OperandPtr makeTextOperand(const Node& node);
/// Functions that cut texts at positions that vary by row; null when the node is not such a call.
[[nodiscard]] OperandPtr makeMeasuredCut(const Node& node);
/// Functions that build texts; null when the node is not such a call.
[[nodiscard]] OperandPtr makeBuiltText(const Node& node);
/// Functions of one number, max() and min(); null when the node is not such a call.
[[nodiscard]] OperandPtr makeNumberFunction(const Node& node);
/// Functions of dates; null when the node is not such a call.
[[nodiscard]] OperandPtr makeDateFunction(const Node& node);
/// Functions that find a part of a text, or none; null when the node is not such a call.
[[nodiscard]] OperandPtr makeTextPart(const Node& node);
[[nodiscard]] OperandPtr makeArithmetic(const Node& node);
/// Operators that choose among values: if, coalesce, nullif, and conditions as values; null for other nodes.
[[nodiscard]] OperandPtr makeChoosing(const Node& node);

} // namespace tavix::expression
