#include "expression/Node.h"

#include "expression/Cells.h"
#include "expression/Conversion.h"

#include <algorithm>

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

bool isSame(const Node& one, const Node& other) {
    if (one.kind != other.kind || one.type != other.type)
        return false;
    if (one.isConstant())
        return one.constant.isNull() == other.constant.isNull() &&
               (one.constant.isNull() || compareValues(one.constant, other.constant) == 0);
    return one.field == other.field && one.function == other.function && one.comparison == other.comparison &&
           one.arithmetic == other.arithmetic && one.hasNull == other.hasNull && one.hasCells == other.hasCells &&
           one.matcher == other.matcher &&
           std::ranges::equal(one.children, other.children,
                              [](const NodePtr& left, const NodePtr& right) { return isSame(*left, *right); });
}

bool isMember(const Node& list, std::size_t place, const Value& subject, const Value& member) {
    if (!list.hasCells || (subject.type != Type::Text && member.type != Type::Text))
        return compareValues(subject, member) == 0;
    if (subject.type != Type::Text)
        return orderOfCell(member.text, subject) == 0;
    if (member.type != Type::Text)
        return orderOfCell(subject.text, member) == 0;
    return list.child(place).kind == NodeKind::Field ? orderOfCells(subject.text, member.text) == 0
                                                     : subject.text == member.text;
}

bool isCallOf(const Node& node, std::string_view function) {
    return node.kind == NodeKind::Call && node.function->name == function;
}

} // namespace tavix::expression
