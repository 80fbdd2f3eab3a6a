#include "expression/CheckDigits.h"

#include "base/Ascii.h"

#include <string>
#include <string_view>

namespace tavix::expression::check_digits {

namespace {

constexpr std::size_t kLongestNumber = 64;

/// The letters, in upper case, and digits; empty if there is anything else but blanks and hyphens between them.
std::string compacted(std::string_view text) {
    std::string out;
    if (text.empty() || text.size() > kLongestNumber)
        return out;
    const auto isPart = [](char c) { return isAsciiDigit(c) || isAsciiLetter(c); };
    if (!isPart(text.front()) || !isPart(text.back()))
        return out;
    for (const char c : text) {
        if (isPart(c))
            out += asciiUpper(c);
        else if (c != ' ' && c != '-')
            return {};
    }
    return out;
}

/// The same for a text of digits alone.
std::string digitsOf(std::string_view text) {
    std::string digits = compacted(text);
    for (const char c : digits) {
        if (!isAsciiDigit(c))
            return {};
    }
    return digits;
}

} // namespace

bool isEan(std::string_view text) {
    const std::string digits = digitsOf(text);
    if (digits.size() != 8 && (digits.size() < 12 || digits.size() > 14))
        return false;
    // From the right, the check digit first, digits weigh 1 and 3 in turn.
    int sum = 0;
    int weight = 1;
    for (std::size_t i = digits.size(); i > 0; --i) {
        sum += weight * (digits[i - 1] - '0');
        weight = 4 - weight;
    }
    return sum % 10 == 0;
}

bool isIban(std::string_view text) {
    constexpr std::size_t kShortest = 15;
    constexpr std::size_t kLongest = 34;
    const std::string iban = compacted(text);
    if (iban.size() < kShortest || iban.size() > kLongest || !isAsciiLetter(iban[0]) || !isAsciiLetter(iban[1]) ||
        !isAsciiDigit(iban[2]) || !isAsciiDigit(iban[3]))
        return false;
    // The first four characters move to the end; letters count as 10 to 35.
    int remainder = 0;
    for (const char c : iban.substr(4) + iban.substr(0, 4))
        remainder = (isAsciiDigit(c) ? remainder * 10 + (c - '0') : remainder * 100 + (c - 'A' + 10)) % 97;
    return remainder == 1;
}

bool isLuhn(std::string_view text) {
    const std::string digits = digitsOf(text);
    int sum = 0;
    bool isDoubled = false;
    for (std::size_t i = digits.size(); i > 0; --i) {
        const int digit = (digits[i - 1] - '0') * (isDoubled ? 2 : 1);
        sum += digit > 9 ? digit - 9 : digit;
        isDoubled = !isDoubled;
    }
    return digits.size() > 1 && sum % 10 == 0;
}

Value eanFunction(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofBoolean(isEan(arguments[0].text));
}

Value ibanFunction(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofBoolean(isIban(arguments[0].text));
}

Value luhnFunction(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofBoolean(isLuhn(arguments[0].text));
}

} // namespace tavix::expression::check_digits
