#include "source/SampledReader.h"

#include <fmt/format.h>

#include <cmath>

namespace tavix::source {

namespace {

/// Spreads consecutive numbers evenly over 64 bits (the finalizer of SplitMix64, Steele, Lea and Flood 2014). What a
/// row gets depends on nothing but its number and the seed, so that neither blocks nor threads change a sample.
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
        // The 53 bits that a double holds exactly.
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

Result<bool> SampledReader::read(RowBlock& block) {
    for (;;) {
        auto more = m_reader->read(block);
        if (!more || !*more)
            return more;
        block.records.clear();
        std::size_t kept = 0;
        for (std::size_t row = 0; row < block.rows; ++row) {
            const std::int64_t record = ++m_rowsSeen;
            if (!m_sample.takes(record))
                continue;
            if (kept != row)
                for (auto& column : block.columns)
                    column[kept] = column[row];
            block.records.push_back(record);
            ++kept;
        }
        block.rows = kept;
        if (kept > 0)
            return true;
    }
}

} // namespace tavix::source
