#pragma once

#include "report/ReportSubject.h"

#include <string>

namespace tavix {

/// The name of what is shown.
[[nodiscard]] std::string titleOf(const ReportSubject& subject);
/// What percentages are shares of, and what a sample must not be taken for: where it comes from, how many records
/// there are and how many were processed, how many distinct values and nulls a field has.
[[nodiscard]] std::string detailOf(const ReportSubject& subject);
/// Whether more can be said about it than its name: about a table, and about a field that the run has.
[[nodiscard]] bool hasInformation(const ReportSubject& subject);

} // namespace tavix
