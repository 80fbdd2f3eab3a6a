#pragma once

#include "report/ReportSubject.h"

#include <string>

namespace tavix {

/// The name of the object.
[[nodiscard]] std::string titleOf(const ReportSubject& subject);
/// The object with the one that it belongs to, "airports · city", as a list of windows names it.
[[nodiscard]] std::string nameOf(const ReportSelection& selection);
/// The line beside the title: the table and type of a field, the number of records and how many of them were processed
/// or pass the table's filter, and a field's distinct values and nulls.
[[nodiscard]] std::string detailOf(const ReportSubject& subject);
/// Whether there are details beyond the name: for a table, and for a field of the current run.
[[nodiscard]] bool hasInformation(const ReportSubject& subject);

} // namespace tavix
