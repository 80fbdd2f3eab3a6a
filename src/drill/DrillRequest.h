#pragma once

#include "drill/DrillReader.h"
#include "drill/DrillTexts.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tavix {

/// What a drill-through window needs to open.
struct DrillRequest {
    DrillOrigin origin = DrillOrigin::Frequency;
    DrillCursor cursor;
    DrillSourceMode mode = DrillSourceMode::Rows;
    std::string context;               ///< name of the table or field, for files
    std::string subject;               ///< which rows these are, for people
    std::optional<std::int64_t> inRun; ///< how many the run counted, if that is known
};

} // namespace tavix
