#pragma once

#include "base/Messages.h"
#include "base/Result.h"
#include "base/SettingsStore.h"
#include "drill/CDrillThruDataSrc.h"

#include <string>
#include <string_view>

namespace tavix {

inline constexpr std::string_view kDrillFilePatterns =
    "Text Files (*.txt;*.csv)|*.txt;*.csv|Worksheets (*.xls)|*.xls||";
inline constexpr std::string_view kDrillFileExtension = "txt";

/// Where a file dialog begins; "" when the settings do not say.
[[nodiscard]] std::string drillFolder(const SettingsStore& settings);
/// A file name made of the table's or field's name, without an extension.
[[nodiscard]] std::string drillFileName(std::string_view context);

/// Writes headings and rows in the order in which the grid shows them: a worksheet when the path ends in ".xls", in any
/// case, else lines of cells that are joined by commas. Headings stand in double quotes, and so do cells but those of
/// integer and real columns; quotes within are left as they are. A file that exists is replaced when the user agrees,
/// as a whole, and after a failure it is as it was. `context` names the worksheet. False when nothing was written,
/// whether the user has been told why or wants it so.
bool saveDrillRows(const CDrillThruDataSrc& source, const std::string& path, std::string_view context,
                   Messages& messages);

/// Puts the bytes of the file `made` into the file at `path`, as whole as saveDrillRows() does.
Status saveMadeFile(const std::string& made, const std::string& path);

} // namespace tavix
