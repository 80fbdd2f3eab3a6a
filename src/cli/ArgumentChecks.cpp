#include "cli/ArgumentChecks.h"

#include "base/Ascii.h"
#include "base/NumberText.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

namespace tavix::cli {

namespace {

std::string rangeText(std::int64_t least, std::int64_t most) {
    return most == std::numeric_limits<std::int64_t>::max() ? fmt::format("a whole number from {} on", least)
                                                            : fmt::format("a whole number from {} to {}", least, most);
}

/// "G", "GB" and "GiB" in any case are 2^30, and so on; nothing for any other text.
std::optional<double> unitOf(std::string_view text) {
    constexpr std::string_view kUnits = "kmgt";
    const std::string unit = asciiLower(text);
    if (unit.empty() || unit == "b")
        return 1;
    const auto power = kUnits.find(unit.front());
    const std::string_view rest = std::string_view(unit).substr(1);
    if (power == std::string_view::npos || !(rest.empty() || rest == "b" || rest == "ib"))
        return std::nullopt;
    return std::pow(1024.0, static_cast<double>(power + 1));
}

std::optional<std::int64_t> parseSize(std::string_view text) {
    const std::size_t end = std::min(text.find_first_not_of("0123456789."), text.size());
    std::string_view unit = text.substr(end);
    unit.remove_prefix(std::min(unit.find_first_not_of(' '), unit.size()));
    const auto number = parseNumber(text.substr(0, end));
    const auto factor = unitOf(unit);
    if (!number || !factor)
        return std::nullopt;
    constexpr double kMost = 1e18;
    const double bytes = *number * *factor;
    if (bytes < 1 || bytes > kMost)
        return std::nullopt;
    return saturateToInt64(bytes);
}

} // namespace

CLI::Validator wholeNumber(std::int64_t least, std::int64_t most) {
    return CLI::Validator(
        [least, most](std::string& text) {
            const auto number = parseInteger(text);
            if (!number || *number < least || *number > most)
                return fmt::format("\"{}\" is not {}", text, rangeText(least, most));
            // CLI11 would read digits after a leading zero as octal.
            text = formatInteger(*number);
            return std::string();
        },
        "");
}

CLI::Validator percentage() {
    return CLI::Validator(
        [](std::string& text) {
            const std::string_view digits = std::string_view(text).substr(0, text.find_last_not_of(" %") + 1);
            const auto number = parseNumber(digits);
            if (!number || *number < 0 || *number > 100)
                return fmt::format("\"{}\" is not a percentage from 0 to 100", text);
            text = formatReal(*number);
            return std::string();
        },
        "");
}

CLI::Validator oneOf(std::vector<std::string> words) {
    return CLI::Validator(
        [words = std::move(words)](std::string& text) {
            if (std::find(words.begin(), words.end(), text) != words.end())
                return std::string();
            return fmt::format("\"{}\" is not one of {}", text, fmt::join(words, ", "));
        },
        "");
}

CLI::Validator memorySize() {
    return CLI::Validator(
        [](std::string& text) {
            const auto bytes = parseSize(text);
            if (!bytes)
                return fmt::format("\"{}\" is not an amount of memory such as 500M or 2G", text);
            text = formatInteger(*bytes);
            return std::string();
        },
        "");
}

} // namespace tavix::cli
