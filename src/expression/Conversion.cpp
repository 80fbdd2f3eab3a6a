#include "expression/Conversion.h"

#include "base/DateTicks.h"
#include "base/NumberText.h"
#include "expression/NumberReader.h"
#include "expression/TextOperators.h"

#include <fmt/format.h>

#include <cmath>

namespace tavix::expression {

namespace {

constexpr std::string_view kTooLarge = "an integer exceeds 64 bits";

Value toText(const Value& value, Scratch& scratch) {
    switch (value.type) {
    case Type::Boolean:
        return Value::ofText(value.boolean ? "true" : "false");
    case Type::Integer: {
        const fmt::format_int text(value.integer);
        return Value::ofText(scratch.keep({text.data(), text.size()}));
    }
    case Type::Real:
        return Value::ofText(scratch.keep(formatReal(value.real)));
    case Type::Date:
        return Value::ofText(scratch.keep(formatDate(value.integer)));
    default:
        return {};
    }
}

Value toInteger(double value, Scratch& scratch) {
    constexpr double kBeyond = 9223372036854775808.0; // 2 to the power of 63
    if (value >= -kBeyond && value < kBeyond)
        return Value::ofInteger(static_cast<std::int64_t>(value));
    scratch.fail(std::string(kTooLarge));
    return {};
}

Value toInteger(const Value& value, Scratch& scratch) {
    if (value.type == Type::Real)
        return toInteger(value.real, scratch);
    if (value.type != Type::Text)
        return {};
    if (const auto integer = parseInteger(value.text))
        return Value::ofInteger(*integer);
    const auto real = parseNumber(value.text);
    return real ? toInteger(*real, scratch) : Value{};
}

Value toReal(const Value& value) {
    if (value.type == Type::Integer)
        return Value::ofReal(static_cast<double>(value.integer));
    if (value.type != Type::Text)
        return {};
    const Value number = numberOfText(value.text);
    return number.type == Type::Integer ? Value::ofReal(static_cast<double>(number.integer)) : number;
}

bool equalsWord(std::string_view text, std::string_view word) {
    std::string lower;
    appendLower(lower, text);
    return lower == word;
}

Value toBoolean(const Value& value) {
    if (value.type != Type::Text)
        return {};
    if (equalsWord(value.text, "true"))
        return Value::ofBoolean(true);
    return equalsWord(value.text, "false") ? Value::ofBoolean(false) : Value{};
}

template <typename T>
int order(T left, T right) {
    return left < right ? -1 : right < left ? 1 : 0;
}

} // namespace

Value convert(const Value& value, Type type, Scratch& scratch) {
    if (value.isNull() || value.type == type)
        return value;
    switch (type) {
    case Type::Text:
        return toText(value, scratch);
    case Type::Integer:
        return toInteger(value, scratch);
    case Type::Real:
        return toReal(value);
    case Type::Boolean:
        return toBoolean(value);
    case Type::Date: {
        const auto date = value.type == Type::Text ? parseDate(value.text) : std::nullopt;
        return date ? Value::ofDate(*date) : Value{};
    }
    case Type::Null:
        break;
    }
    return {};
}

Value readCell(const Value& cell, Type type, std::string_view field, Scratch& scratch) {
    if (cell.type == Type::Date && !isSupportedDate(cell.integer)) {
        scratch.fail(fmt::format("the field `{}` holds a date outside the years 1 to 9999", field));
        return {};
    }
    if (cell.type == Type::Real && !std::isfinite(cell.real))
        return {};
    const Value value = convert(cell, type, scratch);
    const bool isLost = value.isNull() && !cell.isNull();
    if (isLost && !(cell.type == Type::Text && isBlank(cell.text))) {
        constexpr std::int64_t kShown = 40;
        const Value shown = convert(cell, Type::Text, scratch);
        scratch.fail(fmt::format("the field `{}` holds \"{}\", which is not of type {}", field,
                                 leftOf(shown.text, kShown), typeName(type)));
    }
    return value;
}

int compareValues(const Value& left, const Value& right) {
    if (left.type == Type::Text)
        return compareTexts(left.text, right.text);
    if (left.type == Type::Boolean)
        return order(left.boolean, right.boolean);
    if (left.type == Type::Real || right.type == Type::Real) {
        const auto asReal = [](const Value& value) {
            return value.type == Type::Real ? value.real : static_cast<double>(value.integer);
        };
        return order(asReal(left), asReal(right));
    }
    return order(left.integer, right.integer);
}

bool holds(Comparison comparison, int order) {
    switch (comparison) {
    case Comparison::Equal:
        return order == 0;
    case Comparison::NotEqual:
        return order != 0;
    case Comparison::Less:
        return order < 0;
    case Comparison::LessOrEqual:
        return order <= 0;
    case Comparison::Greater:
        return order > 0;
    case Comparison::GreaterOrEqual:
        return order >= 0;
    }
    return false;
}

Comparison mirrored(Comparison comparison) {
    switch (comparison) {
    case Comparison::Less:
        return Comparison::Greater;
    case Comparison::LessOrEqual:
        return Comparison::GreaterOrEqual;
    case Comparison::Greater:
        return Comparison::Less;
    case Comparison::GreaterOrEqual:
        return Comparison::LessOrEqual;
    default:
        return comparison;
    }
}

Value finite(double value) {
    return std::isfinite(value) ? Value::ofReal(value) : Value{};
}

namespace {

Value calculateReals(Arithmetic operation, double left, double right) {
    switch (operation) {
    case Arithmetic::Add:
        return finite(left + right);
    case Arithmetic::Subtract:
        return finite(left - right);
    case Arithmetic::Multiply:
        return finite(left * right);
    case Arithmetic::Divide:
        return right == 0.0 ? Value{} : finite(left / right);
    case Arithmetic::Remainder:
        return right == 0.0 ? Value{} : finite(std::fmod(left, right));
    }
    return {};
}

} // namespace

Value calculate(Arithmetic operation, const Value& left, const Value& right, Scratch& scratch) {
    if (left.type == Type::Real)
        return calculateReals(operation, left.real, right.real);
    std::int64_t result = 0;
    bool isTooLarge = false;
    switch (operation) {
    case Arithmetic::Add:
        isTooLarge = __builtin_add_overflow(left.integer, right.integer, &result);
        break;
    case Arithmetic::Subtract:
        isTooLarge = __builtin_sub_overflow(left.integer, right.integer, &result);
        break;
    case Arithmetic::Multiply:
        isTooLarge = __builtin_mul_overflow(left.integer, right.integer, &result);
        break;
    case Arithmetic::Divide: // the checker converts divisions to reals
    case Arithmetic::Remainder:
        if (right.integer == 0)
            return {};
        result = right.integer == -1 ? 0 : left.integer % right.integer;
        break;
    }
    if (isTooLarge) {
        scratch.fail(std::string(kTooLarge));
        return {};
    }
    return Value::ofInteger(result);
}

Value negate(const Value& value, Scratch& scratch) {
    if (value.type == Type::Real)
        return Value::ofReal(-value.real);
    return calculate(Arithmetic::Subtract, Value::ofInteger(0), value, scratch);
}

} // namespace tavix::expression
