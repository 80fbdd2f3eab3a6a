#include "source/Utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace tavix::source {

namespace {

/// U+FFFD in UTF-8.
constexpr std::array<char, 3> kReplacement = {'\xEF', '\xBF', '\xBD'};

unsigned byteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

bool continues(std::string_view text, std::size_t at, unsigned low = 0x80, unsigned high = 0xBF) {
    return at < text.size() && byteAt(text, at) >= low && byteAt(text, at) <= high;
}

/// The size of the well-formed non-ASCII character that begins at `at`; 0 if there is none (Unicode, table 3-7).
std::size_t wideCharacter(std::string_view text, std::size_t at) {
    const unsigned lead = byteAt(text, at);
    if (lead >= 0xC2 && lead <= 0xDF)
        return continues(text, at + 1) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        const unsigned low = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned high = lead == 0xED ? 0x9F : 0xBF;
        return continues(text, at + 1, low, high) && continues(text, at + 2) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned low = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned high = lead == 0xF4 ? 0x8F : 0xBF;
        return continues(text, at + 1, low, high) && continues(text, at + 2) && continues(text, at + 3) ? 4 : 0;
    }
    return 0;
}

} // namespace

std::size_t validUtf8Prefix(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        if (i + 8 <= text.size()) {
            std::uint64_t word = 0;
            std::memcpy(&word, text.data() + i, sizeof word);
            if ((word & 0x8080808080808080U) == 0) {
                i += 8;
                continue;
            }
        }
        if (byteAt(text, i) < 0x80) {
            ++i;
            continue;
        }
        const std::size_t size = wideCharacter(text, i);
        if (size == 0)
            return i;
        i += size;
    }
    return i;
}

std::size_t unfinishedUtf8Tail(std::string_view text) {
    for (std::size_t back = 1; back <= 3 && back <= text.size(); ++back) {
        const unsigned byte = byteAt(text, text.size() - back);
        if (byte >= 0xC0)
            return (byte >= 0xF0 ? 4U : byte >= 0xE0 ? 3U : 2U) > back ? back : 0;
        if (byte < 0x80)
            return 0;
    }
    return 0;
}

std::size_t repairUtf8(std::string_view text, char* out) {
    char* to = out;
    std::size_t i = 0;
    while (i < text.size()) {
        const std::size_t good = validUtf8Prefix(text.substr(i));
        std::memcpy(to, text.data() + i, good);
        to += good;
        i += good;
        if (i < text.size()) {
            to = std::copy(kReplacement.begin(), kReplacement.end(), to);
            ++i;
        }
    }
    return static_cast<std::size_t>(to - out);
}

} // namespace tavix::source
