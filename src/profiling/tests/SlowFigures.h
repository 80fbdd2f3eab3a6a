#pragma once

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace tavix::profiling::testing {

/// The figures of a column, computed from docs/definitions.md in the most obvious way and at any cost, in the form of
/// DumpFigures.h. It shares nothing with what it is compared to.
[[nodiscard]] nlohmann::json slowFigures(const std::vector<std::optional<std::string>>& rows, const std::string& name,
                                         int ordinal);

/// The first difference and its position; "" when there is none. Numbers may differ in their last digits.
[[nodiscard]] std::string difference(const nlohmann::json& expected, const nlohmann::json& found);

} // namespace tavix::profiling::testing
