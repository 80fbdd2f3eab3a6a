#pragma once

#include "base/Histogram.h"
#include "base/Result.h"
#include "report/FieldRecord.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavix {

class PrViewer;

/// The histogram of a field as it is shown.
struct FieldHistogram {
    struct Bin {
        double low = 0; ///< numbers and lengths as such, dates in seconds since 1970
        double high = 0;
        std::string lowText; ///< exactly, as the expression language reads it; of dates without a time of day
        std::string highText;
        std::int64_t count = 0;

        bool operator==(const Bin&) const = default;
    };

    HistogramKind kind = HistogramKind::Numbers;
    BinUnit unit = BinUnit::Number;
    std::vector<Bin> bins; ///< at least one
    std::int64_t total = 0;
    std::string reading{}; ///< how the values are read when they are those of a text field that fit; else ""
};

/// With so many distinct values or fewer, the histogram of a run that stored none is computed from the values.
inline constexpr std::int64_t kMostToCount = 20'000;

/// The histogram of a field with numbers, dates or texts; nothing if it has no such values, or if the run stored none
/// and there are too many values to count them now.
[[nodiscard]] Result<std::optional<FieldHistogram>> readFieldHistogram(PrViewer& viewer, const FieldRecord& field);

} // namespace tavix
