#include "expression/Cells.h"

#include "base/Ascii.h"
#include "base/DateTicks.h"
#include "expression/Conversion.h"
#include "expression/NumberReader.h"
#include "expression/TextOperators.h"

#include <algorithm>

namespace tavix::expression {

namespace {

std::string_view withoutSign(std::string_view number) {
    return number.starts_with('-') || number.starts_with('+') ? number.substr(1) : number;
}

bool isInteger(std::string_view number) {
    return std::ranges::all_of(withoutSign(number), isAsciiDigit);
}

/// Integers without leading zeros, of which one is beyond 64 bits.
int compareLongIntegers(std::string_view left, std::string_view right) {
    const bool isNegative = left.starts_with('-');
    if (isNegative != right.starts_with('-'))
        return isNegative ? -1 : 1;
    const std::string_view a = withoutSign(left);
    const std::string_view b = withoutSign(right);
    const int bySize = a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : a.compare(b);
    return isNegative ? -bySize : bySize;
}

int compareNumbers(std::string_view left, std::string_view right) {
    const Value a = numberOfText(left);
    const Value b = numberOfText(right);
    const bool isLong = a.type == Type::Real || b.type == Type::Real;
    return isLong && isInteger(left) && isInteger(right) ? compareLongIntegers(left, right) : compareValues(a, b);
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
    const std::string_view digits = withoutSign(cell);
    const bool hasLeadingZero = digits.size() > 1 && digits.front() == '0' && isAsciiDigit(digits[1]);
    return !hasLeadingZero && !numberOfText(cell).isNull();
}

int orderOfCells(std::string_view left, std::string_view right) {
    if (left == right)
        return 0;
    const bool isNumber = isPlainNumber(left);
    if (isNumber && isPlainNumber(right))
        return compareNumbers(left, right);
    if (!isNumber) {
        const auto leftDate = parseDate(left);
        const auto rightDate = leftDate ? parseDate(right) : std::nullopt;
        if (rightDate)
            return *leftDate < *rightDate ? -1 : *rightDate < *leftDate ? 1 : 0;
    }
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
