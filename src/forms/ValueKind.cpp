#include "forms/ValueKind.h"

#include "base/Ascii.h"
#include "base/Characters.h"
#include "base/DateTicks.h"
#include "base/NumberText.h"

#include <algorithm>
#include <cstddef>

namespace tavix::forms {

namespace {

std::size_t digitsAt(std::string_view text, std::size_t at) {
    std::size_t end = at;
    while (end < text.size() && isAsciiDigit(text[end]))
        ++end;
    return end - at;
}

/// Numbers of at most this many characters without an exponent lie within the range of a double.
constexpr std::size_t kSurelyInRange = 300;

ValueKind numberKind(std::string_view text) {
    std::size_t i = text.front() == '+' || text.front() == '-' ? 1 : 0;
    const std::size_t whole = digitsAt(text, i);
    if (whole > 1 && text[i] == '0')
        return ValueKind::Text;
    i += whole;
    std::size_t places = 0;
    bool isReal = false;
    if (i < text.size() && text[i] == '.') {
        isReal = true;
        places = digitsAt(text, ++i);
        i += places;
    }
    if (whole + places == 0)
        return ValueKind::Text;
    bool hasExponent = false;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        hasExponent = true;
        isReal = true;
        ++i;
        i += i < text.size() && (text[i] == '+' || text[i] == '-') ? 1 : 0;
        const std::size_t exponent = digitsAt(text, i);
        if (exponent == 0)
            return ValueKind::Text;
        i += exponent;
    }
    if (i != text.size())
        return ValueKind::Text;
    if ((hasExponent || text.size() > kSurelyInRange) && !parseNumber(text))
        return ValueKind::Text;
    return isReal ? ValueKind::Real : ValueKind::Integer;
}

std::string_view withoutSign(std::string_view integer) {
    return integer.front() == '+' || integer.front() == '-' ? integer.substr(1) : integer;
}

} // namespace

ValueKind kindOf(std::string_view text) {
    if (text.empty())
        return ValueKind::None;
    const char first = text.front();
    if (isAsciiDigit(first)) {
        if (text.size() >= 10 && text[4] == '-' && digitsAt(text.substr(0, 4), 0) == 4)
            return parseDate(text) ? ValueKind::Date : ValueKind::Text;
        return numberKind(text);
    }
    if (first == '-' || first == '+' || first == '.')
        return numberKind(text);
    if (isAsciiLetter(first)) {
        const bool isBoolean = text.size() == 4   ? equalsIgnoringAsciiCase(text, "true")
                               : text.size() == 5 ? equalsIgnoringAsciiCase(text, "false")
                                                  : false;
        return isBoolean ? ValueKind::Boolean : ValueKind::Text;
    }
    return isBlank(text) ? ValueKind::None : ValueKind::Text;
}

ValueKind kindOf(std::string_view text, ByteMask bytes) {
    using namespace byte_kind; // NOLINT(google-build-using-namespace): a list of these
    if ((bytes & ~(kDigit | kLetters | kDot | kHyphen | kColon | kSpace | kComma | kPlus)) != 0)
        return ValueKind::Text;
    if (bytes == kDigit && text.size() <= kSurelyInRange)
        return text.size() > 1 && text.front() == '0' ? ValueKind::Text : ValueKind::Integer;
    return kindOf(text);
}

ValueKind joinedKind(ValueKind a, ValueKind b) {
    const auto isNumber = [](ValueKind kind) { return kind == ValueKind::Integer || kind == ValueKind::Real; };
    if (a == b || b == ValueKind::None)
        return a;
    if (a == ValueKind::None)
        return b;
    return isNumber(a) && isNumber(b) ? ValueKind::Real : ValueKind::Text;
}

std::optional<FieldType> typeOf(ValueKind kind) {
    switch (kind) {
    case ValueKind::Boolean:
        return FieldType::Boolean;
    case ValueKind::Integer:
        return FieldType::Integer;
    case ValueKind::Real:
        return FieldType::Real;
    case ValueKind::Date:
        return FieldType::Date;
    case ValueKind::Text:
        return FieldType::Text;
    case ValueKind::None:
        break;
    }
    return std::nullopt;
}

bool booleanValue(std::string_view text) {
    return text.size() == 4;
}

std::optional<std::int64_t> integerValue(std::string_view text) {
    return parseInteger(text);
}

int compareIntegers(std::string_view left, std::string_view right) {
    const auto signOf = [](std::string_view text) {
        return withoutSign(text) == "0" ? 0 : text.front() == '-' ? -1 : 1;
    };
    const int sign = signOf(left);
    if (sign != signOf(right))
        return sign - signOf(right);
    const std::string_view a = withoutSign(left);
    const std::string_view b = withoutSign(right);
    const int bySize = a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : a.compare(b);
    return bySize * sign;
}

double realValue(std::string_view text) {
    return parseNumber(text).value_or(0.0);
}

std::int64_t decimalPlaces(std::string_view text) {
    std::size_t atEnd = 0;
    while (atEnd < text.size() && isAsciiDigit(text[text.size() - 1 - atEnd]))
        ++atEnd;
    if (atEnd < text.size() && text[text.size() - 1 - atEnd] == '.')
        return static_cast<std::int64_t>(atEnd); // as nearly all
    const std::size_t exponentAt = text.find_first_of("eE");
    const std::string_view mantissa = text.substr(0, exponentAt);
    const std::size_t point = mantissa.find('.');
    const std::int64_t places =
        point == std::string_view::npos ? 0 : static_cast<std::int64_t>(mantissa.size() - point - 1);
    const std::int64_t exponent =
        exponentAt == std::string_view::npos ? 0 : parseInteger(text.substr(exponentAt + 1)).value_or(0);
    return std::max<std::int64_t>(0, places - exponent);
}

std::int64_t dateValue(std::string_view text) {
    return parseDate(text).value_or(0);
}

} // namespace tavix::forms
