#include "worksheet/SheetNames.h"

#include "worksheet/Limits.h"

#include <fmt/format.h>
#include <unicode/unistr.h>

namespace tavix::worksheet {

namespace {

icu::UnicodeString unicodeOf(std::string_view text) {
    return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

std::string utf8Of(const icu::UnicodeString& text) {
    std::string utf8;
    text.toUTF8String(utf8);
    return utf8;
}

std::string folded(std::string_view name) {
    return utf8Of(unicodeOf(name).foldCase());
}

bool isForbidden(char16_t unit) {
    return unit < 0x20 || unit == 0x7F || std::u16string_view(u"[]:*?/\\").find(unit) != std::u16string_view::npos;
}

/// At most so many units, without half of a surrogate pair at the end.
void cut(icu::UnicodeString& text, std::int32_t length) {
    if (text.length() > length)
        text.truncate(text.getChar32Start(length));
}

/// Names are short; of a hostile text only the beginning is examined.
std::string_view start(std::string_view text) {
    return text.substr(0, 4096);
}

} // namespace

Status checkSheetName(std::string_view name) {
    const icu::UnicodeString text = unicodeOf(start(name));
    if (text.isEmpty())
        return Error{"The worksheet has no name"};
    if (text.length() > kMaxSheetNameLength)
        return Error{
            fmt::format("The worksheet name \"{}\" is longer than {} characters", utf8Of(text), kMaxSheetNameLength)};
    for (std::int32_t at = 0; at < text.length(); ++at)
        if (isForbidden(text[at]))
            return Error{fmt::format("The worksheet name \"{}\" has a character that is not allowed in it", name)};
    if (text[0] == u'\'' || text[text.length() - 1] == u'\'')
        return Error{fmt::format("The worksheet name \"{}\" starts or ends with an apostrophe", name)};
    if (folded(name) == "history")
        return Error{"Spreadsheet programs keep the worksheet name \"History\" for themselves"};
    return {};
}

std::string toSheetName(std::string_view text) {
    icu::UnicodeString name = unicodeOf(start(text));
    cut(name, kMaxSheetNameLength);
    for (std::int32_t at = 0; at < name.length(); ++at)
        if (isForbidden(name[at]))
            name.setCharAt(at, u'_');
    if (name.isEmpty())
        return "Sheet";
    for (std::int32_t end : {0, name.length() - 1})
        if (name[end] == u'\'')
            name.setCharAt(end, u'_');
    const std::string valid = utf8Of(name);
    return folded(valid) == "history" ? valid + "_" : valid;
}

bool SheetNames::same(std::string_view left, std::string_view right) {
    return folded(start(left)) == folded(start(right));
}

bool SheetNames::has(std::string_view name) const {
    return m_folded.count(folded(start(name))) != 0;
}

Status SheetNames::checkRoom(std::int64_t further) const {
    if (further > static_cast<std::int64_t>(kMaxSheets - count()))
        return Error{fmt::format("There are more rows or sheets than the {} sheets of a workbook hold", kMaxSheets)};
    return {};
}

Status SheetNames::add(std::string_view name) {
    if (Status valid = checkSheetName(name); !valid)
        return valid;
    if (has(name))
        return Error{fmt::format("There is already a worksheet \"{}\"", name)};
    if (Status room = checkRoom(1); !room)
        return room;
    m_folded.insert(folded(name));
    return {};
}

void SheetNames::remove(std::string_view name) {
    m_folded.erase(folded(name));
}

Result<std::string> SheetNames::addFurther(std::string_view name, int from) {
    if (Status room = checkRoom(1); !room)
        return room.error();
    for (int number = from;; ++number) {
        const std::string suffix = fmt::format(" ({})", number);
        icu::UnicodeString base = unicodeOf(name);
        cut(base, kMaxSheetNameLength - static_cast<std::int32_t>(suffix.size()));
        std::string further = utf8Of(base) + suffix;
        if (m_folded.insert(folded(further)).second)
            return further;
    }
}

} // namespace tavix::worksheet
