#pragma once

#include "filter/CCondition.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavix {

/// The words of the operation list and of the plain text. A code that does not exist gives "unknown operation N".
[[nodiscard]] std::string OperationLabel(FilterOperation operation);

/// Whether a comparison with this operation has values.
[[nodiscard]] bool TakesValue(FilterOperation operation);
/// True for "equal to" and "not equal to", which take several values and wildcards.
[[nodiscard]] bool TakesSeveralValues(FilterOperation operation);

/// The labels offered for a field, in the order of their codes: all for the value field; for the count field, and while
/// no field is chosen, those that compare numbers.
[[nodiscard]] std::vector<std::string_view> OfferedOperations(FieldTypeCode field);

} // namespace tavix
