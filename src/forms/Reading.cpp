#include "forms/Reading.h"

#include "base/DateTicks.h"

#include <cstddef>

namespace tavix::forms {

namespace {

constexpr std::string_view kDecimalComma = "decimal-comma";
constexpr std::string_view kOpenMark = "open-mark";
constexpr std::string_view kUnit = "unit=";
constexpr std::string_view kDayFirst = "day-first";
constexpr std::string_view kMonthFirst = "month-first";
constexpr std::string_view kEpoch = "epoch-seconds";

char markOf(const WrittenNumber& number, DecimalMark mark) {
    return mark == DecimalMark::Comma && number.comma.reads ? ',' : '.';
}

/// The first word of the text, which is removed together with the blank after it.
std::string_view takeWord(std::string_view& text) {
    const std::size_t blank = text.find(' ');
    const std::string_view word = text.substr(0, blank);
    text.remove_prefix(blank == std::string_view::npos ? text.size() : blank + 1);
    return word;
}

bool takeOption(Reading& reading, std::string_view word) {
    if (word == kDecimalComma)
        reading.decimal = DecimalMark::Comma;
    else if (word == kOpenMark)
        reading.decimal = DecimalMark::Open;
    else if (word == kDayFirst)
        reading.order = DateOrder::DayFirst;
    else if (word == kMonthFirst)
        reading.order = DateOrder::MonthFirst;
    else if (word == kEpoch)
        reading.isEpoch = true;
    else if (word.starts_with(kUnit)) {
        const auto unit = parseUnit(word.substr(kUnit.size()));
        reading.unit = unit.value_or(kNoUnit);
        return unit.has_value();
    } else
        return false;
    return true;
}

} // namespace

std::string Reading::text() const {
    std::string text(typeWord(type));
    const auto add = [&](std::string_view word) { text.append(" ").append(word); };
    if (isNumber()) {
        if (decimal == DecimalMark::Comma)
            add(kDecimalComma);
        else if (decimal == DecimalMark::Open)
            add(kOpenMark);
        if (unit != kNoUnit)
            add(std::string(kUnit) + unitText(unit));
    } else if (type == FieldType::Date) {
        if (isEpoch)
            add(kEpoch);
        else if (order != DateOrder::None)
            add(order == DateOrder::DayFirst ? kDayFirst : kMonthFirst);
    }
    return text;
}

std::optional<Reading> Reading::parse(std::string_view text) {
    Reading reading;
    std::string_view rest = text;
    const std::string_view word = takeWord(rest);
    bool isKnown = false;
    for (const FieldTypeInfo& info : kFieldTypes)
        if (info.word == word && info.type != FieldType::Text) {
            reading.type = info.type;
            isKnown = true;
        }
    while (isKnown && !rest.empty())
        isKnown = takeOption(reading, takeWord(rest));
    return isKnown && reading.text() == text ? std::optional(reading) : std::nullopt;
}

bool Reading::fitsUnit(UnitCode other) const {
    return other == unit || (other == kNoUnit && unit != kPercent);
}

bool Reading::fits(const ValueForm& form) const {
    if (isNumber())
        return form.isReadBy(decimal) && fitsUnit(form.unit) && (type == FieldType::Real || form.isWhole(decimal));
    if (type == FieldType::Date)
        return form.isReadBy(order);
    return type == FieldType::Boolean && form.family == ValueForm::Family::Boolean;
}

bool Reading::fits(const WrittenNumber& number) const {
    const MarkReading& reading = decimal == DecimalMark::Comma ? number.comma : number.point;
    return reading.reads && (decimal != DecimalMark::Open || number.isSameByMark()) && fitsUnit(number.unit) &&
           (type == FieldType::Real || reading.isWhole);
}

bool Reading::fits(std::string_view value) const {
    if (isNumber())
        return number(value).has_value();
    return type == FieldType::Date ? ticks(value).has_value() : boolean(value).has_value();
}

std::optional<double> Reading::number(std::string_view value) const {
    if (!isNumber())
        return std::nullopt;
    const auto number = readNumber(withoutBlanks(value));
    if (!number || !fits(*number))
        return std::nullopt;
    return number->value(markOf(*number, decimal));
}

std::optional<std::int64_t> Reading::integer(std::string_view value) const {
    if (type != FieldType::Integer)
        return std::nullopt;
    const auto number = readNumber(withoutBlanks(value));
    if (!number || !fits(*number))
        return std::nullopt;
    return number->integer(markOf(*number, decimal));
}

std::optional<std::int64_t> Reading::ticks(std::string_view value) const {
    if (type != FieldType::Date)
        return std::nullopt;
    const std::string_view text = withoutBlanks(value);
    if (isEpoch) {
        if (kindOf(text) != ValueKind::Integer)
            return std::nullopt;
        constexpr std::int64_t kMostSeconds = INT64_MAX / kTicksPerSecond;
        const auto seconds = integerValue(text);
        if (!seconds || *seconds > kMostSeconds || *seconds < -kMostSeconds ||
            !isSupportedDate(*seconds * kTicksPerSecond))
            return std::nullopt;
        return *seconds * kTicksPerSecond;
    }
    const auto date = readDate(text);
    if (!date || date->shape == DateShape::ShortYear)
        return std::nullopt;
    if (order == DateOrder::None)
        return date->dayFirst == date->monthFirst ? date->dayFirst : std::nullopt;
    return order == DateOrder::DayFirst ? date->dayFirst : date->monthFirst;
}

std::optional<bool> Reading::boolean(std::string_view value) const {
    const std::string_view text = withoutBlanks(value);
    if (type != FieldType::Boolean || kindOf(text) != ValueKind::Boolean)
        return std::nullopt;
    return booleanValue(text);
}

} // namespace tavix::forms
