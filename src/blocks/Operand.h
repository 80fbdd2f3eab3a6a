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

/// Computes the values of an expression for rows of a block, a row set at a time.
class Operand {
  public:
    Operand() = default;
    Operand(const Operand&) = delete;
    Operand& operator=(const Operand&) = delete;
    virtual ~Operand() = default;

    /// The result is valid until the next call and as long as the block is.
    [[nodiscard]] virtual const Vector& evaluate(Frame& frame, const RowSet& rows) = 0;
};

using OperandPtr = std::unique_ptr<Operand>;

/// Room for the values that an operand makes row by row.
class Results {
  public:
    /// For a block of so many rows.
    void begin(Type type, std::size_t rows);
    void set(std::uint32_t row, const Value& value);
    /// The rows' values of a vector of the same type, or of one that is null throughout.
    void take(const RowSet& rows, const Vector& from);
    /// The same where none of the rows is null.
    void takeValues(const RowSet& rows, const Vector& from);
    [[nodiscard]] std::string_view* texts() { return m_texts.data(); }
    [[nodiscard]] std::int64_t* integers() { return m_integers.data(); }
    [[nodiscard]] double* reals() { return m_reals.data(); }
    /// The nulls of another vector are those of this one, for operands that add none.
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

/// The operators for a node; the node has to outlive them.
[[nodiscard]] OperandPtr makeOperand(const Node& node);

/// Those for functions over texts; null when the node is no call for which there is one.
[[nodiscard]] OperandPtr makeTextOperand(const Node& node);
/// Those that cut texts at places which each row has for itself; null when the node is no call of one.
[[nodiscard]] OperandPtr makeMeasuredCut(const Node& node);
/// Those that put texts together; null when the node is no call of one.
[[nodiscard]] OperandPtr makeBuiltText(const Node& node);
/// Those for functions of one number, and for the greatest and the least of several; null when the node is no call of
/// one.
[[nodiscard]] OperandPtr makeNumberFunction(const Node& node);
[[nodiscard]] OperandPtr makeArithmetic(const Node& node);
/// Those that choose among values: if, coalesce, nullif and conditions as values; null when the node is none of these.
[[nodiscard]] OperandPtr makeChoosing(const Node& node);

} // namespace tavix::expression
