#pragma once

#include "report/ReportSubject.h"

#include <string>
#include <string_view>

namespace tavix {

/// The name of the object.
[[nodiscard]] std::string titleOf(const ReportSubject& subject);
/// The line beside the title: the table and type of a field, the number of records and how many of them were processed
/// or pass the table's filter, and a field's distinct values and nulls.
[[nodiscard]] std::string detailOf(const ReportSubject& subject);
/// Whether there are details beyond the name: for a table, and for a field of the current run.
[[nodiscard]] bool hasInformation(const ReportSubject& subject);
/// The word for a field's type code; "" for a field without a type.
[[nodiscard]] std::string_view typeWord(std::string_view typeCode);

} // namespace tavix
