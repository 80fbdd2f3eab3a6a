#include "base/NumberText.h"

#include "base/Ascii.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace tavix {

namespace {} // namespace

std::string formatInteger(std::int64_t value) {
    std::array<char, 24> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    return {buffer.data(), end};
}

std::string formatGrouped(std::int64_t value) {
    std::string text = formatInteger(value);
    const std::size_t sign = value < 0 ? 1 : 0;
    for (std::size_t end = text.size(); end > sign + 3;) {
        end -= 3;
        text.insert(end, 1, ',');
    }
    return text;
}

std::string formatReal(double value) {
    // The shortest text of 100000 would be 1e+05; people read plain digits as long as they can count them.
    constexpr double kPlainFrom = 1e-5;
    constexpr double kPlainBelow = 1e15;
    const double size = std::abs(value);
    const auto form = size == 0.0 || (size >= kPlainFrom && size < kPlainBelow) ? std::chars_format::fixed
                                                                                : std::chars_format::general;
    std::array<char, 40> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), size == 0.0 ? 0.0 : value, form).ptr;
    return {buffer.data(), end};
}

std::string formatReadable(double value) {
    constexpr int kDigits = 6;
    constexpr int kExactDigits = 15; // of a double
    const double size = std::abs(value);
    if (!(size >= 1e-5 && size < 1e15)) {
        if (size == 0 || !(size < 1e-5))
            return formatReal(value);
        std::array<char, 40> buffer{};
        const auto end =
            std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general, kDigits).ptr;
        return {buffer.data(), end};
    }
    const int before = static_cast<int>(std::floor(std::log10(size))) + 1;
    const int places = before > 0 ? std::clamp(kExactDigits - before, 0, kDigits) : kDigits - before;
    std::string text = formatFixed(value, places);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.ends_with('.'))
            text.pop_back();
    }
    return text;
}

std::string formatFixed(double value, int places) {
    std::array<char, 400> buffer{};
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, places).ptr;
    std::string text(buffer.data(), end);
    if (text.starts_with('-') && text.find_first_not_of("-0.") == std::string::npos)
        text.erase(0, 1);
    return text;
}

std::optional<double> parseNumber(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-'))
            return std::nullopt;
    }
    const std::string_view unsignedText = text.starts_with('-') ? text.substr(1) : text;
    // from_chars would also accept "inf" and "nan".
    if (unsignedText.empty() || !(isAsciiDigit(unsignedText.front()) || unsignedText.front() == '.'))
        return std::nullopt;
    double value = 0;
    const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (status != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-'))
            return std::nullopt;
    }
    std::int64_t value = 0;
    const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (status != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::int64_t decimalPrefix(std::string_view text) {
    const auto start = text.find_first_not_of(" \t\n\v\f\r");
    if (start == std::string_view::npos)
        return 0;
    text.remove_prefix(start);
    if (text.size() > 1 && text.front() == '+' && isAsciiDigit(text[1]))
        text.remove_prefix(1);
    std::int64_t value = 0;
    const auto status = std::from_chars(text.data(), text.data() + text.size(), value).ec;
    if (status == std::errc::result_out_of_range)
        return text.front() == '-' ? std::numeric_limits<std::int64_t>::min()
                                   : std::numeric_limits<std::int64_t>::max();
    return status == std::errc() ? value : 0;
}

std::int64_t saturateToInt64(double value) {
    if (std::isnan(value))
        return 0;
    if (value >= 9223372036854775808.0)
        return std::numeric_limits<std::int64_t>::max();
    if (value < -9223372036854775808.0)
        return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

} // namespace tavix
