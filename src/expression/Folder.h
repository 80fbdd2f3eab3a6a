#pragma once

#include "expression/Node.h"
#include "expression/Scratch.h"

#include <cstddef>

namespace tavix::expression {

/// Evaluates once what is constant in an expression. The texts that this makes are bounded, so that a short expression
/// cannot take much memory or time before it is used.
class Folder {
  public:
    /// `size`: bytes of the expression.
    explicit Folder(std::size_t size) : m_room(kAlways + kPerByte * size) {}

    /// A node with only constants below it becomes a constant, of the same type even when it is null. What fails is
    /// left, to fail whenever it is evaluated.
    [[nodiscard]] NodePtr fold(NodePtr node);
    /// Whether a text would have grown beyond the bound; the expression is then to be refused.
    [[nodiscard]] bool isExhausted() const { return m_isExhausted; }

  private:
    static constexpr std::size_t kAlways = std::size_t{1} << 20;
    static constexpr std::size_t kPerByte = 16;

    std::size_t m_room;
    bool m_isExhausted = false;
    Scratch m_scratch;
};

} // namespace tavix::expression
