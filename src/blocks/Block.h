#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace tavix::expression {

/// A column of a block: texts or counts.
struct BlockColumn {
    /// Texts: their bytes, and the end of each. A null row has an empty text.
    std::string_view bytes;
    std::span<const std::uint32_t> ends;
    /// Counts of at most 63 bits.
    std::span<const std::uint64_t> counts;
    /// Nonzero for a null row; empty without null rows.
    std::span<const std::uint8_t> nulls;
    /// Whether all rows have the first count; the others may be missing then.
    bool isUniform = false;
};

/// Asked while a block with long texts is evaluated; false stops the evaluation.
using GoOn = std::function<bool()>;

/// The rows of a block for which an expression could not be evaluated.
struct BlockFailures {
    std::size_t count = 0;
    std::uint32_t firstRow = 0; ///< only valid when there are any
    std::string reason;         ///< why the first one failed
};

/// A few thousand rows, as a distribution stores them. All data is borrowed.
struct Block {
    std::size_t rows = 0;
    /// A column for each field of the program, in the same order; unused ones may be empty.
    std::span<const BlockColumn> columns;
};

} // namespace tavix::expression
