#pragma once

#include "base/KvbDatavar.h"
#include "job/JobDescription.h"
#include "source/EncodingDetector.h"
#include "source/Unpacker.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tavix::profiling {

struct InspectedColumn {
    std::string name;
    std::string type;              ///< the word for the type of what was read; empty when it has none
    std::vector<KvbDatavar> cells; ///< of the first rows; null is null
};

/// What a text file looks like.
struct FileInspection {
    std::string path;
    std::int64_t size = 0; ///< bytes, compressed as it is; 0 when the file does not say
    source::Packing packing = source::Packing::None;
    bool isWhole = true; ///< else only the rows in its first MiB were looked at
    source::FoundEncoding encoding;
    bool hasByteOrderMark = false;
    char delimiter = ','; ///< 0: lines are not split
    bool hasHeader = true;
    bool looksLikeNames = true; ///< the first row
    bool hasQuotedCells = false;
    std::string lineEnds; ///< "LF", "CR LF", "CR", "mixed", "none"
    std::vector<InspectedColumn> columns;
    std::int64_t rows = 0; ///< that were looked at
    std::int64_t damagedRows = 0;
};

/// Looks at the beginning of a file as a run with this description would read it. `firstRows` of its rows are kept.
/// `keepGoing` is asked while a pipe has nothing to read; a false is an error.
[[nodiscard]] Result<FileInspection> inspectFile(const job::TableDescription& table, std::size_t firstRows,
                                                 source::KeepGoing keepGoing = {});

} // namespace tavix::profiling
