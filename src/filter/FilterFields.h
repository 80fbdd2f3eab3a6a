#pragma once

#include "filter/CCondition.h"

#include <array>
#include <string_view>

namespace tavix {

/// A field that conditions can test, by its name in the expression language.
struct FilterField {
    std::string_view name;
    FieldTypeCode type;
};

/// In the order of the field lists.
inline constexpr std::array<FilterField, 2> kFilterFields = {{
    {"Value", FieldTypeCode::Value},
    {"Count", FieldTypeCode::Count},
}};

} // namespace tavix
