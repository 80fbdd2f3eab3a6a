#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavix {

class PrViewer;

/// A row that its source does not have in the form of its table.
struct DamagedRow {
    std::string file;   ///< its name, if the table has several; else ""
    bool isLine = true; ///< `number` is a line of a text file, else a row
    std::int64_t number = 0;
    std::string reason;

    bool operator==(const DamagedRow&) const = default;
};

/// The damaged rows of a table that the current run has listed in its execution log, which are the first ones. Throws
/// GenException when the repository fails.
[[nodiscard]] std::vector<DamagedRow> readDamagedRows(PrViewer& viewer, int tableId);

/// A sentence about a text file that is not as the run read it, so that its lines may have moved: it has another size,
/// or is not there. "" for an unchanged file, a table of several files and one of a database.
[[nodiscard]] std::string changeOfFile(PrViewer& viewer, int tableId);

} // namespace tavix
