#include "source/Sample.h"

#include <fmt/format.h>

#include <cmath>
#include <string_view>

namespace tavix::source {

namespace {

/// Spreads consecutive numbers evenly over 64 bits (the finalizer of SplitMix64, Steele, Lea and Flood 2014). The
/// result depends only on a row's number and the seed, so that neither blocks nor threads change a sample.
std::uint64_t mixed(std::uint64_t number) {
    number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9U;
    number = (number ^ (number >> 27U)) * 0x94D049BB133111EBU;
    return number ^ (number >> 31U);
}

std::string_view ordinalEnding(std::int64_t number) {
    if (number % 100 >= 11 && number % 100 <= 13)
        return "th";
    switch (number % 10) {
    case 1:
        return "st";
    case 2:
        return "nd";
    case 3:
        return "rd";
    default:
        return "th";
    }
}

} // namespace

bool Sample::takes(std::int64_t record) const {
    switch (kind) {
    case Kind::All:
        return true;
    case Kind::First:
        return record <= number;
    case Kind::Every:
        return (record - 1) % number == 0;
    case Kind::Random: {
        constexpr std::uint64_t kGolden = 0x9E3779B97F4A7C15U;
        const std::uint64_t lot = mixed(mixed(seed + kGolden) + static_cast<std::uint64_t>(record) * kGolden);
        // The 53 bits that a double represents exactly.
        return std::ldexp(static_cast<double>(lot >> 11U), -53) * 100 < percent;
    }
    }
    return true;
}

std::string Sample::text() const {
    switch (kind) {
    case Kind::All:
        return {};
    case Kind::First:
        return number == 1 ? "the first row" : fmt::format("the first {} rows", number);
    case Kind::Every:
        return fmt::format("every {}{} row", number, ordinalEnding(number));
    case Kind::Random:
        return fmt::format("a random {} % of the rows, seed {}", percent, seed);
    }
    return {};
}

} // namespace tavix::source
