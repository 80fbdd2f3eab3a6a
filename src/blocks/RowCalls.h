#pragma once

#include "blocks/Operand.h"

#include <span>
#include <vector>

namespace tavix::expression {

/// Calls a function row by row.
class RowCalls {
  public:
    /// The node, a call, must outlive the object.
    explicit RowCalls(const Node& call) : m_call(call), m_values(call.children.size()) {}

    /// `arguments`: a vector for each argument. Null for a row in which one of them is null.
    const Vector& evaluate(Frame& frame, const RowSet& rows, std::span<const Vector* const> arguments) {
        return m_results.makeEach(m_call.type, frame, rows, [&](std::uint32_t row) {
            bool isNull = false;
            for (std::size_t i = 0; i < arguments.size(); ++i) {
                m_values[i] = arguments[i]->at(row);
                isNull = isNull || m_values[i].isNull();
            }
            return isNull ? Value{} : callFunction(m_call, m_values, frame.scratch());
        });
    }

  private:
    const Node& m_call;
    std::vector<Value> m_values;
    Results m_results;
};

} // namespace tavix::expression
