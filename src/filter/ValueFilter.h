#pragma once

#include "base/KvbString.h"
#include "base/Result.h"
#include "report/DistributionKind.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavix {

enum class ValueChoice { Keep, Exclude };

/// Extends a filter text so that it also keeps only the rows of these values, or removes just them. The result is made
/// of conditions, so that the dialog shows them, or of code alone when a condition block cannot hold a value. A row
/// without a value is removed only by its own null value: excluding other values keeps it.
/// Fails with a message for the user when no value is given, when one cannot be written in the expression language, and
/// when `filterText` is not exactly what the dialog writes for a condition list, because its meaning could get lost.
[[nodiscard]] Result<std::string> FilterByValues(std::string_view filterText, DistributionKind kind,
                                                 const std::vector<KvbString>& values, ValueChoice choice);

} // namespace tavix
