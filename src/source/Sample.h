#pragma once

#include <cstdint>
#include <string>

namespace tavix::source {

/// Which rows of a table are read.
struct Sample {
    enum class Kind {
        All,
        First,  ///< the first `number` rows
        Every,  ///< rows 1, 1 + number, 1 + 2 * number, ...
        Random, ///< each row with the probability `percent` / 100, the same rows for the same seed
    };

    Kind kind = Kind::All;
    std::int64_t number = 0;
    double percent = 0;
    std::uint64_t seed = 0;

    bool operator==(const Sample&) const = default;

    /// `record` counts from 1.
    [[nodiscard]] bool takes(std::int64_t record) const;
    /// "the first 1000 rows", "every 10th row", "a random 5 % of the rows, seed 42"; empty for all.
    [[nodiscard]] std::string text() const;
};

} // namespace tavix::source
