#include "expression/Checker.h"

#include "base/NumberText.h"
#include "expression/Conversion.h"
#include "expression/Hints.h"
#include "expression/MadeNodes.h"
#include "expression/Rewriter.h"
#include "expression/TextOperators.h"
#include "expression/Wildcard.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix::expression {

namespace {

constexpr std::size_t kLongestPattern = 4096;

class Builder {
  public:
    Builder(std::span<const Field> fields, Wanted wanted) : m_fields(fields), m_wanted(wanted) {}

    NodePtr result(const Syntax& syntax) { return m_wanted == Wanted::Condition ? condition(syntax) : build(syntax); }
    [[nodiscard]] std::optional<ExpressionError> takeError() { return std::move(m_error); }
    [[nodiscard]] std::optional<ExpressionError> takeRemark() { return std::move(m_remark); }

  private:
    NodePtr build(const Syntax& syntax) {
        NodePtr node = buildUnfolded(syntax);
        return node ? fold(rewrite(std::move(node))) : nullptr;
    }
    NodePtr condition(const Syntax& syntax) {
        NodePtr node = build(syntax);
        if (node && node->type != Type::Boolean && node->type != Type::Null)
            return fail(syntax.at,
                        fmt::format("a condition is wanted here, and this is of type {}", typeName(node->type)));
        return node;
    }
    NodePtr fail(Position at, std::string message) {
        if (!m_error)
            m_error = ExpressionError{std::move(message), at.line, at.column, {}};
        return nullptr;
    }

    NodePtr buildUnfolded(const Syntax& syntax) {
        switch (syntax.kind) {
        case SyntaxKind::Number:
            return number(syntax);
        case SyntaxKind::Text:
            return makeConstant(Value::ofText(syntax.text));
        case SyntaxKind::Word:
            return makeConstant(syntax.text == "null" ? Value{} : Value::ofBoolean(syntax.text == "true"));
        case SyntaxKind::Field:
            return field(syntax);
        case SyntaxKind::Call:
            return call(syntax);
        case SyntaxKind::Not:
            return junction(syntax, NodeKind::Not);
        case SyntaxKind::And:
            return junction(syntax, NodeKind::And);
        case SyntaxKind::Or:
            return junction(syntax, NodeKind::Or);
        case SyntaxKind::Negate:
            return negation(syntax);
        case SyntaxKind::Compare:
            return comparison(syntax);
        case SyntaxKind::Arithmetic:
            return arithmetic(syntax);
        case SyntaxKind::If:
            return choice(syntax);
        }
        return nullptr;
    }

    NodePtr number(const Syntax& syntax) {
        if (const auto integer = parseInteger(syntax.text))
            return makeConstant(Value::ofInteger(*integer));
        if (const auto real = parseNumber(syntax.text))
            return makeConstant(Value::ofReal(*real));
        return fail(syntax.at, fmt::format("the number {} is out of range", syntax.text));
    }

    NodePtr field(const Syntax& syntax) {
        const auto found = findField(syntax.text);
        if (!found) {
            if (!m_error)
                m_error = ExpressionError{fmt::format("there is no field `{}`", syntax.text), syntax.at.line,
                                          syntax.at.column, std::string(syntax.text)};
            return nullptr;
        }
        NodePtr node = makeNode(NodeKind::Field, m_fields[*found].type);
        node->field = *found;
        node->text = m_fields[*found].name;
        return node;
    }
    [[nodiscard]] std::optional<std::size_t> findField(std::string_view name) const {
        const auto exact = std::ranges::find(m_fields, name, &Field::name);
        if (exact != m_fields.end())
            return static_cast<std::size_t>(exact - m_fields.begin());
        const auto lower = [](std::string_view text) {
            std::string out;
            appendLower(out, text);
            return out;
        };
        std::optional<std::size_t> found;
        const std::string wanted = lower(name);
        for (std::size_t i = 0; i < m_fields.size(); ++i) {
            if (lower(m_fields[i].name) != wanted)
                continue;
            if (found)
                return std::nullopt;
            found = i;
        }
        return found;
    }

    NodePtr junction(const Syntax& syntax, NodeKind kind) {
        NodePtr node = makeNode(kind, Type::Boolean);
        for (const auto& part : syntax.children) {
            NodePtr child = condition(*part);
            if (!child)
                return nullptr;
            node->children.push_back(std::move(child));
        }
        return node;
    }

    /// The node, brought to a type; null with an error when values of its type cannot be.
    NodePtr converted(NodePtr node, Type type, Position at) {
        if (!node || node->type == type || type == Type::Null)
            return node;
        if (!accepts(type, node->type))
            return fail(at,
                        fmt::format("{} is wanted here, and this is of type {}", typeName(type), typeName(node->type)));
        return brought(std::move(node), type);
    }
    NodePtr negation(const Syntax& syntax) {
        const Syntax& inner = *syntax.children.front();
        NodePtr child = build(inner);
        if (!child)
            return nullptr;
        if (child->type != Type::Integer)
            child = converted(std::move(child), Type::Real, inner.at);
        if (!child)
            return nullptr;
        NodePtr node = makeNode(NodeKind::Negate, child->type);
        node->children.push_back(std::move(child));
        return node;
    }

    NodePtr arithmetic(const Syntax& syntax) {
        NodePtr left = build(*syntax.children[0]);
        NodePtr right = left ? build(*syntax.children[1]) : nullptr;
        if (!right)
            return nullptr;
        const bool isInteger =
            left->type == Type::Integer && right->type == Type::Integer && syntax.arithmetic != Arithmetic::Divide;
        const Type type = isInteger ? Type::Integer : Type::Real;
        NodePtr node = makeNode(NodeKind::Arithmetic, type);
        node->arithmetic = syntax.arithmetic;
        left = converted(std::move(left), type, syntax.children[0]->at);
        right = converted(std::move(right), type, syntax.children[1]->at);
        if (!left || !right)
            return nullptr;
        node->children.push_back(std::move(left));
        node->children.push_back(std::move(right));
        return node;
    }

    NodePtr comparison(const Syntax& syntax) {
        NodePtr left = build(*syntax.children[0]);
        NodePtr right = left ? build(*syntax.children[1]) : nullptr;
        const bool isOrder = syntax.comparison != Comparison::Equal && syntax.comparison != Comparison::NotEqual;
        if (right && isOrder)
            remarkOnOrder(*left, *right, syntax.at);
        if (!right || !makeComparable(left, right, syntax))
            return nullptr;
        if (isOrder && (left->type == Type::Boolean || right->type == Type::Boolean))
            return fail(syntax.at, "true and false have no order; compare them with == or !=");
        NodePtr node = makeNode(NodeKind::Compare, Type::Boolean);
        node->comparison = syntax.comparison;
        node->children.push_back(std::move(left));
        node->children.push_back(std::move(right));
        return node;
    }

    /// The order of texts is seldom the one that is meant where a number stands beside a text.
    void remarkOnOrder(const Node& left, const Node& right, Position at) {
        const bool isTextLeft = left.type == Type::Text;
        const Node& text = isTextLeft ? left : right;
        const Node& number = isTextLeft ? right : left;
        if (m_remark || text.type != Type::Text || text.isConstant() || !isNumber(number.type))
            return;
        const std::string name = text.kind == NodeKind::Field ? fmt::format("`{}`", text.text) : "...";
        m_remark = ExpressionError{fmt::format("this compares texts, among which '9' stands behind '10'; to compare "
                                               "numbers write tonumber({})",
                                               name),
                                   at.line,
                                   at.column,
                                   {}};
    }

    /// Numbers compare as they are, a number and a text as texts, a date and a text as dates.
    bool makeComparable(NodePtr& left, NodePtr& right, const Syntax& syntax) {
        if (left->type == right->type || (isNumber(left->type) && isNumber(right->type)))
            return true;
        for (auto* side : {&left, &right}) {
            const NodePtr& other = side == &left ? right : left;
            if ((*side)->type != Type::Text || other->type != Type::Date)
                continue;
            const bool isFixed = isFixedText(**side);
            const std::string text = (*side)->text;
            *side = brought(std::move(*side), Type::Date);
            if (isFixed && (*side)->constant.isNull())
                fail(syntax.children[side == &left ? 0 : 1]->at,
                     fmt::format("'{}' is no date; dates are written '2026-11-21' or '2026-11-21 08:15:00'",
                                 leftOf(text, 40)));
            return !m_error;
        }
        const auto common = commonType(left->type, right->type);
        if (!common) {
            fail(syntax.at, fmt::format("{} cannot be compared with {}", typeName(left->type), typeName(right->type)));
            return false;
        }
        left = brought(std::move(left), *common);
        right = brought(std::move(right), *common);
        return true;
    }

    NodePtr choice(const Syntax& syntax) {
        NodePtr node = makeNode(NodeKind::If, Type::Null);
        for (std::size_t i = 0; i < syntax.children.size(); ++i) {
            const bool isCondition = i % 2 == 0 && i + 1 < syntax.children.size();
            NodePtr child = isCondition ? condition(*syntax.children[i]) : result(*syntax.children[i]);
            if (!child)
                return nullptr;
            if (!isCondition) {
                const auto common = commonType(node->type, child->type);
                if (!common)
                    return fail(syntax.children[i]->at, fmt::format("one result is of type {} and this of type {}",
                                                                    typeName(node->type), typeName(child->type)));
                node->type = *common;
            }
            node->children.push_back(std::move(child));
        }
        // Without an else there is no value.
        if (node->children.size() % 2 == 0)
            node->children.push_back(makeConstant({}));
        for (std::size_t i = 1; i < node->children.size(); i += 2)
            node->children[i] = brought(std::move(node->children[i]), node->type);
        node->children.back() = brought(std::move(node->children.back()), node->type);
        return node;
    }

    NodePtr call(const Syntax& syntax) {
        const Function* function = findFunction(syntax.text);
        if (!function)
            return fail(syntax.at, fmt::format("there is no function {}{}", syntax.text,
                                               behindSemicolon(hintForFunction(syntax.text))));
        const auto count = static_cast<int>(syntax.children.size());
        if (count < function->minimum || count > function->maximum)
            return fail(syntax.at, wrongCount(*function, count));
        std::vector<NodePtr> arguments;
        for (std::size_t i = 0; i < syntax.children.size(); ++i) {
            const Syntax& part = *syntax.children[i];
            const char letter = function->parameters[std::min(i, function->parameters.size() - 1)];
            NodePtr argument = converted(build(part), typeOf(letter), part.at);
            if (!argument)
                return nullptr;
            if (letter == 'S' && !isFixedText(*argument))
                return fail(part.at, fmt::format("{} wants a fixed text here", function->name));
            arguments.push_back(std::move(argument));
        }
        return finish(*function, std::move(arguments), syntax);
    }
    static std::string wrongCount(const Function& function, int count) {
        const auto arguments = [](int number) { return fmt::format("{} argument{}", number, number == 1 ? "" : "s"); };
        if (function.minimum == function.maximum)
            return fmt::format("{} takes {}, not {}", function.name, arguments(function.minimum), count);
        if (function.maximum == kMostArguments)
            return fmt::format("{} takes at least {}, not {}", function.name, arguments(function.minimum), count);
        return fmt::format("{} takes {} to {}, not {}", function.name, function.minimum, arguments(function.maximum),
                           count);
    }

    NodePtr finish(const Function& function, std::vector<NodePtr> arguments, const Syntax& syntax) {
        switch (function.form) {
        case Form::IsNull:
            return made(NodeKind::IsNull, Type::Boolean, std::move(arguments));
        case Form::Regular:
            return regular(std::move(arguments), syntax);
        case Form::Wildcard:
            if (isFixedText(*arguments[1]))
                return wildcard(std::move(arguments), syntax);
            break;
        case Form::FirstNonNull:
        case Form::OneType:
        case Form::InList:
            if (!bringToOneType(arguments, function, syntax))
                return nullptr;
            if (function.form == Form::InList)
                return inList(std::move(arguments));
            if (function.form == Form::FirstNonNull) {
                const Type type = typeAmong(arguments);
                return made(NodeKind::FirstNonNull, type, std::move(arguments));
            }
            break;
        case Form::Plain:
            break;
        }
        const Type type = function.result == 'a' ? typeAmong(arguments) : typeOf(function.result);
        NodePtr node = made(NodeKind::Call, type, std::move(arguments));
        node->function = &function;
        return node;
    }

    bool bringToOneType(std::vector<NodePtr>& arguments, const Function& function, const Syntax& syntax) {
        Type type = Type::Null;
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const auto common = commonType(type, arguments[i]->type);
            if (!common) {
                fail(syntax.children[i]->at, fmt::format("{} cannot put {} beside {}", function.name,
                                                         typeName(arguments[i]->type), typeName(type)));
                return false;
            }
            type = *common;
        }
        for (NodePtr& argument : arguments)
            argument = brought(std::move(argument), type);
        return true;
    }

    NodePtr regular(std::vector<NodePtr> arguments, const Syntax& syntax) {
        std::string reason;
        auto matcher = makeRegularExpression(arguments[1]->text, reason);
        if (!matcher)
            return fail(syntax.children[1]->at, fmt::format("this is no regular expression: {}", reason));
        return matching(std::move(arguments), std::move(matcher));
    }
    NodePtr wildcard(std::vector<NodePtr> arguments, const Syntax& syntax) {
        if (arguments[1]->text.size() > kLongestPattern)
            return fail(syntax.children[1]->at, fmt::format("the pattern is longer than {} bytes", kLongestPattern));
        auto matcher = std::make_shared<Wildcard>(arguments[1]->text);
        return matching(std::move(arguments), std::move(matcher));
    }
    std::span<const Field> m_fields;
    Wanted m_wanted;
    std::optional<ExpressionError> m_error;
    std::optional<ExpressionError> m_remark;
};

} // namespace

Checked check(const Syntax& syntax, std::span<const Field> fields, Wanted wanted) {
    Builder builder(fields, wanted);
    NodePtr tree = builder.result(syntax);
    return {std::move(tree), builder.takeError(), builder.takeRemark()};
}

} // namespace tavix::expression
