#pragma once

#include <CLI/Error.hpp>
#include <CLI/Validators.hpp>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

/// Validators with error texts of our own. Pass them to an option's `transform`, since they rewrite the argument into a
/// form that CLI11 can convert.
namespace tavix::cli {

/// A decimal number in this range.
[[nodiscard]] CLI::Validator wholeNumber(std::int64_t least = 0,
                                         std::int64_t most = std::numeric_limits<std::int64_t>::max());
/// A number from 0 to 100, perhaps with a percent sign. Becomes the number.
[[nodiscard]] CLI::Validator percentage();
/// One of these words.
[[nodiscard]] CLI::Validator oneOf(std::vector<std::string> words);
/// A number of bytes above 0 with an optional unit of 1024s: "500M", "2 GB", "1.5g". Becomes the number of bytes.
[[nodiscard]] CLI::Validator memorySize();

} // namespace tavix::cli
