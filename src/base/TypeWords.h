#pragma once

#include <array>
#include <string_view>

namespace tavix {

/// The type of a field. The repository stores the letter.
enum class FieldType : char { Text = 'S', Integer = 'I', Real = 'R', Date = 'D', Boolean = 'B' };

struct FieldTypeInfo {
    FieldType type;
    std::string_view word; ///< as users see it everywhere, and as the metric "Actual Type" is stored
    bool isNumeric;
};

inline constexpr std::array<FieldTypeInfo, 5> kFieldTypes{{{FieldType::Text, "text", false},
                                                           {FieldType::Integer, "integer", true},
                                                           {FieldType::Real, "real", true},
                                                           {FieldType::Date, "date", false},
                                                           {FieldType::Boolean, "boolean", false}}};

/// The type with this code; null for "", the code of a field without a type, and for any other text.
[[nodiscard]] constexpr const FieldTypeInfo* findFieldType(std::string_view code) {
    for (const FieldTypeInfo& info : kFieldTypes)
        if (code.size() == 1 && code.front() == static_cast<char>(info.type))
            return &info;
    return nullptr;
}

/// The word for a type code; "" for a field without a type.
[[nodiscard]] constexpr std::string_view typeWord(std::string_view code) {
    const FieldTypeInfo* const info = findFieldType(code);
    return info ? info->word : std::string_view();
}

[[nodiscard]] constexpr std::string_view typeWord(FieldType type) {
    const char code = static_cast<char>(type);
    return typeWord(std::string_view(&code, 1));
}

/// Whether the values of a field with this type code are numbers.
[[nodiscard]] constexpr bool isNumericType(std::string_view code) {
    const FieldTypeInfo* const info = findFieldType(code);
    return info && info->isNumeric;
}

} // namespace tavix
