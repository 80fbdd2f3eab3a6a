#include "forms/WrittenNumber.h"

#include "base/Ascii.h"
#include "base/NumberText.h"

#include <array>
#include <cstddef>
#include <string>

namespace tavix::forms {

namespace {

constexpr std::size_t kGroup = 3;
/// Numbers of at most this many characters without an exponent lie within the range of a double.
constexpr std::size_t kSurelyInRange = 300;
constexpr std::string_view kMinusSign = "\xE2\x88\x92"; // U+2212
constexpr std::string_view kNoBreakBlank = "\xC2\xA0";
constexpr std::string_view kNarrowNoBreakBlank = "\xE2\x80\xAF";
/// The characters between groups of digits, besides the other decimal mark.
constexpr std::array<std::string_view, 6> kSeparators{
    " ", "'", kNoBreakBlank, kNarrowNoBreakBlank, "\xE2\x80\x89" /* thin space */, "\xE2\x80\x99" /* apostrophe */};

std::size_t digitsAt(std::string_view text, std::size_t at) {
    std::size_t end = at;
    while (end < text.size() && isAsciiDigit(text[end]))
        ++end;
    return end - at;
}

/// The separator of groups that the text begins with; empty without one.
std::string_view separatorAt(std::string_view text, char mark) {
    if (text.empty())
        return {};
    if (text.front() == (mark == '.' ? ',' : '.'))
        return text.substr(0, 1);
    if (isAsciiDigit(text.front()) || text.front() == mark)
        return {};
    for (const std::string_view separator : kSeparators)
        if (text.front() == separator.front() && text.starts_with(separator))
            return separator;
    return {};
}

/// Moves past the digits before the decimal mark. False if they are grouped wrongly.
bool takeWhole(std::string_view text, char mark, std::size_t& at, MarkReading& reading) {
    const std::size_t first = digitsAt(text, 0);
    at = first;
    const std::string_view separator = separatorAt(text.substr(at), mark);
    if (!separator.empty()) {
        if (first == 0 || first > kGroup)
            return false;
        while (text.substr(at).starts_with(separator)) {
            if (digitsAt(text, at + separator.size()) != kGroup)
                return false;
            at += separator.size() + kGroup;
        }
        reading.isGrouped = true;
    }
    return text.front() != '0' || (first == 1 && !reading.isGrouped);
}

/// Moves past an exponent. False if it has no digits.
bool takeExponent(std::string_view text, std::size_t& at) {
    ++at;
    at += at < text.size() && (text[at] == '+' || text[at] == '-') ? 1 : 0;
    const std::size_t digits = digitsAt(text, at);
    at += digits;
    return digits > 0;
}

std::string plainDigits(std::string_view digits, char mark, bool isNegative) {
    std::string plain(isNegative ? "-" : "");
    for (const char c : digits)
        if (isAsciiDigit(c) || c == 'e' || c == 'E' || c == '+' || c == '-')
            plain += c;
        else if (c == mark)
            plain += '.';
    return plain;
}

std::optional<double> doubleOf(std::string_view digits, char mark, bool isNegative) {
    return parseNumber(plainDigits(digits, mark, isNegative));
}

MarkReading readDigits(std::string_view text, char mark) {
    MarkReading reading;
    std::size_t at = 0;
    if (!takeWhole(text, mark, at, reading))
        return {};
    const std::size_t whole = at;
    reading.isWhole = true;
    std::size_t places = 0;
    if (at < text.size() && text[at] == mark) {
        reading.isWhole = false;
        places = digitsAt(text, ++at);
        at += places;
        // "5." is a number, as everywhere; a comma at the end is punctuation.
        if (places == 0 && (mark == ',' || reading.isGrouped))
            return {};
    }
    if (whole + places == 0)
        return {};
    const bool hasExponent = at < text.size() && (text[at] == 'e' || text[at] == 'E');
    if (hasExponent) {
        reading.isWhole = false;
        if (reading.isGrouped || !takeExponent(text, at))
            return {};
    }
    if (at != text.size())
        return {};
    if ((hasExponent || text.size() > kSurelyInRange) && !doubleOf(text, mark, false))
        return {};
    reading.reads = true;
    return reading;
}

bool takeStart(std::string_view& text, std::string_view what) {
    if (text.empty() || text.front() != what.front() || !text.starts_with(what))
        return false;
    text.remove_prefix(what.size());
    return true;
}

bool takeEnd(std::string_view& text, std::string_view what) {
    if (text.empty() || text.back() != what.back() || !text.ends_with(what))
        return false;
    text.remove_suffix(what.size());
    return true;
}

void takeBlankAtStart(std::string_view& text) {
    if (!takeStart(text, " ") && !takeStart(text, kNoBreakBlank))
        takeStart(text, kNarrowNoBreakBlank);
}

void takeBlankAtEnd(std::string_view& text) {
    if (!takeEnd(text, " ") && !takeEnd(text, kNoBreakBlank))
        takeEnd(text, kNarrowNoBreakBlank);
}

/// Removes a sign; the mark of the number that it gives.
std::optional<NegativeMark> takeSign(std::string_view& text) {
    if (takeStart(text, "-") || takeStart(text, kMinusSign))
        return NegativeMark::Before;
    return takeStart(text, "+") ? std::optional(NegativeMark::None) : std::nullopt;
}

} // namespace

double WrittenNumber::value(char mark) const {
    return doubleOf(digits, mark, negative != NegativeMark::None).value_or(0.0);
}

std::optional<std::int64_t> WrittenNumber::integer(char mark) const {
    return parseInteger(plainDigits(digits, mark, negative != NegativeMark::None));
}

std::optional<WrittenNumber> readNumber(std::string_view text) {
    WrittenNumber number;
    bool hasSign = false;
    if (text.size() > 2 && text.front() == '(' && text.back() == ')') {
        text = text.substr(1, text.size() - 2);
        number.negative = NegativeMark::Parentheses;
        hasSign = true;
    }
    const auto trySign = [&] {
        if (hasSign)
            return;
        if (const auto sign = takeSign(text)) {
            number.negative = *sign;
            hasSign = true;
        }
    };
    trySign();
    number.unit = takeUnitAtStart(text);
    if (number.unit != kNoUnit) {
        takeBlankAtStart(text);
        trySign();
    } else {
        number.unit = takeUnitAtEnd(text);
        if (number.unit != kNoUnit)
            takeBlankAtEnd(text);
    }
    if (!hasSign && (takeEnd(text, "-") || takeEnd(text, kMinusSign)))
        number.negative = NegativeMark::After;
    if (text.empty())
        return std::nullopt;
    number.digits = text;
    number.point = readDigits(text, '.');
    number.comma = readDigits(text, ',');
    if (!number.point.reads && !number.comma.reads)
        return std::nullopt;
    return number;
}

} // namespace tavix::forms
