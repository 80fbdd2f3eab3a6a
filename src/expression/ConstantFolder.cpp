#include "expression/ConstantFolder.h"

#include "expression/Interpreter.h"

#include <algorithm>

namespace tavix::expression {

NodePtr ConstantFolder::fold(NodePtr node) {
    const auto isConstant = [](const NodePtr& child) { return child->isConstant(); };
    if (m_isExhausted || node->isConstant() || node->kind == NodeKind::Field ||
        !std::ranges::all_of(node->children, isConstant))
        return node;
    m_scratch.clear(m_room);
    const Value value = Interpreter(m_scratch).evaluate(*node, {});
    m_isExhausted = m_scratch.isFull();
    m_room -= m_scratch.size();
    if (m_scratch.hasFailed()) {
        (void)m_scratch.takeFailure();
        return node;
    }
    NodePtr constant = makeConstant(value);
    constant->type = node->type;
    return constant;
}

} // namespace tavix::expression
