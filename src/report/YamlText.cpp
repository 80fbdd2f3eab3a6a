#include "report/YamlText.h"

#include "base/Ascii.h"
#include "base/Characters.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tavix {

namespace {

/// Printable in YAML, and no line break in any of its versions.
bool isPrintable(std::int32_t c) {
    if (c < 0xA0)
        return c >= 0x20 && c < 0x7F;
    constexpr std::int32_t kLineSeparator = 0x2028;
    constexpr std::int32_t kParagraphSeparator = 0x2029;
    constexpr std::int32_t kByteOrderMark = 0xFEFF;
    const bool isNoCharacter = (c & 0xFFFE) == 0xFFFE || (c >= 0xD800 && c <= 0xDFFF);
    return c != kLineSeparator && c != kParagraphSeparator && c != kByteOrderMark && !isNoCharacter;
}

std::string escaped(std::int32_t c) {
    switch (c) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return c < 0x100     ? fmt::format("\\x{:02X}", c)
               : c < 0x10000 ? fmt::format("\\u{:04X}", c)
                             : fmt::format("\\U{:08X}", c);
    }
}

bool isPlain(std::string_view text) {
    constexpr std::array<std::string_view, 9> kWords{"true", "false", "null", "yes", "no", "on", "off", "y", "n"};
    if (text.empty() || !isAsciiLetter(text.front()) || text.back() == ' ')
        return false;
    const std::string lower = asciiLower(text);
    return std::find(kWords.begin(), kWords.end(), lower) == kWords.end() &&
           std::all_of(text.begin(), text.end(), [](char c) {
               return isAsciiLetter(c) || isAsciiDigit(c) || c == ' ' || c == '_' || c == '-' || c == '.';
           });
}

} // namespace

std::string yamlScalar(std::string_view text) {
    if (isPlain(text))
        return std::string(text);
    bool isAllPrintable = true;
    std::string inSingle = "'";
    std::string inDouble = "\"";
    forEachCharacter(text, [&](std::int32_t c, std::string_view bytes) {
        isAllPrintable = isAllPrintable && isPrintable(c);
        inSingle += c == '\'' ? "''" : bytes;
        if (c == '"' || c == '\\')
            inDouble += '\\';
        inDouble += isPrintable(c) ? std::string(bytes) : escaped(c);
    });
    // Doubled quotes are hard to read, and escapes harder.
    const bool isDoublePlainer =
        text.find('\'') != std::string_view::npos && text.find_first_of("\"\\") == std::string_view::npos;
    return isAllPrintable && !isDoublePlainer ? inSingle + '\'' : inDouble + '"';
}

std::string yamlComment(std::string_view text) {
    std::string made;
    forEachCharacter(text, [&](std::int32_t c, std::string_view bytes) {
        made += c < 0 ? "\\x??" : isPrintable(c) ? std::string(bytes) : escaped(c);
    });
    return made;
}

bool isYamlText(std::string_view text) {
    bool isText = true;
    forEachCharacter(text, [&](std::int32_t c, std::string_view) { isText = isText && c > 0; });
    return isText;
}

} // namespace tavix
