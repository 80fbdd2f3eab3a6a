#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

namespace tavix::expression {

/// One column of a block: either texts or counts.
struct BlockColumn {
    /// Texts: their bytes one after the other, and where each ends. A null row is an empty text here.
    std::string_view bytes;
    std::span<const std::uint32_t> ends;
    /// Or numbers, none of them beyond 63 bits.
    std::span<const std::uint64_t> counts;
    /// Not 0 for a row that is null; empty when no row is.
    std::span<const std::uint8_t> nulls;
    /// Whether all rows hold the first number; the others need not be there then.
    bool isUniform = false;
};

/// Asked while a block is evaluated whose rows make long texts; false ends that.
using GoOn = std::function<bool()>;

/// A few thousand rows, as a distribution stores them. Everything is borrowed.
struct Block {
    std::size_t rows = 0;
    /// A column for each field of the program, in the same order; those that it does not use may be left empty.
    std::span<const BlockColumn> columns;
};

} // namespace tavix::expression
