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
    std::string type;              ///< the type of the values that were read; empty without any
    std::vector<KvbDatavar> cells; ///< of the first rows
};

struct FileInspection {
    std::string path;
    std::int64_t size = 0; ///< bytes as stored, even if compressed; 0 when unknown
    source::Packing packing = source::Packing::None;
    bool isWhole = true; ///< false: only the rows in its first MiB were examined
    source::FoundEncoding encoding;
    bool hasByteOrderMark = false;
    char delimiter = ','; ///< 0: lines are not split
    bool hasHeader = true;
    bool looksLikeNames = true; ///< whether the first row looks like column names
    bool hasQuotedCells = false;
    std::string lineEnds; ///< "LF", "CR LF", "CR", "mixed", "none"
    std::vector<InspectedColumn> columns;
    std::int64_t rows = 0; ///< that were examined
    std::int64_t damagedRows = 0;
};

/// Examines the beginning of a file as a run with this description would read it, and keeps the first `firstRows` rows.
/// `keepGoing` is asked while a pipe has nothing to read; false is an error.
[[nodiscard]] Result<FileInspection> inspectFile(const job::TableDescription& table, std::size_t firstRows,
                                                 source::KeepGoing keepGoing = {});

} // namespace tavix::profiling
