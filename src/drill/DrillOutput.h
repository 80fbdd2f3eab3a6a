#pragma once

#include "base/Messages.h"
#include "base/SettingsStore.h"
#include "drill/CDrillThruDataSrc.h"

#include <string>
#include <string_view>

namespace tavix {

inline constexpr std::string_view kDrillFilePatterns =
    "Text Files (*.txt;*.csv)|*.txt;*.csv|Worksheets (*.xls)|*.xls||";
inline constexpr std::string_view kDrillFileExtension = "txt";

/// The initial folder of a file dialog; "" when the settings have none.
[[nodiscard]] std::string drillFolder(const SettingsStore& settings);
/// A file name built from the table's or field's name, without an extension.
[[nodiscard]] std::string drillFileName(std::string_view context);

/// Writes headings and rows in the grid's current order: a worksheet if the path ends in ".xls", ignoring case, else
/// comma-separated lines. Headings are enclosed in double quotes, and so are cells except those of integer and real
/// columns; quotes in the text are not escaped. Asks before it replaces a file, replaces it as a whole, and leaves it
/// unchanged on failure. `context` names the worksheet. False when nothing was written: the user declined, or a message
/// has said why.
bool saveDrillRows(const CDrillThruDataSrc& source, const std::string& path, std::string_view context,
                   Messages& messages);

} // namespace tavix
