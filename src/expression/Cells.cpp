#include "expression/Cells.h"

#include "expression/Conversion.h"
#include "expression/NumberReader.h"
#include "expression/TextOperators.h"
#include "forms/ValueKind.h"

namespace tavix::expression {

namespace {

using forms::ValueKind;

bool isNumberKind(ValueKind kind) {
    return kind == ValueKind::Integer || kind == ValueKind::Real;
}

template <typename Number>
int order(Number left, Number right) {
    return left < right ? -1 : right < left ? 1 : 0;
}

} // namespace

std::optional<int> orderOfCell(std::string_view cell, const Value& number) {
    constexpr double kBeyond = 9223372036854775808.0; // 2 to the power of 63
    const Value value = numberOfText(cell);
    if (value.isNull())
        return std::nullopt;
    // As doubles, an integer beyond 64 bits would equal the nearest ones within.
    if (value.type == Type::Real && number.type == Type::Integer && value.real >= kBeyond)
        return 1;
    return compareValues(value, number);
}

bool isPlainNumber(std::string_view cell) {
    return isNumberKind(forms::kindOf(cell));
}

int orderOfCells(std::string_view left, std::string_view right) {
    if (left == right)
        return 0;
    const ValueKind leftKind = forms::kindOf(left);
    const ValueKind rightKind = leftKind == ValueKind::Text ? leftKind : forms::kindOf(right);
    if (leftKind == ValueKind::Integer && rightKind == ValueKind::Integer)
        return forms::compareIntegers(left, right);
    if (isNumberKind(leftKind) && isNumberKind(rightKind))
        return order(forms::realValue(left), forms::realValue(right));
    if (leftKind == ValueKind::Date && rightKind == ValueKind::Date)
        return order(forms::dateValue(left), forms::dateValue(right));
    return compareTexts(left, right);
}

Value compareCell(Comparison comparison, std::string_view cell, const Value& other) {
    if (other.type == Type::Text)
        return Value::ofBoolean(holds(comparison, orderOfCells(cell, other.text)));
    if (const auto order = orderOfCell(cell, other))
        return Value::ofBoolean(holds(comparison, *order));
    if (comparison == Comparison::Equal || comparison == Comparison::NotEqual)
        return Value::ofBoolean(comparison == Comparison::NotEqual);
    return {};
}

} // namespace tavix::expression
