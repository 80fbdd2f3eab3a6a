#include "profiling/ValueKind.h"

#include "base/Characters.h"
#include "base/NumberText.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <chrono>
#include <cstddef>

namespace tavix::profiling {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::size_t digitsAt(std::string_view text, std::size_t at) {
    std::size_t end = at;
    while (end < text.size() && isDigit(text[end]))
        ++end;
    return end - at;
}

bool equalsWord(std::string_view text, std::string_view lowerCaseWord) {
    return text.size() == lowerCaseWord.size() &&
           std::equal(text.begin(), text.end(), lowerCaseWord.begin(),
                      [](char c, char word) { return (c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c) == word; });
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

/// Reads an ISO 8601 date piece by piece; every step fails for good once one has failed.
class DateScanner {
  public:
    explicit DateScanner(std::string_view text) : m_text(text) {}

    int number(std::size_t digits, int low, int high) {
        if (!m_isGood || digitsAt(m_text.substr(0, std::min(m_text.size(), m_at + digits)), m_at) != digits)
            return fail();
        int value = 0;
        for (std::size_t end = m_at + digits; m_at < end; ++m_at)
            value = value * 10 + (m_text[m_at] - '0');
        return value < low || value > high ? fail() : value;
    }
    void expect(char c) {
        if (!accept(c))
            m_isGood = false;
    }
    bool accept(char c) {
        if (!m_isGood || isAtEnd() || m_text[m_at] != c)
            return false;
        ++m_at;
        return true;
    }
    /// The digits of a fraction of a second in units of 100 ns; what is finer is cut.
    std::int64_t fraction() {
        const std::size_t digits = digitsAt(m_text, m_at);
        if (digits < 1 || digits > 9)
            return fail();
        std::int64_t value = 0;
        for (std::size_t i = 0; i < 7; ++i)
            value = value * 10 + (i < digits ? m_text[m_at + i] - '0' : 0);
        m_at += digits;
        return value;
    }
    int fail() {
        m_isGood = false;
        return 0;
    }
    [[nodiscard]] bool isAtEnd() const { return m_at == m_text.size(); }
    [[nodiscard]] bool isGood() const { return m_isGood; }

  private:
    std::string_view m_text;
    std::size_t m_at = 0;
    bool m_isGood = true;
};

constexpr std::int64_t kTicksPerSecond = 10'000'000;

std::optional<std::int64_t> parseDate(std::string_view text) {
    DateScanner scan(text);
    const int year = scan.number(4, 1, 9999);
    scan.expect('-');
    const int month = scan.number(2, 1, 12);
    scan.expect('-');
    const int day = scan.number(2, 1, 31);
    if (!scan.isGood())
        return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                                           std::chrono::day{static_cast<unsigned>(day)}};
    if (!date.ok())
        return std::nullopt;
    std::int64_t seconds = std::int64_t{86400} * std::chrono::sys_days{date}.time_since_epoch().count();
    if (scan.isAtEnd())
        return seconds * kTicksPerSecond;
    if (!scan.accept('T') && !scan.accept(' '))
        return std::nullopt;
    seconds += std::int64_t{3600} * scan.number(2, 0, 23);
    scan.expect(':');
    seconds += std::int64_t{60} * scan.number(2, 0, 59);
    std::int64_t ticks = 0;
    if (scan.accept(':')) {
        seconds += scan.number(2, 0, 59);
        if (scan.accept('.') || scan.accept(','))
            ticks = scan.fraction();
    }
    if (!scan.accept('Z') && !scan.isAtEnd()) {
        const bool isEast = scan.accept('+');
        if (!isEast)
            scan.expect('-');
        int offset = scan.number(2, 0, 23) * 60;
        if (!scan.isAtEnd()) {
            scan.accept(':');
            offset += scan.number(2, 0, 59);
        }
        seconds -= std::int64_t{60} * (isEast ? offset : -offset);
    }
    if (!scan.isGood() || !scan.isAtEnd())
        return std::nullopt;
    return seconds * kTicksPerSecond + ticks;
}

std::string_view withoutSign(std::string_view integer) {
    return integer.front() == '+' || integer.front() == '-' ? integer.substr(1) : integer;
}

} // namespace

ValueKind kindOf(std::string_view text) {
    if (text.empty() || isBlank(text))
        return ValueKind::None;
    const char first = text.front();
    if (isDigit(first)) {
        if (text.size() >= 10 && text[4] == '-' && digitsAt(text.substr(0, 4), 0) == 4)
            return parseDate(text) ? ValueKind::Date : ValueKind::Text;
        return numberKind(text);
    }
    if (first == '-' || first == '+' || first == '.')
        return numberKind(text);
    return equalsWord(text, "true") || equalsWord(text, "false") ? ValueKind::Boolean : ValueKind::Text;
}

bool isBlank(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte > ' ' && byte < 0x7F)
            return false;
        const std::int32_t character = nextCharacter(text, at);
        if (character < 0 || !u_isUWhiteSpace(character))
            return false;
    }
    return !text.empty();
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

} // namespace tavix::profiling
