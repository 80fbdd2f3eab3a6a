#include "forms/ValueForm.h"

#include "base/Ascii.h"
#include "base/Characters.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tavix::forms {

namespace {

using Family = ValueForm::Family;
using Readings = ValueForm::Readings;

/// The possible forms of a text that fits no strict type, judged by its beginning and end. Most texts have none and
/// cost little.
struct Suspicion {
    bool isNumber = false;
    bool isDate = false;
    bool isPadded = false; ///< digits with leading zeros

    [[nodiscard]] bool isAny() const { return isNumber || isDate || isPadded; }
};

/// The first two letters of months and weekdays: a bit for each second letter, by the first one.
constexpr auto kNameStarts = [] {
    std::array<std::uint32_t, 26> seconds{};
    for (const std::string_view start :
         {"ja", "fe", "ma", "ap", "ju", "au", "se", "oc", "no", "de", "mo", "tu", "we", "th", "fr", "sa", "su"})
        seconds[static_cast<std::size_t>(start[0] - 'a')] |= std::uint32_t{1} << static_cast<unsigned>(start[1] - 'a');
    return seconds;
}();

bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

/// Whether a written number or date can end with the last byte of the text: with a digit, a sign or unit, AM, PM, Z,
/// UTC or GMT.
bool mayEnd(char last) {
    if (isAsciiDigit(last) || isUpper(last) || !isAscii(last))
        return true;
    switch (last) {
    case 'm':
    case 'z':
    case 'c':
    case 't':
    case '.':
    case '-':
    case '%':
    case '$':
    case ')':
        return true;
    default:
        return false;
    }
}

bool hasDigit(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char c) { return isAsciiDigit(c); });
}

/// Whether a month or a weekday can begin at `at`.
bool mayBeName(std::string_view text, std::size_t at) {
    if (at + 1 >= text.size() || !isAsciiLetter(text[at]) || !isAsciiLetter(text[at + 1]))
        return false;
    const auto first = static_cast<unsigned>(asciiLower(text[at]) - 'a');
    const auto second = static_cast<unsigned>(asciiLower(text[at + 1]) - 'a');
    return (kNameStarts[first] >> second & 1U) != 0;
}

/// Of a text that begins with a letter.
Suspicion suspectLetters(std::string_view text) {
    constexpr std::size_t kShortest = 4; // EUR5
    if (text.size() < kShortest || !isAsciiLetter(text[1]))
        return {};
    Suspicion suspicion;
    suspicion.isDate = mayBeName(text, 0);
    suspicion.isNumber = isUpper(text[0]) && isUpper(text[1]) && isUpper(text[2]) && !isAsciiLetter(text[3]);
    if ((suspicion.isDate || suspicion.isNumber) && !hasDigit(text))
        return {};
    return suspicion;
}

/// Of a text that begins with a digit.
Suspicion suspectDigits(std::string_view text) {
    std::size_t digits = 1;
    while (digits < text.size() && isAsciiDigit(text[digits]))
        ++digits;
    if (digits == text.size())
        return {.isPadded = true};
    const char next = text[digits];
    const bool mayBeDate = digits <= 4 && digits != 3;
    switch (next) {
    case '/':
        return {.isDate = mayBeDate};
    case '-': {
        const bool isAfter = digits + 1 == text.size() || !isAsciiDigit(text[digits + 1]); // 5- or 14-Jan-2001
        return {.isNumber = isAfter, .isDate = mayBeDate};
    }
    case '.':
    case ' ':
        return {.isNumber = true, .isDate = mayBeDate};
    case ':':
    case '_':
        return {};
    default:
        break;
    }
    const bool isLower = isAsciiLetter(next) && !isUpper(next);
    return {.isNumber = !isLower || next == 'e', .isDate = mayBeDate && mayBeName(text, digits)};
}

/// Of a text without white space at its ends.
Suspicion suspect(std::string_view text) {
    if (!mayEnd(text.back()))
        return {};
    const char first = text.front();
    if (isAsciiDigit(first))
        return suspectDigits(text);
    if (isAsciiLetter(first))
        return suspectLetters(text);
    if (first == '(' && text.back() != ')')
        return {};
    constexpr unsigned char kFirstSign = 0xC2; // the first byte of the first currency sign
    const bool mayBeNumber = static_cast<unsigned char>(first) >= kFirstSign ||
                             std::string_view("+-(.,$").find(first) != std::string_view::npos;
    return {.isNumber = mayBeNumber && hasDigit(text)};
}

Readings readingsOf(bool first, bool second, bool areSame) {
    if (first && second)
        return areSame ? Readings::Same : Readings::Different;
    return first ? Readings::First : Readings::Second;
}

bool isRead(Readings readings, bool isFirst) {
    return readings != (isFirst ? Readings::Second : Readings::First);
}

void setNumber(ValueForm& form, const WrittenNumber& number) {
    form.family = Family::Number;
    form.readings = readingsOf(number.point.reads, number.comma.reads, number.isSameByMark());
    form.point = number.point;
    form.comma = number.comma;
    form.negative = number.negative;
    form.unit = number.unit;
}

void setDate(ValueForm& form, const WrittenDate& date) {
    form.family = date.shape == DateShape::ShortYear ? Family::ShortYear : Family::Date;
    form.shape = date.shape;
    form.separator = date.separator;
    form.hasTime = date.hasTime;
    form.readings =
        readingsOf(date.dayFirst.has_value(), date.monthFirst.has_value(), date.dayFirst == date.monthFirst);
    if (form.family == Family::ShortYear)
        form.readings = Readings::Same;
}

/// For a text without white space at its ends that fits no strict type.
void setWritten(ValueForm& form, std::string_view text, const Suspicion& suspicion) {
    if (suspicion.isPadded)
        form.family = Family::PaddedDigits;
    if (suspicion.isNumber)
        if (const auto number = readNumber(text)) {
            setNumber(form, *number);
            return;
        }
    if (suspicion.isDate)
        if (const auto date = readDate(text))
            setDate(form, *date);
}

void setStrict(ValueForm& form, ValueKind kind, std::string_view text) {
    form.isStrict = true;
    switch (kind) {
    case ValueKind::Boolean:
        form.family = Family::Boolean;
        break;
    case ValueKind::Integer:
    case ValueKind::Real:
        if (const auto number = readNumber(text)) {
            setNumber(form, *number);
            form.negative = NegativeMark::None;
        }
        break;
    case ValueKind::Date:
        if (const auto date = readDate(text))
            setDate(form, *date);
        form.hasTime = false;
        break;
    case ValueKind::None:
    case ValueKind::Text:
        break;
    }
}

std::string dateForm(const ValueForm& form, bool isDayFirst) {
    const std::string between = form.separator == '\0' ? std::string() : std::string(1, form.separator);
    switch (form.shape) {
    case DateShape::YearFirst:
        return "YYYY" + between + "MM" + between + "DD";
    case DateShape::DayAndMonth:
        return (isDayFirst ? "DD" + between + "MM" : "MM" + between + "DD") + between + "YYYY";
    case DateShape::MonthNameFirst:
        return "Mon" + between + "DD" + between + "YYYY";
    case DateShape::DayBeforeName:
        return "DD" + between + "Mon" + between + "YYYY";
    case DateShape::Iso:
    case DateShape::ShortYear:
        break;
    }
    return {};
}

std::string dateText(const ValueForm& form, DateOrder order) {
    if (form.isStrict)
        return "date";
    std::string text;
    const bool isOpen = form.shape == DateShape::DayAndMonth && order == DateOrder::None &&
                        (form.readings == Readings::Same || form.readings == Readings::Different);
    if (isOpen)
        text = "date " + dateForm(form, true) + " or " + dateForm(form, false);
    else if (form.readings == Readings::First || form.readings == Readings::Second)
        text = "date " + dateForm(form, form.readings == Readings::First);
    else
        text = "date " + dateForm(form, order != DateOrder::MonthFirst);
    return form.hasTime ? text + " hh:mm" : text;
}

std::string numberText(const ValueForm& form, DecimalMark mark) {
    if (form.readings == Readings::Different && mark == DecimalMark::Open)
        return "number grouped or decimal";
    const bool isComma =
        form.readings == Readings::Second || (form.readings == Readings::Different && mark == DecimalMark::Comma);
    const MarkReading& reading = isComma ? form.comma : form.point;
    std::string text = reading.isWhole ? "integer" : "real";
    if (reading.isGrouped)
        text += " grouped";
    if (isComma)
        text += " decimal-comma";
    return text;
}

} // namespace

std::optional<ValueForm> ValueForm::written(std::string_view text, ByteMask bytes) {
    using namespace byte_kind; // NOLINT(google-build-using-namespace): a list of these
    if ((bytes & (kAt | kAmpersand | kLess | kBackslash | kHash | kEquals | kQuestion | kBracket)) != 0)
        return std::nullopt; // as in no number and no date
    const auto isVisible = [](char c) { return c > ' ' && c < '\x7F'; };
    const bool mayHaveBlanks = !isVisible(text.front()) || !isVisible(text.back());
    if (!mayHaveBlanks && (bytes & kDigit) == 0)
        return std::nullopt;
    const std::string_view inner = mayHaveBlanks ? withoutBlanks(text) : text;
    const bool hasBlanks = inner.size() < text.size();
    const ValueKind kind = hasBlanks ? kindOf(inner) : ValueKind::Text;
    const Suspicion suspicion = kind == ValueKind::Text ? suspect(inner) : Suspicion{};
    if (kind == ValueKind::Text && !suspicion.isAny())
        return std::nullopt;
    ValueForm form;
    form.hasBlanks = hasBlanks;
    if (kind == ValueKind::Text)
        setWritten(form, inner, suspicion);
    else
        setStrict(form, kind, inner);
    return form.family == Family::Text ? std::nullopt : std::optional(form);
}

ValueForm ValueForm::of(std::string_view text, ValueKind kind) {
    if (kind == ValueKind::Text)
        return written(text, byteMask(text)).value_or(ValueForm{});
    ValueForm form;
    setStrict(form, kind, text);
    return form;
}

std::uint64_t ValueForm::key() const {
    std::uint64_t key = unit;
    const auto add = [&](unsigned bits, std::uint64_t value) { key = key << bits | value; };
    add(3, static_cast<std::uint64_t>(family));
    add(1, hasBlanks ? 1 : 0);
    add(1, isStrict ? 1 : 0);
    add(2, static_cast<std::uint64_t>(readings));
    for (const MarkReading& reading : {point, comma}) {
        add(1, reading.reads ? 1 : 0);
        add(1, reading.isWhole ? 1 : 0);
        add(1, reading.isGrouped ? 1 : 0);
    }
    add(2, static_cast<std::uint64_t>(negative));
    add(3, static_cast<std::uint64_t>(shape));
    add(7, static_cast<unsigned char>(separator) & 0x7FU);
    add(1, hasTime ? 1 : 0);
    return key;
}

bool ValueForm::isReadBy(DecimalMark mark) const {
    if (family != Family::Number)
        return false;
    return mark == DecimalMark::Open ? readings == Readings::Same : isRead(readings, mark == DecimalMark::Point);
}

bool ValueForm::isReadBy(DateOrder order) const {
    if (family != Family::Date)
        return false;
    return order == DateOrder::None ? readings == Readings::Same : isRead(readings, order == DateOrder::DayFirst);
}

std::string ValueForm::text(DecimalMark mark, DateOrder order) const {
    std::string text;
    switch (family) {
    case Family::Text:
        return "text";
    case Family::Boolean:
        text = "boolean";
        break;
    case Family::PaddedDigits:
        text = "digits with leading zeros";
        break;
    case Family::ShortYear:
        text = "date with two-digit year";
        break;
    case Family::Date:
        text = dateText(*this, order);
        break;
    case Family::Number:
        text = numberText(*this, mark);
        if (unit != kNoUnit)
            text += " with " + unitText(unit);
        if (negative == NegativeMark::After)
            text += " trailing minus";
        else if (negative == NegativeMark::Parentheses)
            text += " in parentheses";
        break;
    }
    return hasBlanks ? text + " with blanks" : text;
}

std::string_view withoutBlanks(std::string_view text) {
    const auto mayBeBlank = [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte <= ' ' || byte >= 0x80;
    };
    while (!text.empty() && mayBeBlank(text.front())) {
        std::size_t at = 0;
        if (!isWhiteSpace(nextCharacter(text, at)))
            break;
        text.remove_prefix(at);
    }
    while (!text.empty() && mayBeBlank(text.back())) {
        std::size_t start = text.size() - 1;
        while (start > 0 && (static_cast<unsigned char>(text[start]) & 0xC0U) == 0x80)
            --start;
        std::size_t at = start;
        const std::int32_t last = nextCharacter(text, at);
        if (at != text.size() || !isWhiteSpace(last))
            break;
        text = text.substr(0, start);
    }
    return text;
}

} // namespace tavix::forms
