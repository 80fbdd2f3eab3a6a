#include "expression/Node.h"

namespace tavix::expression {

NodePtr makeConstant(const Value& value) {
    NodePtr node = makeNode(NodeKind::Constant, value.type);
    node->text = std::string(value.text);
    node->constant = value;
    node->constant.text = node->text;
    return node;
}

bool isFixedText(const Node& node) {
    return node.isConstant() && node.constant.type == Type::Text;
}

bool isCallOf(const Node& node, std::string_view function) {
    return node.kind == NodeKind::Call && node.function->name == function;
}

} // namespace tavix::expression
