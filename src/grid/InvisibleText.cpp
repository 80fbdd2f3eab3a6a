#include "grid/InvisibleText.h"

#include "base/Characters.h"

#include <fmt/format.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cstdint>

namespace tavix {

namespace {

constexpr std::string_view kBlank = "·";
constexpr std::string_view kTab = "→";
constexpr std::string_view kNoBreakSpace = "⍽";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr UChar32 kDelete = 0x7F;
constexpr UChar32 kPictures = 0x2400;
constexpr UChar32 kDeletePicture = 0x2421;
constexpr UChar32 kBrailleBlank = 0x2800;

// For characters beyond ASCII. Some format characters, such as the Arabic number signs, are visible.
bool isInvisible(UChar32 character) {
    switch (u_charType(character)) {
    case U_SPACE_SEPARATOR:
    case U_LINE_SEPARATOR:
    case U_PARAGRAPH_SEPARATOR:
    case U_CONTROL_CHAR:
        return true;
    case U_FORMAT_CHAR:
        return u_hasBinaryProperty(character, UCHAR_PREPENDED_CONCATENATION_MARK) == 0;
    default:
        return u_hasBinaryProperty(character, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0 || character == kBrailleBlank;
    }
}

void appendVisible(std::string& text, UChar32 character) {
    if (character == '\t')
        text += kTab;
    else if (character < ' ')
        appendCharacter(text, kPictures + character);
    else if (character < kDelete)
        text += static_cast<char>(character);
    else if (character == kDelete)
        appendCharacter(text, kDeletePicture);
    else if (character == 0xA0)
        text += kNoBreakSpace;
    else if (isInvisible(character))
        text += fmt::format("‹U+{:04X}›", static_cast<std::uint32_t>(character));
    else
        appendCharacter(text, character);
}

} // namespace

std::string showInvisible(std::string_view text, std::size_t mostBytes) {
    const std::size_t leading = std::min(text.find_first_not_of(' '), text.size());
    const std::size_t trailing = leading == text.size() ? leading : text.find_last_not_of(' ') + 1;
    const std::size_t end = std::min(text.size(), mostBytes);
    std::string shown;
    shown.reserve(end);
    // A character that crosses the end is read whole.
    for (std::size_t at = 0; at < end;) {
        const std::size_t start = at;
        const UChar32 character = nextCharacter(text, at);
        if (character < 0)
            shown += kReplacement;
        else if (character == ' ' && (start < leading || start >= trailing))
            shown += kBlank;
        else
            appendVisible(shown, character);
    }
    return shown;
}

} // namespace tavix
