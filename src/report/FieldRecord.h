#pragma once

#include "base/KvbString.h"
#include "base/Metrics.h"

#include <array>
#include <cstdint>
#include <string>

namespace tavix {

/// A field in one run, without its distributions.
struct FieldRecord {
    int id = -1;
    std::string name;
    std::string typeCode;                        ///< of a FieldType; "" without a type
    std::array<KvbString, kMetricCount> metrics; ///< by metric id; null for an absent one
    std::int64_t freqCount = 0;                  ///< rows of the value distribution: distinct values, null among them
    std::int64_t patternCount = 0;               ///< rows of the pattern distribution
    int tableId = -1;
    std::string quantileRule; ///< the rule by which median and percentiles were computed
};

} // namespace tavix
