#pragma once

#include "base/Messages.h"

#include <string>
#include <string_view>

namespace tavix {

class AlertRows;

/// The proposed name of the file, without an extension.
inline constexpr std::string_view kAlertsFileName = "alerts";

/// Saves the listed alerts in the list's order: their description, type, input, table and condition. A worksheet if the
/// path ends in ".xls", ignoring case, else lines of texts in double quotes, separated by commas; quotes in the texts
/// are not escaped. See saveRowsFile() for questions, messages and the result.
bool saveAlerts(const AlertRows& rows, const std::string& path, Messages& messages);

} // namespace tavix
