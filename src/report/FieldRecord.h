#pragma once

#include "base/KvbString.h"
#include "base/Metrics.h"
#include "report/FitFigures.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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
    /// Set when minimum, maximum, mean, percentiles and the like are over the values that fit a narrower type.
    std::optional<FitFigures> fits;

    /// The type of the values behind these figures: `typeCode`, or that of the values that fit.
    [[nodiscard]] std::string_view figureTypeCode() const { return fits ? fitTypeCode(*fits) : typeCode; }
};

} // namespace tavix
