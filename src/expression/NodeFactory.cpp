#include "expression/NodeFactory.h"

#include <algorithm>
#include <utility>

namespace tavix::expression {

Type typeOf(char letter) {
    switch (letter) {
    case 'b':
        return Type::Boolean;
    case 'd':
        return Type::Date;
    case 'i':
        return Type::Integer;
    case 'r':
        return Type::Real;
    case 's':
    case 'S':
        return Type::Text;
    default:
        return Type::Null;
    }
}

bool accepts(Type parameter, Type argument) {
    if (parameter == argument || argument == Type::Null || parameter == Type::Text)
        return true;
    if (isNumber(parameter))
        return isNumber(argument) || argument == Type::Text;
    return parameter == Type::Date && argument == Type::Text;
}

Type typeAmong(const std::vector<NodePtr>& arguments) {
    const auto typed = std::ranges::find_if(arguments, [](const NodePtr& node) { return node->type != Type::Null; });
    return typed == arguments.end() ? Type::Null : (*typed)->type;
}

NodePtr copyOfField(const Node& field) {
    NodePtr copy = makeNode(NodeKind::Field, field.type);
    copy->field = field.field;
    copy->text = field.text;
    return copy;
}

NodePtr made(NodeKind kind, Type type, std::vector<NodePtr> children) {
    NodePtr node = makeNode(kind, type);
    node->children = std::move(children);
    return node;
}

NodePtr convertedNode(NodePtr node, Type type, ConstantFolder& folder) {
    if (node->type == type || node->type == Type::Null)
        return node;
    NodePtr conversion = makeNode(NodeKind::Convert, type);
    conversion->children.push_back(std::move(node));
    return folder.fold(std::move(conversion));
}

NodePtr inList(std::vector<NodePtr> arguments) {
    const auto isNull = [](const NodePtr& member) { return member->isConstant() && member->constant.isNull(); };
    const auto nulls = std::remove_if(arguments.begin() + 1, arguments.end(), isNull);
    const bool hasNull = nulls != arguments.end();
    arguments.erase(nulls, arguments.end());
    // nothing equals null
    if (arguments.size() == 1) {
        NodePtr never = makeConstant({});
        never->type = Type::Boolean;
        return never;
    }
    NodePtr node = made(NodeKind::InList, Type::Boolean, std::move(arguments));
    node->hasNull = hasNull;
    node->hasList = std::all_of(node->children.begin() + 1, node->children.end(),
                                [](const NodePtr& member) { return isFixedText(*member); });
    for (std::size_t i = 1; node->hasList && i < node->children.size(); ++i)
        node->list.insert(node->child(i).text);
    return node;
}

NodePtr matching(std::vector<NodePtr> arguments, std::shared_ptr<const Matcher> matcher) {
    arguments.pop_back();
    NodePtr node = made(NodeKind::Matches, Type::Boolean, std::move(arguments));
    node->matcher = std::move(matcher);
    return node;
}

} // namespace tavix::expression
