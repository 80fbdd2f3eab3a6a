#include "cli/DisplayText.h"

#include "base/Characters.h"

#include <fmt/format.h>
#include <unicode/uchar.h>

#include <algorithm>

namespace tavix::cli {

namespace {

constexpr UChar32 kReplacement = 0xFFFD;

/// Decodes the character at `position` and moves `position` past it. U+FFFD for a byte that begins none.
UChar32 nextShown(std::string_view text, std::size_t& position) {
    const UChar32 character = nextCharacter(text, position);
    return character < 0 ? kReplacement : character;
}

std::size_t characterWidth(UChar32 character) {
    if (character >= 0x20 && character < 0x7F)
        return 1;
    switch (u_charType(character)) {
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_FORMAT_CHAR:
    case U_CONTROL_CHAR:
        return 0;
    default:
        break;
    }
    const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

bool isHarmful(UChar32 character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x200E || character == 0x200F ||
           (character >= 0x2028 && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

void appendEscape(std::string& out, UChar32 character) {
    switch (character) {
    case '\n':
        out += "\\n";
        return;
    case '\r':
        out += "\\r";
        return;
    case '\t':
        out += "\\t";
        return;
    default:
        break;
    }
    const auto number = static_cast<unsigned>(character);
    out += number < 0x100 ? fmt::format("\\x{:02x}", number) : fmt::format("\\u{:04x}", number);
}

/// Appends a text without line ends to `lines`.
void fold(std::string_view paragraph, std::size_t width, std::vector<std::string>& lines) {
    std::size_t start = 0;   // of the line
    std::size_t lastGap = 0; // after the last blank at which the line may break
    std::size_t used = 0;
    for (std::size_t position = 0; position < paragraph.size();) {
        const std::size_t begin = position;
        const std::size_t taken = characterWidth(nextShown(paragraph, position));
        if (used + taken > width && begin > start && paragraph[begin] != ' ') {
            const std::size_t end = lastGap > start ? lastGap : begin;
            std::string_view line = paragraph.substr(start, end - start);
            line = line.substr(0, line.find_last_not_of(' ') + 1);
            lines.emplace_back(line);
            start = end;
            used = displayWidth(paragraph.substr(start, begin - start));
        }
        used += taken;
        if (paragraph[begin] == ' ')
            lastGap = position;
    }
    lines.emplace_back(paragraph.substr(start));
}

} // namespace

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    for (std::size_t position = 0; position < text.size();)
        width += characterWidth(nextShown(text, position));
    return width;
}

std::string printable(std::string_view text) {
    if (std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7F; }))
        return std::string(text);
    std::string out;
    out.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t begin = position;
        const UChar32 character = nextShown(text, position);
        if (isHarmful(character))
            appendEscape(out, character);
        else if (character == kReplacement)
            out += "\uFFFD";
        else
            out += text.substr(begin, position - begin);
    }
    return out;
}

std::vector<std::string> foldToWidth(std::string_view text, std::size_t width) {
    std::vector<std::string> lines;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        fold(printable(text.substr(start, end - start)), width, lines);
        start = end + 1;
    }
    return lines;
}

std::string cutToWidth(std::string_view text, std::size_t width) {
    if (text.size() <= width)
        return std::string(text);
    std::size_t used = 0;
    std::size_t fitting = 0; // bytes that fit together with the ellipsis
    for (std::size_t position = 0; position < text.size();) {
        used += characterWidth(nextShown(text, position));
        if (used > width)
            return width == 0 ? std::string() : std::string(text.substr(0, fitting)) + "…";
        if (used + 1 <= width)
            fitting = position;
    }
    return std::string(text);
}

} // namespace tavix::cli
