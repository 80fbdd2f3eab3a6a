#include "expression/TextOperators.h"

#include "base/Ascii.h"
#include "base/NumberText.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cstring>

namespace tavix::expression {

namespace {

std::size_t skipDigits(std::string_view text, std::size_t at) {
    while (at < text.size() && isAsciiDigit(text[at]))
        ++at;
    return at;
}

template <typename AsciiMapping, typename Mapping>
void appendMapped(std::string& out, std::string_view text, AsciiMapping mapAscii, Mapping map) {
    const std::size_t start = out.size();
    out.resize(start + text.size());
    std::size_t at = 0;
    while (at < text.size() && isAscii(text[at])) {
        out[start + at] = mapAscii(text[at]);
        ++at;
    }
    out.resize(start + at);
    while (at < text.size()) {
        const std::size_t begin = at;
        const std::int32_t character = nextCharacter(text, at);
        const std::int32_t mapped = character < 0 ? character : map(character);
        if (mapped == character)
            out.append(text.substr(begin, at - begin));
        else
            appendCharacter(out, mapped);
    }
}

/// Moves back over the character that ends before `at`, consistent with nextCharacter().
std::size_t previousCharacter(std::string_view text, std::size_t at) {
    for (std::size_t size = 1; size <= 4 && size <= at; ++size) {
        std::size_t next = at - size;
        if (nextCharacter(text.substr(0, at), next) >= 0 && next == at)
            return at - size;
    }
    return at - 1;
}

bool isSpaceAt(std::string_view text, std::size_t begin) {
    return isWhiteSpace(nextCharacter(text, begin));
}

} // namespace

void appendLower(std::string& out, std::string_view text) {
    appendMapped(
        out, text, [](char c) { return asciiLower(c); }, [](std::int32_t c) { return u_tolower(c); });
}

void appendUpper(std::string& out, std::string_view text) {
    appendMapped(
        out, text, [](char c) { return asciiUpper(c); }, [](std::int32_t c) { return u_toupper(c); });
}

std::string lowerText(std::string_view text) {
    std::string lower;
    appendLower(lower, text);
    return lower;
}

void lowerAscii(const char* from, std::size_t size, char* to) {
    for (std::size_t i = 0; i < size; ++i)
        to[i] = asciiLower(from[i]);
}

void upperAscii(const char* from, std::size_t size, char* to) {
    for (std::size_t i = 0; i < size; ++i)
        to[i] = asciiUpper(from[i]);
}

std::string_view leftOf(std::string_view text, std::int64_t count) {
    return text.substr(0, offsetOfCharacter(text, static_cast<std::size_t>(std::max<std::int64_t>(0, count))));
}

std::string_view rightOf(std::string_view text, std::int64_t count) {
    std::size_t at = text.size();
    for (; count > 0 && at > 0; --count)
        at = previousCharacter(text, at);
    return text.substr(at);
}

std::string_view substringOf(std::string_view text, std::int64_t first, std::int64_t count) {
    if (count <= 0)
        return {};
    if (first < 1) {
        // The difference may exceed 64 bits.
        const std::uint64_t before = std::uint64_t{1} - static_cast<std::uint64_t>(first);
        if (before >= static_cast<std::uint64_t>(count))
            return {};
        count -= static_cast<std::int64_t>(before);
        first = 1;
    }
    return leftOf(text.substr(offsetOfCharacter(text, static_cast<std::size_t>(first - 1))), count);
}

std::string_view trimLeft(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size() && isSpaceAt(text, at))
        nextCharacter(text, at);
    return text.substr(at);
}

std::string_view trimRight(std::string_view text) {
    std::size_t end = text.size();
    while (end > 0) {
        const std::size_t begin = previousCharacter(text, end);
        if (!isSpaceAt(text.substr(0, end), begin))
            break;
        end = begin;
    }
    return text.substr(0, end);
}

std::int64_t positionOf(std::string_view text, std::string_view part) {
    if (part.empty())
        return 1;
    if (text.size() < part.size())
        return 0;
    // std::string_view::find takes quadratic time in the worst case.
    const void* const found = memmem(text.data(), text.size(), part.data(), part.size());
    if (!found)
        return 0;
    const auto at = static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
    return static_cast<std::int64_t>(countCharacters(text.substr(0, at))) + 1;
}

bool hasControlCharacter(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x20 || byte == 0x7F)
            return true;
        // U+0080 to U+009F are C2 80 to C2 9F; no other character has a byte C2.
        if (byte == 0xC2 && i + 1 < text.size() && (static_cast<unsigned char>(text[i + 1]) & 0xE0U) == 0x80)
            return true;
    }
    return false;
}

bool isNumberText(std::string_view text) {
    constexpr std::size_t kSurelyInRange = 300;
    std::size_t at = !text.empty() && (text.front() == '-' || text.front() == '+') ? 1 : 0;
    const std::size_t whole = at;
    at = skipDigits(text, at);
    std::size_t digits = at - whole;
    if (at < text.size() && text[at] == '.') {
        const std::size_t places = at + 1;
        at = skipDigits(text, places);
        digits += at - places;
    }
    if (digits == 0)
        return false;
    if (at == text.size() && at < kSurelyInRange)
        return true;
    return parseNumber(text).has_value();
}

} // namespace tavix::expression
