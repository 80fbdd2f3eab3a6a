#pragma once

#include "expression/Node.h"
#include "expression/Scratch.h"

#include <cstddef>

namespace tavix::expression {

/// Folds constants. The texts that this makes are bounded, so that a short expression cannot take much memory or time
/// before it is used.
class ConstantFolder {
  public:
    /// `size`: bytes of the expression.
    explicit ConstantFolder(std::size_t size) : m_room(kAlways + kPerByte * size) {}

    /// Turns a node that has only constant children into a constant of the same type, even when it is null. A node that
    /// fails to evaluate is kept and fails at each evaluation.
    [[nodiscard]] NodePtr fold(NodePtr node);
    /// Whether the bound was exceeded; the expression must then be rejected.
    [[nodiscard]] bool isExhausted() const { return m_isExhausted; }

  private:
    static constexpr std::size_t kAlways = std::size_t{1} << 20;
    static constexpr std::size_t kPerByte = 16;

    std::size_t m_room;
    bool m_isExhausted = false;
    Scratch m_scratch;
};

} // namespace tavix::expression
