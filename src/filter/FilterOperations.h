#pragma once

#include "filter/CCondition.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavix {

/// The words that the operation list and the plain text use. A code that does not exist gives "unknown operation N".
[[nodiscard]] std::string OperationLabel(FilterOperation operation);

/// Whether a comparison with it has values.
[[nodiscard]] bool TakesValue(FilterOperation operation);
/// Equal to and not equal to: the operations that know several values and wildcards.
[[nodiscard]] bool TakesSeveralValues(FilterOperation operation);

/// The labels offered for a field, in the order of their codes: all for the value field, those that compare numbers
/// for the count field and while no field is chosen.
[[nodiscard]] std::vector<std::string_view> OfferedOperations(FieldTypeCode field);

} // namespace tavix
