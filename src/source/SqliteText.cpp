#include "source/SqliteText.h"

#include "base/Characters.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace tavix::source {

namespace {

/// U+10FFFF, which is not a character. The digits after it begin with a byte order mark, because a database file may be
/// in UTF-16.
constexpr std::string_view kNulMark = "\xF4\x8F\xBF\xBF";
constexpr std::string_view kDigits = "0123456789ABCDEF";
/// Engines limit the length of a statement.
constexpr std::size_t kLongestLiteral = 100'000;
/// Reals are written with 15 digits, so several share a text.
constexpr double kSharedText = 1e-14;

bool isHex(std::string_view text) {
    return text.size() % 2 == 0 && text.find_first_not_of(kDigits) == std::string_view::npos;
}

std::string bytesOf(std::string_view digits) {
    std::string bytes;
    bytes.reserve(digits.size() / 2);
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes += static_cast<char>(kDigits.find(digits[i]) << 4 | kDigits.find(digits[i + 1]));
    return bytes;
}

std::string fromUtf16(std::string_view bytes, bool isBigEndian) {
    constexpr std::uint32_t kReplacement = 0xFFFD;
    const auto unit = [&](std::size_t i) {
        const auto first = static_cast<unsigned char>(bytes[2 * i]);
        const auto second = static_cast<unsigned char>(bytes[2 * i + 1]);
        return static_cast<std::uint32_t>(isBigEndian ? first << 8 | second : second << 8 | first);
    };
    const std::size_t units = bytes.size() / 2;
    std::string text(units * 3, '\0');
    char* to = text.data();
    for (std::size_t i = 0; i < units; ++i) {
        std::uint32_t character = unit(i);
        const bool isHigh = character >= 0xD800 && character < 0xDC00;
        const std::uint32_t next = isHigh && i + 1 < units ? unit(i + 1) : 0;
        if (next >= 0xDC00 && next < 0xE000) {
            character = 0x10000 + ((character - 0xD800) << 10) + (next - 0xDC00);
            ++i;
        } else if (character >= 0xD800 && character < 0xE000) {
            character = kReplacement;
        }
        to = putCharacter(to, character);
    }
    text.resize(static_cast<std::size_t>(to - text.data()));
    return text;
}

/// Only the text that the engine writes for an integer: no plus, no leading zeros.
std::optional<std::int64_t> integerOf(std::string_view text) {
    std::int64_t value = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (failure != std::errc() || end != text.data() + text.size() || fmt::to_string(value) != text)
        return std::nullopt;
    return value;
}

std::optional<double> realOf(std::string_view text) {
    if (text == "Inf" || text == "-Inf")
        return std::numeric_limits<double>::infinity() * (text.front() == '-' ? -1 : 1);
    if (text.find('.') == std::string_view::npos)
        return std::nullopt;
    double value = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (failure != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::string realRange(const std::string& name, double value) {
    if (std::isinf(value))
        return fmt::format("{} = {}9e999", name, value < 0 ? "-" : "");
    const double room = std::abs(value) * kSharedText;
    const double limit = std::numeric_limits<double>::max();
    return fmt::format("{} BETWEEN {:.17e} AND {:.17e}", name, std::max(value - room, -limit),
                       std::min(value + room, limit));
}

} // namespace

std::string sqliteTextOf(const std::string& name) {
    return fmt::format("CASE typeof({0}) WHEN 'blob' THEN hex({0}) WHEN 'text' THEN CASE WHEN instr({0}, char(0)) THEN "
                       "char(1114111) || hex(char(65279) || {0}) ELSE {0} END ELSE CAST({0} AS TEXT) END",
                       name);
}

std::optional<std::string> decodedNulText(std::string_view text) {
    if (!text.starts_with(kNulMark) || !isHex(text.substr(kNulMark.size())))
        return std::nullopt;
    const std::string bytes = bytesOf(text.substr(kNulMark.size()));
    if (bytes.starts_with("\xEF\xBB\xBF"))
        return bytes.substr(3);
    const bool isBigEndian = bytes.starts_with("\xFE\xFF");
    if (!isBigEndian && !bytes.starts_with("\xFF\xFE"))
        return std::nullopt;
    return fromUtf16(std::string_view(bytes).substr(2), isBigEndian);
}

std::string sqliteIndexCondition(const std::string& name, std::string_view text) {
    if (text.size() > kLongestLiteral)
        return {};
    std::string others;
    if (const auto integer = integerOf(text); integer && *integer != std::numeric_limits<std::int64_t>::min())
        others += fmt::format(", {}", *integer);
    else if (integer)
        return {}; // its literal would be read as a real
    if (isHex(text))
        others += fmt::format(", x'{}'", text);
    std::string condition = fmt::format("{} IN (?{})", name, others);
    if (const auto real = realOf(text))
        condition = fmt::format("({} OR {})", condition, realRange(name, *real));
    return condition;
}

bool isSentUnchanged(std::string_view text) {
    // U+FFFD may have replaced bytes that are not UTF-8.
    return text.find('\0') == std::string_view::npos && text.find("\xEF\xBF\xBD") == std::string_view::npos;
}

} // namespace tavix::source
