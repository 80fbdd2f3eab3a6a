#pragma once

#include "report/AlertStates.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace tavix {

/// An alert as it is saved and printed.
struct AlertLine {
    enum Part : std::size_t { Description, Type, Input, Path, Condition };
    static constexpr std::size_t kParts = 5;

    std::array<std::string, kParts> parts;
};

/// The names of the parts, for headings and labels.
inline constexpr std::array<std::string_view, AlertLine::kParts> kAlertLineNames = {
    "Description", "Type", "Input", "Data Source/Catalog/Schema/Table", "Alert"};

[[nodiscard]] AlertLine alertLine(const AlertState& alert);

} // namespace tavix
