#pragma once

#include "base/Messages.h"
#include "base/Result.h"

#include <functional>
#include <string>

namespace tavix {

class FileWriter;
namespace worksheet {
class Sheet;
}

/// The rows of a list, to be saved as a file. Each function writes all of them, with their headings.
struct RowsFile {
    std::function<Status(FileWriter&)> putText;
    std::function<Status(worksheet::Sheet&)> putSheet;
    std::string sheetName; ///< any text; characters that a worksheet's name cannot have are replaced
};

/// Writes a worksheet if the path ends in ".xls", ignoring case, else a text. Asks before it replaces a file, replaces
/// it as a whole, and leaves it unchanged on failure. False when nothing was written: the user declined, or a message
/// has said why.
bool saveRowsFile(const RowsFile& rows, const std::string& path, Messages& messages);

/// Copies the file `made` to `path`, which is replaced as a whole or, on failure, left unchanged.
Status saveMadeFile(const std::string& made, const std::string& path);

} // namespace tavix
