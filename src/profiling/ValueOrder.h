#pragma once

#include "profiling/ValueCounter.h"
#include "profiling/ValueKind.h"

#include <cstdint>
#include <span>
#include <vector>

/// The orders in which the distinct values of a field are walked; all give indexes into `entries`.
namespace tavix::profiling {

using Entries = std::span<const ValueCounter::Entry>;

/// By the bytes of the UTF-8, which is by code point.
[[nodiscard]] std::vector<std::uint32_t> orderByText(Entries entries);

/// `byText` again, by count from the highest down; equal counts stay in the order of `byText`.
[[nodiscard]] std::vector<std::uint32_t> orderByCount(Entries entries, std::span<const std::uint32_t> byText);

/// The values that take part in order statistics: of a field of kind Boolean, Integer, Real or Date those that are
/// neither empty nor blank, by what they mean and then by text; of any other field all of `byText`.
[[nodiscard]] std::vector<std::uint32_t> orderByValue(Entries entries, std::span<const std::uint32_t> byText,
                                                      ValueKind kind);

} // namespace tavix::profiling
