#include "expression/Checker.h"

#include "base/Characters.h"
#include "base/DateTicks.h"
#include "base/NearestWord.h"
#include "base/NumberText.h"
#include "expression/CellComparisons.h"
#include "expression/FixedPatterns.h"
#include "expression/Hints.h"
#include "expression/Lexer.h"
#include "expression/NodeFactory.h"
#include "expression/NumberFunctions.h"
#include "expression/Rewriter.h"
#include "expression/TextOperators.h"
#include "expression/TypeUnification.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix::expression {

namespace {

constexpr const char* kTextOfDate = "; totext(...) makes texts of dates";

class Builder {
  public:
    Builder(std::size_t size, std::span<const Field> fields, Wanted wanted, std::int64_t now, Columns columns)
        : m_fields(fields), m_wanted(wanted), m_now(now), m_columns(columns), m_folder(size) {}

    NodePtr result(const Syntax& syntax) { return m_wanted == Wanted::Condition ? condition(syntax) : build(syntax); }
    [[nodiscard]] std::optional<ExpressionError> takeError() { return std::move(m_error); }
    [[nodiscard]] std::optional<ExpressionError> takeRemark() { return std::move(m_remark); }

  private:
    NodePtr build(const Syntax& syntax) {
        NodePtr node = buildUnfolded(syntax);
        if (node)
            node = m_folder.fold(rewrite(std::move(node), m_folder));
        if (node && m_folder.isExhausted())
            return fail(syntax.at, "the constant texts of the expression are too long from here on");
        return node;
    }
    NodePtr condition(const Syntax& syntax) {
        NodePtr node = build(syntax);
        if (node && node->type != Type::Boolean && node->type != Type::Null)
            return fail(syntax.at,
                        fmt::format("a condition is needed here, but this is of type {}", typeName(node->type)));
        return node;
    }
    NodePtr fail(Position at, std::string message) {
        if (!m_error)
            m_error = ExpressionError{std::move(message), at.line, at.column};
        return nullptr;
    }

    NodePtr buildUnfolded(const Syntax& syntax) {
        switch (syntax.kind) {
        case SyntaxKind::Number:
            return number(syntax);
        case SyntaxKind::Text:
            return text(syntax);
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
        return fail(syntax.at, fmt::format("the number {} is out of range", shortened(syntax.text, kLongestEcho)));
    }

    NodePtr text(const Syntax& syntax) {
        if (syntax.spelling == Spelling::DoubleQuoted && findField(syntax.text)) {
            const std::string name = shortened(syntax.text, kLongestEcho);
            return fail(syntax.at, fmt::format("\"{0}\" may be the field or a text here; write `{0}` or '{0}'", name));
        }
        return makeConstant(Value::ofText(syntax.text));
    }

    NodePtr field(const Syntax& syntax) {
        const auto found = findField(syntax.text);
        if (!found)
            return fail(syntax.at, noField(syntax));
        NodePtr node = makeNode(NodeKind::Field, m_fields[*found].type);
        node->field = *found;
        node->text = m_fields[*found].name;
        return node;
    }
    [[nodiscard]] std::string noField(const Syntax& syntax) const {
        std::vector<std::string> names;
        for (const Field& field : m_fields)
            names.push_back(field.name);
        const std::string name = shortened(syntax.text, kLongestEcho);
        if (syntax.spelling == Spelling::Marked)
            return fmt::format("there is no field `{}`{}", name, suggestion(syntax.text, names));
        if (syntax.spelling == Spelling::AfterDashes)
            return fmt::format("there is no field {}{}", name, afterSemicolon(kCommentHint));
        const std::string_view hint = hintForName(lowerText(syntax.text));
        return fmt::format("there is no field {}{}", name,
                           hint.empty() ? suggestion(syntax.text, names) + "; put texts in quotes"
                                        : afterSemicolon(hint));
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

    /// Converts the node to a type; null, with an error, when its type cannot be converted.
    NodePtr converted(NodePtr node, Type type, Position at) {
        if (!node || node->type == type || type == Type::Null)
            return node;
        if (!accepts(type, node->type))
            return fail(at,
                        fmt::format("{} is needed here, but this is of type {}", typeName(type), typeName(node->type)));
        return convertedNode(std::move(node), type, m_folder);
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
        std::vector<NodePtr> sides;
        for (const auto& side : syntax.children) {
            sides.push_back(build(*side));
            if (!sides.back())
                return nullptr;
        }
        const bool isOrder = syntax.comparison != Comparison::Equal && syntax.comparison != Comparison::NotEqual;
        remarkOnNull(syntax, sides);
        if (m_columns == Columns::Typed) {
            remark(syntax.at, remarkOnCells(sides, isOrder));
            if (NodePtr node = cellComparison(syntax.comparison, sides))
                return node;
        }
        remark(syntax.at, remarkOnTypes(sides, isOrder));
        const Unified unified = unify(sides, Unification::Compared, m_folder);
        if (!unified.notDate.empty())
            return fail(syntax.children[*unified.clash]->at, notADate(unified));
        if (unified.clash)
            return fail(syntax.at, fmt::format("{} cannot be compared with {}", typeName(unified.clashesWith),
                                               typeName(sides[*unified.clash]->type)));
        if (isOrder && unified.type == Type::Boolean)
            return fail(syntax.at, "true and false have no order; compare them with == or !=");
        NodePtr node = made(NodeKind::Compare, Type::Boolean, std::move(sides));
        node->comparison = syntax.comparison;
        return node;
    }

    void remark(Position at, std::string message) {
        if (!m_remark && !message.empty())
            m_remark = ExpressionError{std::move(message), at.line, at.column};
    }
    /// Only about the word itself, not about a value that is null in some rows or was folded to null.
    void remarkOnNull(const Syntax& syntax, const std::vector<NodePtr>& sides) {
        const auto isNull = [](const std::unique_ptr<Syntax>& side) {
            return side->kind == SyntaxKind::Word && side->text == "null";
        };
        const auto null = std::ranges::find_if(syntax.children, isNull);
        if (null == syntax.children.end())
            return;
        const Node& other = *sides[null == syntax.children.begin() ? 1 : 0];
        const std::string name =
            other.kind == NodeKind::Field ? fmt::format("`{}`", shortened(other.text, kLongestEcho)) : "...";
        remark(syntax.at, fmt::format("a comparison with null is never true; write {}isnull({})",
                                      syntax.comparison == Comparison::NotEqual ? "not " : "", name));
    }
    static std::string notADate(const Unified& unified) {
        return fmt::format("{} is not a date; write dates as '2026-11-21' or '2026-11-21 08:15:00'", unified.notDate);
    }

    NodePtr choice(const Syntax& syntax) {
        std::vector<NodePtr> results;
        std::vector<std::size_t> places; // of the results among the children
        NodePtr node = makeNode(NodeKind::If, Type::Null);
        for (std::size_t i = 0; i < syntax.children.size(); ++i) {
            const bool isCondition = i % 2 == 0 && i + 1 < syntax.children.size();
            NodePtr child = isCondition ? condition(*syntax.children[i]) : result(*syntax.children[i]);
            if (!child)
                return nullptr;
            if (!isCondition) {
                places.push_back(i);
                results.push_back(std::move(child));
            }
            node->children.push_back(std::move(child));
        }
        const Unified unified = unify(results, Unification::Chosen, m_folder);
        if (unified.clash) {
            const Position at = syntax.children[places[*unified.clash]]->at;
            return fail(at, unified.notDate.empty()
                                ? fmt::format("one result is of type {} and this of type {}",
                                              typeName(unified.clashesWith), typeName(results[*unified.clash]->type))
                                : notADate(unified) + kTextOfDate);
        }
        node->type = unified.type;
        for (std::size_t i = 0; i < places.size(); ++i)
            node->children[places[i]] = std::move(results[i]);
        // Without an else the value is null.
        if (node->children.size() % 2 == 0)
            node->children.push_back(makeConstant({}));
        return node;
    }

    NodePtr call(const Syntax& syntax) {
        const Function* function = findFunction(lowerText(syntax.text));
        if (!function)
            return fail(syntax.at, noFunction(syntax.text));
        const auto count = static_cast<int>(syntax.children.size());
        if (count < function->minimum || count > function->maximum)
            return fail(syntax.at, wrongCount(*function, count));
        std::vector<NodePtr> arguments;
        for (const auto& part : syntax.children) {
            arguments.push_back(build(*part));
            if (!arguments.back())
                return nullptr;
        }
        // A text next to a date is a date here even if all others are compared as texts.
        const bool hasDates =
            function->form == Form::Compare && (arguments[0]->type == Type::Date || arguments[1]->type == Type::Date);
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const Position at = syntax.children[i]->at;
            const char letter = function->parameters[std::min(i, function->parameters.size() - 1)];
            Type type = hasDates && i < 2 ? Type::Date : typeOf(letter);
            if ((function->form == Form::FormattedDate || function->form == Form::ReadNumber) && i == 0 && count > 1)
                type = Type::Text;
            arguments[i] = converted(std::move(arguments[i]), type, at);
            if (!arguments[i])
                return nullptr;
            if (letter == 'S' && !isFixedText(*arguments[i]))
                return fail(at, fmt::format("{} wants a fixed text here", function->name));
        }
        return finish(*function, std::move(arguments), syntax);
    }
    static std::string wrongCount(const Function& function, int count) {
        const auto arguments = [](int number) { return fmt::format("{} argument{}", number, number == 1 ? "" : "s"); };
        if (function.minimum == function.maximum)
            return fmt::format("{} takes {}, not {}", function.name, arguments(function.minimum), count);
        if (count > function.maximum && function.maximum == kMostArguments)
            return fmt::format("{} takes at most {}, not {}", function.name, arguments(kMostArguments), count);
        if (function.maximum == kMostArguments)
            return fmt::format("{} takes at least {}, not {}", function.name, arguments(function.minimum), count);
        return fmt::format("{} takes {} to {}, not {}", function.name, function.minimum, arguments(function.maximum),
                           count);
    }

    NodePtr finish(const Function& function, std::vector<NodePtr> arguments, const Syntax& syntax) {
        switch (function.form) {
        case Form::IsNull:
            return made(NodeKind::IsNull, Type::Boolean, std::move(arguments));
        case Form::Regular: {
            auto matcher = m_patterns.regular(arguments[1]->text);
            return withPattern(std::move(arguments), std::move(matcher), syntax);
        }
        case Form::Wildcard:
            if (isFixedText(*arguments[1])) {
                auto matcher = m_patterns.wildcard(arguments[1]->text);
                return withPattern(std::move(arguments), std::move(matcher), syntax);
            }
            break;
        case Form::Extraction:
            return prepared(function, m_patterns.extraction(arguments[1]->text), arguments, syntax);
        case Form::Replacement:
            return prepared(function, m_patterns.replacement(arguments[1]->text, arguments[2]->text), arguments,
                            syntax);
        case Form::FormattedDate:
            if (arguments.size() > 1)
                return prepared(function, prepareDateFormat(arguments[1]->text), arguments, syntax);
            break;
        case Form::ReadNumber:
            if (arguments.size() > 1)
                return prepared(function, prepareNumberReading(arguments[1]->text), arguments, syntax);
            break;
        case Form::Fits:
            return prepared(function, prepareFit(arguments[1]->text), arguments, syntax);
        case Form::Now:
            return makeConstant(Value::ofDate(m_now));
        case Form::Today:
            return makeConstant(Value::ofDate(dayOf(m_now) * kTicksPerDay));
        case Form::FirstNonNull:
        case Form::OneType:
        case Form::InList:
            if (NodePtr node = ofCells(arguments, function, syntax))
                return node;
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
        case Form::Compare:
            break;
        }
        const Type type = function.result == 'a' ? typeAmong(arguments) : typeOf(function.result);
        NodePtr node = made(NodeKind::Call, type, std::move(arguments));
        node->function = &function;
        return node;
    }

    /// A call of a function that was prepared for its fixed arguments; an error is about the second one.
    NodePtr prepared(const Function& function, const Prepared& ready, std::vector<NodePtr>& arguments,
                     const Syntax& syntax) {
        if (!ready)
            return fail(syntax.children[1]->at, ready.error().text);
        NodePtr node = made(NodeKind::Call, typeOf(function.result), std::move(arguments));
        node->function = &function;
        node->prepared = *ready;
        return node;
    }

    static bool isOrder(const Function& function) {
        return function.implementation == number_functions::greatest ||
               function.implementation == number_functions::least ||
               function.implementation == number_functions::between;
    }
    /// The call, when it compares columns of tables.
    NodePtr ofCells(std::vector<NodePtr>& arguments, const Function& function, const Syntax& syntax) {
        if (m_columns == Columns::Texts)
            return nullptr;
        if (function.form != Form::FirstNonNull)
            remark(syntax.at, remarkOnCells(arguments, isOrder(function)));
        return cellCall(function, arguments, m_folder);
    }

    bool bringToOneType(std::vector<NodePtr>& arguments, const Function& function, const Syntax& syntax) {
        const bool isOrdered = isOrder(function);
        const bool isChoice = function.form == Form::FirstNonNull;
        const Unification unification = isChoice    ? Unification::Chosen
                                        : isOrdered ? Unification::Ordered
                                                    : Unification::Equated;
        if (!isChoice)
            remark(syntax.at, remarkOnTypes(arguments, isOrdered));
        const Unified unified = unify(arguments, unification, m_folder);
        if (!unified.clash)
            return true;
        fail(syntax.children[*unified.clash]->at,
             unified.notDate.empty()
                 ? fmt::format("{} cannot combine {} with {}", function.name, typeName(arguments[*unified.clash]->type),
                               typeName(unified.clashesWith))
                 : notADate(unified) + (isChoice ? kTextOfDate : ""));
        return false;
    }

    NodePtr withPattern(std::vector<NodePtr> arguments, FixedPatterns::Made matcher, const Syntax& syntax) {
        if (!matcher)
            return fail(syntax.children[1]->at, matcher.error().text);
        return matching(std::move(arguments), std::move(matcher).value());
    }

    std::span<const Field> m_fields;
    Wanted m_wanted;
    std::int64_t m_now;
    Columns m_columns;
    ConstantFolder m_folder;
    FixedPatterns m_patterns;
    std::optional<ExpressionError> m_error;
    std::optional<ExpressionError> m_remark;
};

} // namespace

Checked check(const Syntax& syntax, std::size_t size, std::span<const Field> fields, Wanted wanted, std::int64_t now,
              Columns columns) {
    Builder builder(size, fields, wanted, now, columns);
    NodePtr tree = builder.result(syntax);
    return {std::move(tree), builder.takeError(), builder.takeRemark()};
}

} // namespace tavix::expression
