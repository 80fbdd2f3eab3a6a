#pragma once

#include "report/ReportSubject.h"

#include <string>
#include <string_view>

namespace tavix {

/// The name of the object.
[[nodiscard]] std::string titleOf(const ReportSubject& subject);
/// The object with the one that it belongs to, "airports · city", as a list of windows names it.
[[nodiscard]] std::string nameOf(const ReportSelection& selection);
/// The line beside the title: the table and type of a field, the number of records and how many of them were processed
/// or pass the table's filter, and a field's distinct values and nulls.
[[nodiscard]] std::string detailOf(const ReportSubject& subject);
/// Which values of a field are put in order, `among` these: "the numbers in 373 non-null values"; `among` itself where
/// all are; "the 399 of 400 values that are integers" in a field of texts whose figures are over these.
[[nodiscard]] std::string valuesThatCompare(const FieldRecord& field, std::string_view among);
/// "3 damaged rows" for a table of which the current run lists them, and its fields; "" without any.
[[nodiscard]] std::string damageOf(const ReportSubject& subject);
/// Whether there are details beyond the name: for a table, and for a field of the current run.
[[nodiscard]] bool hasInformation(const ReportSubject& subject);

} // namespace tavix
