#pragma once

#include "base/Ascii.h"
#include "base/NumberText.h"
#include "expression/Value.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tavix::expression {

namespace number_reader {

/// Numbers with this many digits fit 64 bits; with that many, a double is exact.
inline constexpr std::size_t kInteger = 18;
inline constexpr std::size_t kExact = 15;
inline constexpr std::array<double, kExact + 1> kPowers{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

/// Any length and exponent.
[[nodiscard]] inline Value readLong(std::string_view text) {
    if (const auto integer = parseInteger(text))
        return Value::ofInteger(*integer);
    const auto real = parseNumber(text);
    return real ? Value::ofReal(*real) : Value{};
}

} // namespace number_reader

/// The number that a text represents by the rule of isnumber(): an Integer within 64 bits, else a Real; null when it is
/// not one. Filters read millions of texts, so the common short forms are read here.
[[nodiscard]] inline Value numberOfText(std::string_view text) {
    using namespace number_reader;
    std::size_t at = !text.empty() && (text.front() == '-' || text.front() == '+') ? 1 : 0;
    const bool isNegative = at == 1 && text.front() == '-';
    const std::size_t begin = at;
    std::uint64_t number = 0; // wraps around for long numbers, which are read again
    for (; at < text.size() && isAsciiDigit(text[at]); ++at)
        number = number * 10 + static_cast<std::uint64_t>(text[at] - '0');
    const std::size_t whole = at - begin;
    if (at == text.size() && whole > 0 && whole <= kInteger) {
        const auto value = static_cast<std::int64_t>(number);
        return Value::ofInteger(isNegative ? -value : value);
    }
    std::size_t places = 0;
    if (at < text.size() && text[at] == '.') {
        for (++at; at < text.size() && isAsciiDigit(text[at]); ++at, ++places)
            number = number * 10 + static_cast<std::uint64_t>(text[at] - '0');
    }
    if (whole + places == 0 || (at < text.size() && text[at] != 'e' && text[at] != 'E'))
        return {};
    if (at == text.size() && whole + places <= kExact) {
        // Both are exact, so the quotient is the double nearest to the text.
        const double value = static_cast<double>(number) / kPowers[places];
        return Value::ofReal(isNegative ? -value : value);
    }
    return readLong(text);
}

} // namespace tavix::expression
