#pragma once

#include "base/KvbString.h"
#include "base/Metrics.h"

#include <array>
#include <cstdint>
#include <string>

namespace tavix {

/// What one run says of one field, distributions aside.
struct FieldRecord {
    int id = -1;
    std::string name;
    std::string typeCode;                        ///< S, I, R, D, B; "" without a type
    std::array<KvbString, kMetricCount> metrics; ///< by metric id; null where there is no figure
    std::int64_t freqCount = 0;                  ///< rows of the value distribution: distinct values, null among them
    std::int64_t patternCount = 0;               ///< rows of the pattern distribution
    int tableId = -1;
    std::string quantileRule; ///< by which median and percentiles were made
};

} // namespace tavix
