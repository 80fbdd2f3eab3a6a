#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tavix::findings {

/// How sure it is that a finding is a defect of the data. The repository stores the number.
enum class Likelihood : std::uint8_t { Possible = 1, Likely = 2, Definite = 3 };

/// "possible", "likely", "definite"; "" for any other number.
[[nodiscard]] constexpr std::string_view likelihoodWord(Likelihood likelihood) {
    switch (likelihood) {
    case Likelihood::Possible:
        return "possible";
    case Likelihood::Likely:
        return "likely";
    case Likelihood::Definite:
        return "definite";
    }
    return "";
}

/// Something that the profile of a field gives away.
struct Finding {
    std::string_view code; ///< of the catalogue
    Likelihood likelihood = Likelihood::Possible;
    std::uint64_t values = 0; ///< distinct values, null being one of its own
    std::uint64_t rows = 0;
    std::string detail; ///< what the figures say beyond the numbers, as a part of a sentence; may be empty
    /// An expression over `Value` that is true for exactly these values; empty without values, or if there are too many
    /// to list.
    std::string condition;

    bool operator==(const Finding&) const = default;
};

/// A number of distinct values and of the rows that have one of them.
struct Hits {
    std::uint64_t values = 0;
    std::uint64_t rows = 0;

    void add(std::uint64_t count) {
        ++values;
        rows += count;
    }
    bool operator==(const Hits&) const = default;
};

} // namespace tavix::findings
