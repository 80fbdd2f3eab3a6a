#include "filter/FilterOperations.h"

#include <fmt/format.h>

#include <array>

namespace tavix {

namespace {

/// The index is the code.
constexpr std::array<std::string_view, 19> kLabels = {
    "equal to",
    "greater than",
    "greater than or equal to",
    "less than",
    "less than or equal to",
    "not equal to",
    "contains",
    "does not contain",
    "begins with",
    "ends with",
    "is uppercase",
    "is not uppercase",
    "is lowercase",
    "is not lowercase",
    "is numeric",
    "is not numeric",
    "is null",
    "is not null",
    "has control characters",
};

constexpr std::size_t kNumberOperations = 6;

} // namespace

std::string OperationLabel(FilterOperation operation) {
    const auto code = static_cast<std::int32_t>(operation);
    if (code >= 0 && code < static_cast<std::int32_t>(kLabels.size()))
        return std::string(kLabels[static_cast<std::size_t>(code)]);
    return fmt::format("unknown operation {}", code);
}

bool TakesValue(FilterOperation operation) {
    return operation < FilterOperation::IsUppercase;
}

bool TakesSeveralValues(FilterOperation operation) {
    return operation == FilterOperation::EqualTo || operation == FilterOperation::NotEqualTo;
}

std::vector<std::string_view> OfferedOperations(FieldTypeCode field) {
    const std::size_t count = field == FieldTypeCode::Value ? kLabels.size() : kNumberOperations;
    return {kLabels.begin(), kLabels.begin() + static_cast<std::ptrdiff_t>(count)};
}

} // namespace tavix
