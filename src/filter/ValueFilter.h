#pragma once

#include "base/KvbString.h"
#include "base/Result.h"
#include "report/DistributionKind.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavix {

enum class ValueChoice { Keep, Exclude };

/// The filter text that also keeps only the rows of these values, or removes just them. It is made of conditions, so
/// that the dialog shows them, and of code alone where a value cannot stand in a condition block. A row without a value
/// goes with its own null value only: excluding others keeps it.
///
/// Fails, in words for the user, when no value is given, when one cannot be written in the expression language, and
/// when `filterText` is not exactly what the dialog writes for a condition list, because its meaning could get lost.
[[nodiscard]] Result<std::string> FilterByValues(std::string_view filterText, DistributionKind kind,
                                                 const std::vector<KvbString>& values, ValueChoice choice);

} // namespace tavix
