#include "filter/Completion.h"

#include "base/Ascii.h"
#include "base/Characters.h"

#include <algorithm>
#include <array>

namespace tavix {

namespace {

/// Characters. Almost any name could still be meant by a shorter beginning.
constexpr std::size_t kShortestPrefix = 2;

bool isNamePart(char c) {
    return isAsciiLetter(c) || isAsciiDigit(c) || c == '_';
}

bool isWordOfLanguage(std::string_view name) {
    constexpr std::array<std::string_view, 10> kWords = {"if",  "then", "else", "return", "and",
                                                         "not", "or",   "true", "false",  "null"};
    return std::any_of(kWords.begin(), kWords.end(),
                       [name](std::string_view word) { return equalsIgnoringAsciiCase(word, name); });
}

/// The end of the comment, quoted text or field name that begins at `at`; npos when it is not closed.
std::size_t endOf(std::string_view text, std::size_t at) {
    if (text[at] == '/') {
        const std::size_t end = text.find("*/", at + 2);
        return end == std::string_view::npos ? end : end + 2;
    }
    const char quote = text[at];
    for (++at; at < text.size(); ++at) {
        if (quote != '`' && text[at] == '\\' && at + 1 < text.size() && text[at + 1] == quote)
            ++at;
        else if (text[at] == quote)
            return at + 1;
    }
    return std::string_view::npos;
}

} // namespace

std::string_view NameBeingWritten(std::string_view written) {
    for (std::size_t at = 0; at < written.size();) {
        const char c = written[at];
        if (c == '\'' || c == '"' || c == '`' || written.substr(at).starts_with("/*")) {
            at = endOf(written, at);
            if (at == std::string_view::npos)
                return {};
            continue;
        }
        if (!isNamePart(c)) {
            ++at;
            continue;
        }
        std::size_t end = at;
        while (end < written.size() && isNamePart(written[end]))
            ++end;
        if (end == written.size()) {
            const std::string_view name = written.substr(at);
            const bool isNumber = c >= '0' && c <= '9';
            return isNumber || isWordOfLanguage(name) ? std::string_view() : name;
        }
        at = end;
    }
    return {};
}

bool OffersNames(std::string_view prefix, bool wasAskedFor, std::size_t count, std::string_view first) {
    const bool isLongEnough = wasAskedFor || countCharacters(prefix) >= kShortestPrefix;
    const bool isComplete = count == 1 && first == prefix;
    return isLongEnough && count > 0 && !isComplete;
}

std::string CompletedName(std::string_view name, bool isBeforeParenthesis) {
    return std::string(name) + (isBeforeParenthesis ? "" : "(");
}

} // namespace tavix
