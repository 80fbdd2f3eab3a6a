#include "base/NoteText.h"

#include "base/Characters.h"

#include <fmt/format.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace tavix {

namespace {

bool isLineEnd(UChar32 character) {
    return character == '\n' || character == '\v' || character == '\f' || character == 0x85 || character == 0x2028 ||
           character == 0x2029;
}

Status check(std::string_view text, std::size_t longest, std::string_view what) {
    std::size_t count = 0;
    bool isUtf8 = true;
    forEachCharacter(text, [&](UChar32 character, std::string_view) {
        ++count;
        isUtf8 = isUtf8 && character >= 0;
    });
    if (!isUtf8)
        return Error{fmt::format("The {} is not valid UTF-8.", what)};
    if (count > longest)
        return Error{fmt::format("The {} is too long: {} characters, and {} is the most.", what, count, longest)};
    return {};
}

} // namespace

std::string tidyNote(std::string_view text) {
    std::string tidied;
    tidied.reserve(text.size());
    std::size_t end = 0;       // after the last visible character
    std::size_t lineStart = 0; // of the current line
    bool afterReturn = false;
    forEachCharacter(text, [&](UChar32 character, std::string_view bytes) {
        const bool isSecondHalf = afterReturn && character == '\n';
        afterReturn = character == '\r';
        if (isSecondHalf)
            return;
        if (character == '\r' || isLineEnd(character)) {
            tidied += '\n';
            lineStart = tidied.size();
            return;
        }
        if (character >= 0 && character != '\t' && u_iscntrl(character) && u_charType(character) == U_CONTROL_CHAR)
            return;
        if (!isWhiteSpace(character) && end == 0)
            tidied.erase(0, lineStart);
        tidied += bytes;
        if (!isWhiteSpace(character))
            end = tidied.size();
    });
    tidied.resize(end);
    return tidied;
}

std::string tidyNoteCategory(std::string_view name) {
    std::string tidied;
    bool gap = false;
    forEachCharacter(name, [&](UChar32 character, std::string_view bytes) {
        if (isWhiteSpace(character) || (character >= 0 && u_charType(character) == U_CONTROL_CHAR)) {
            gap = true;
            return;
        }
        if (gap && !tidied.empty())
            tidied += ' ';
        gap = false;
        tidied += bytes;
    });
    return tidied;
}

Status checkNote(std::string_view text) {
    if (text.empty())
        return Error{"A note needs a text."};
    return check(text, kLongestNote, "note");
}

Status checkNoteCategory(std::string_view name) {
    if (name.empty())
        return Error{"A note category needs a name."};
    return check(name, kLongestNoteCategory, "name of the category");
}

Status checkAlertDescription(std::string_view text) {
    return check(text, kLongestAlertDescription, "description");
}

bool isSameNoteCategory(std::string_view a, std::string_view b) {
    const auto unicode = [](std::string_view text) {
        return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
    };
    return a == b || unicode(a).caseCompare(unicode(b), U_FOLD_CASE_DEFAULT) == 0;
}

} // namespace tavix
