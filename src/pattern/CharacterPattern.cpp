#include "pattern/CharacterPattern.h"

#include "base/Characters.h"

#include <fmt/format.h>
#include <unicode/uchar.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace tavix::pattern {

namespace {

constexpr std::array<char, 128> makeAsciiClasses() {
    std::array<char, 128> classes{};
    for (std::size_t i = 0; i < classes.size(); ++i) {
        const auto c = static_cast<char>(i);
        if (c >= 'A' && c <= 'Z')
            classes[i] = 'A';
        else if (c >= 'a' && c <= 'z')
            classes[i] = 'a';
        else if (c >= '0' && c <= '9')
            classes[i] = '9';
        else
            classes[i] = c;
    }
    return classes;
}

constexpr std::array<char, 128> kAsciiClasses = makeAsciiClasses();

/// The letter or digit that replaces a character; 0 for none.
char classOf(UChar32 character) {
    switch (u_charType(character)) {
    case U_UPPERCASE_LETTER:
    case U_TITLECASE_LETTER:
        return 'A';
    case U_LOWERCASE_LETTER:
    case U_MODIFIER_LETTER:
    case U_OTHER_LETTER:
        return 'a';
    case U_DECIMAL_DIGIT_NUMBER:
        return '9';
    default:
        return 0;
    }
}

} // namespace

void appendCharacterPattern(std::string& out, std::string_view utf8) {
    const std::size_t start = out.size();
    out.append(utf8);
    char* to = out.data() + start;
    std::size_t i = 0;
    while (i < utf8.size()) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        if (byte < 0x80) {
            *to++ = kAsciiClasses[byte];
            ++i;
            continue;
        }
        std::size_t next = i;
        const std::int32_t character = nextCharacter(utf8, next);
        const char mark = character < 0 ? '\0' : classOf(character);
        if (mark != 0) {
            *to++ = mark;
            i = next;
        }
        while (i < next)
            *to++ = utf8[i++];
    }
    out.resize(static_cast<std::size_t>(to - out.data()));
}

std::string shortPattern(std::string_view pattern) {
    std::string out;
    std::size_t i = 0;
    while (i < pattern.size()) {
        std::size_t next = i;
        nextCharacter(pattern, next);
        const std::size_t size = next - i;
        const std::string_view character = pattern.substr(i, size);
        std::size_t run = 1;
        while (pattern.substr(i + run * size, size) == character)
            ++run;
        i += run * size;
        if (run >= 4 || character == "{") {
            out.append(character);
            fmt::format_to(std::back_inserter(out), "{{{}}}", run);
        } else {
            for (std::size_t k = 0; k < run; ++k)
                out.append(character);
        }
    }
    return out;
}

} // namespace tavix::pattern
