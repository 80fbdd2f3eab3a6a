#include "blocks/tests/ReferenceValues.h"

#include "base/Characters.h"
#include "base/DateTicks.h"
#include "base/NumberText.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace tavix::expression::reference {

namespace {

template <typename T>
int order(const T& left, const T& right) {
    return left < right ? -1 : right < left ? 1 : 0;
}

template <typename Map>
Text mapEach(Text text, Map map) {
    for (char32_t& c : text)
        c = c >= kBytes ? c : static_cast<char32_t>(map(static_cast<UChar32>(c)));
    return text;
}

} // namespace

bool isNull(const Value& value) {
    return value.index() == 0;
}
const Text& textOf(const Value& value) {
    return std::get<Text>(value);
}
std::int64_t integerOf(const Value& value) {
    return std::get<std::int64_t>(value);
}

Value toText(const Value& value) {
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return decode(std::to_string(*integer));
    if (const auto* real = std::get_if<double>(&value))
        return decode(formatReal(*real));
    if (const auto* boolean = std::get_if<bool>(&value))
        return decode(*boolean ? "true" : "false");
    return value;
}

double toReal(const Value& value) {
    const auto* integer = std::get_if<std::int64_t>(&value);
    return integer ? static_cast<double>(*integer) : std::get<double>(value);
}

int compareTexts(const Text& left, const Text& right) {
    const auto isBad = [](char32_t c) { return c >= kBytes; };
    if (std::ranges::any_of(left, isBad) || std::ranges::any_of(right, isBad))
        return encode(left).compare(encode(right));
    return left.compare(right);
}

int compareAny(const Value& left, const Value& right) {
    if (std::holds_alternative<Text>(left) || std::holds_alternative<Text>(right))
        return compareTexts(textOf(toText(left)), textOf(toText(right)));
    if (std::holds_alternative<bool>(left))
        return order(std::get<bool>(left), std::get<bool>(right));
    if (std::holds_alternative<std::int64_t>(left) && std::holds_alternative<std::int64_t>(right))
        return order(integerOf(left), integerOf(right));
    return order(toReal(left), toReal(right));
}

Value asNumber(const Value& value) {
    const std::string text = encode(textOf(value));
    if (const auto integer = parseInteger(text))
        return *integer;
    const auto real = parseNumber(text);
    return real ? Value(*real) : value;
}

namespace {

/// Whole numbers of any size.
int compareDigits(const std::string& left, const std::string& right) {
    const auto isNegative = [](const std::string& text) { return text.starts_with('-'); };
    const auto digits = [](const std::string& text) {
        const std::size_t first = text.find_first_not_of("+-0");
        return first == std::string::npos ? std::string() : text.substr(first);
    };
    if (digits(left).empty() && digits(right).empty())
        return 0;
    if (isNegative(left) != isNegative(right) || digits(left).empty() || digits(right).empty()) {
        const auto sign = [&](const std::string& text) { return digits(text).empty() ? 0 : isNegative(text) ? -1 : 1; };
        return order(sign(left), sign(right));
    }
    const std::string a = digits(isNegative(left) ? right : left);
    const std::string b = digits(isNegative(left) ? left : right);
    return a.size() != b.size() ? order(a.size(), b.size()) : a.compare(b);
}

bool isWhole(const Text& text) {
    return text.find_first_of(U".eE") == Text::npos;
}

} // namespace

std::optional<double> readNumber(const Text& cell) {
    return isNumber(cell) ? parseNumber(encode(cell)) : std::nullopt;
}

bool isPlainNumber(const Text& cell) {
    const std::size_t first = cell.find_first_not_of(U"+-");
    const bool isPadded =
        cell.size() > first + 1 && cell[first] == U'0' && cell[first + 1] >= U'0' && cell[first + 1] <= U'9';
    return readNumber(cell) && !isPadded;
}

bool isDate(const Text& cell) {
    return parseDate(encode(cell)).has_value();
}

std::optional<int> orderOfCell(const Text& cell, const Value& number) {
    const auto value = readNumber(cell);
    if (!value)
        return std::nullopt;
    if (const auto* integer = std::get_if<std::int64_t>(&number); integer && isWhole(cell))
        return compareDigits(encode(cell), std::to_string(*integer));
    return order(*value, toReal(number));
}

int orderOfCells(const Text& left, const Text& right) {
    if (isPlainNumber(left) && isPlainNumber(right))
        return isWhole(left) && isWhole(right) ? compareDigits(encode(left), encode(right))
                                               : order(*readNumber(left), *readNumber(right));
    if (isDate(left) && isDate(right))
        return order(*parseDate(encode(left)), *parseDate(encode(right)));
    return compareTexts(left, right);
}

Value isAmong(const std::vector<Value>& values, const std::function<bool(std::size_t)>& equals) {
    if (isNull(values.front()))
        return {};
    for (std::size_t i = 1; i < values.size(); ++i)
        if (!isNull(values[i]) && equals(i))
            return true;
    return std::any_of(values.begin() + 1, values.end(), isNull) ? Value() : Value(false);
}

double roundedToOnePlace(double value) {
    const std::string text = formatReal(value);
    const std::size_t point = text.find('.');
    if (point == std::string::npos || text.find_first_of("eE") != std::string::npos || text.size() < point + 3)
        return value;
    const double cut = *parseNumber(text.substr(0, point + 2));
    if (text[point + 2] < '5')
        return cut;
    return std::round(cut * 10 + (value < 0 ? -1 : 1)) / 10;
}

Text lower(const Text& text) {
    return mapEach(text, [](UChar32 c) { return u_tolower(c); });
}
Text upper(const Text& text) {
    return mapEach(text, [](UChar32 c) { return u_toupper(c); });
}

bool isSpace(char32_t c) {
    return c < kBytes && u_isUWhiteSpace(static_cast<UChar32>(c));
}
Text trimmed(Text text, bool left, bool right) {
    while (left && !text.empty() && isSpace(text.front()))
        text.erase(0, 1);
    while (right && !text.empty() && isSpace(text.back()))
        text.pop_back();
    return text;
}

Text substring(const Text& text, std::int64_t first, std::int64_t count) {
    Text out;
    for (std::int64_t i = 0; i < static_cast<std::int64_t>(text.size()); ++i) {
        if (i + 1 >= first && i + 1 < first + count)
            out += text[static_cast<std::size_t>(i)];
    }
    return out;
}

Text replaced(const Text& text, const Text& from, const Text& to) {
    if (from.empty())
        return text;
    Text out;
    for (std::size_t i = 0; i < text.size();) {
        if (text.compare(i, from.size(), from) == 0) {
            out += to;
            i += from.size();
        } else {
            out += text[i++];
        }
    }
    return out;
}

bool fits(const Text& text, const Text& pattern) {
    std::vector<bool> before(text.size() + 1); // which beginnings of the text fit the pattern so far
    before[0] = true;
    for (const char32_t sign : pattern) {
        std::vector<bool> now(text.size() + 1);
        now[0] = sign == U'*' && before[0];
        for (std::size_t t = 0; t < text.size(); ++t)
            now[t + 1] = sign == U'*' ? now[t] || before[t + 1] : (sign == U'?' || sign == text[t]) && before[t];
        before = now;
    }
    return before[text.size()];
}

bool isControl(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c <= 0x9F);
}

bool isNumber(const Text& text) {
    std::size_t i = 0;
    const auto digits = [&] {
        std::size_t count = 0;
        for (; i < text.size() && text[i] >= U'0' && text[i] <= U'9'; ++i)
            ++count;
        return count;
    };
    const auto sign = [&] { i += i < text.size() && (text[i] == U'-' || text[i] == U'+') ? 1 : 0; };
    sign();
    std::size_t count = digits();
    if (i < text.size() && text[i] == U'.') {
        ++i;
        count += digits();
    }
    if (count == 0)
        return false;
    if (i < text.size() && (text[i] == U'e' || text[i] == U'E')) {
        ++i;
        sign();
        if (digits() == 0)
            return false;
    }
    return i == text.size();
}

std::optional<bool> truth(const Value& value) {
    return isNull(value) ? std::nullopt : std::optional(std::get<bool>(value));
}
Value fromTruth(std::optional<bool> truth) {
    return truth ? Value(*truth) : Value();
}

Text decode(std::string_view utf8) {
    Text out;
    for (std::size_t at = 0; at < utf8.size();) {
        const auto byte = static_cast<unsigned char>(utf8[at]);
        const std::int32_t character = nextCharacter(utf8, at);
        out += character < 0 ? kBytes + byte : static_cast<char32_t>(character);
    }
    return out;
}

std::string encode(const Text& text) {
    std::string out;
    for (const char32_t c : text) {
        if (c >= kBytes)
            out += static_cast<char>(c - kBytes);
        else
            appendCharacter(out, static_cast<std::int32_t>(c));
    }
    return out;
}

Text capitalized(const Text& text) {
    Text out;
    bool isInWord = false;
    for (const char32_t c : text) {
        const bool isOfWord = c < kBytes && u_isalnum(static_cast<UChar32>(c)) != 0;
        out += isInWord ? lower(Text(1, c)) : isOfWord ? upper(Text(1, c)) : Text(1, c);
        isInWord = isOfWord;
    }
    return out;
}

Text withoutAccents(Text text) {
    const std::u32string_view accented = U"éÉİ\u212A";
    for (char32_t& c : text)
        if (const std::size_t at = accented.find(c); at != Text::npos)
            c = U"eEIK"[at];
    return text;
}

Value firstDigits(const Text& text) {
    const std::u32string_view digits = U"0123456789";
    const std::size_t begin = text.find_first_of(digits);
    if (begin == Text::npos)
        return {};
    return text.substr(begin, text.find_first_not_of(digits, begin) - begin);
}

bool isLuhn(const Text& text) {
    Text digits;
    for (const char32_t c : text) {
        if (c >= U'0' && c <= U'9')
            digits += c;
        else if (c != U' ' && c != U'-')
            return false;
    }
    const auto isEdge = [](char32_t c) { return c == U' ' || c == U'-'; };
    if (digits.size() < 2 || isEdge(text.front()) || isEdge(text.back()))
        return false;
    int sum = 0;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const int digit = static_cast<int>(digits[digits.size() - 1 - i] - U'0');
        const int doubled = 2 * digit;
        sum += i % 2 == 0 ? digit : doubled / 10 + doubled % 10;
    }
    return sum % 10 == 0;
}

Civil civilOf(std::int64_t ticks) {
    std::int64_t days = ticks / kTicksPerDay - (ticks % kTicksPerDay < 0 ? 1 : 0);
    const auto isLeap = [](std::int64_t year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); };
    const auto daysOf = [&](const Civil& at) {
        constexpr std::array<std::int64_t, 12> kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        return kDays[static_cast<std::size_t>(at.month - 1)] + (at.month == 2 && isLeap(at.year) ? 1 : 0);
    };
    Civil at;
    for (; days < 0; --at.year)
        days += isLeap(at.year - 1) ? 366 : 365;
    while (days >= daysOf(at)) {
        days -= daysOf(at);
        at.month = at.month % 12 + 1;
        if (at.month == 1)
            ++at.year;
    }
    at.day = days + 1;
    return at;
}

} // namespace tavix::expression::reference
