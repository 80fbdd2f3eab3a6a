#pragma once

#include "report/ReportSelection.h"

#include <string>
#include <string_view>

namespace tavix {

/// The part of an information text that describes a field.
struct FieldInformation {
    std::string name;
    std::string definedType;
    std::string definedLength;
};

/// The information text of a table. Lines end with "\r\n".
[[nodiscard]] std::string informationText(const TableIdentity& table);
/// The information text of a field of that table.
[[nodiscard]] std::string informationText(const TableIdentity& table, const FieldInformation& field);

} // namespace tavix
