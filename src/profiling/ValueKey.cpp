#include "profiling/ValueKey.h"

#include <bit>

namespace tavix::profiling {

namespace {

constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;

std::uint64_t keyOf(std::int64_t value) {
    return static_cast<std::uint64_t>(value) ^ kSignBit;
}

std::uint64_t keyOf(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value == 0.0 ? 0.0 : value);
    return (bits & kSignBit) != 0 ? ~bits : bits | kSignBit;
}

} // namespace

KeyForm keyForm(forms::ValueKind kind, bool fits64) {
    switch (kind) {
    case forms::ValueKind::Boolean:
        return KeyForm::Boolean;
    case forms::ValueKind::Integer:
        return fits64 ? KeyForm::Integer : KeyForm::LargeInteger;
    case forms::ValueKind::Real:
        return KeyForm::Double;
    case forms::ValueKind::Date:
        return KeyForm::Date;
    case forms::ValueKind::None:
    case forms::ValueKind::Text:
        break;
    }
    return KeyForm::None;
}

std::uint64_t keyOf(std::string_view text, KeyForm form) {
    switch (form) {
    case KeyForm::Boolean:
        return forms::booleanValue(text) ? 1 : 0;
    case KeyForm::Integer:
        return keyOf(forms::integerValue(text).value_or(0));
    case KeyForm::Double:
    case KeyForm::LargeInteger:
        return keyOf(forms::realValue(text));
    case KeyForm::Date:
        return keyOf(forms::dateValue(text));
    case KeyForm::None:
        break;
    }
    return 0;
}

KeyForm keyForm(const forms::ColumnReading& column) {
    switch (column.reading ? column.reading->type : FieldType::Text) {
    case FieldType::Boolean:
        return KeyForm::Boolean;
    case FieldType::Integer:
        return column.fits64 ? KeyForm::Integer : KeyForm::Double;
    case FieldType::Real:
        return KeyForm::Double;
    case FieldType::Date:
        return KeyForm::Date;
    case FieldType::Text:
        break;
    }
    return KeyForm::None;
}

std::optional<std::uint64_t> keyOf(std::string_view text, KeyForm form, const forms::Reading& reading) {
    const auto key = [](const auto& value) { return value ? std::optional(keyOf(*value)) : std::nullopt; };
    switch (form) {
    case KeyForm::Boolean:
        if (const auto value = reading.boolean(text))
            return *value ? 1 : 0;
        break;
    case KeyForm::Integer:
        return key(reading.integer(text));
    case KeyForm::Double:
    case KeyForm::LargeInteger:
        return key(reading.number(text));
    case KeyForm::Date:
        return key(reading.ticks(text));
    case KeyForm::None:
        break;
    }
    return std::nullopt;
}

std::int64_t integerOfKey(std::uint64_t key) {
    return static_cast<std::int64_t>(key ^ kSignBit);
}

double doubleOfKey(std::uint64_t key) {
    return std::bit_cast<double>((key & kSignBit) != 0 ? key ^ kSignBit : ~key);
}

long double numberOfKey(std::uint64_t key, KeyForm form) {
    return form == KeyForm::Integer ? static_cast<long double>(integerOfKey(key))
                                    : static_cast<long double>(doubleOfKey(key));
}

} // namespace tavix::profiling
