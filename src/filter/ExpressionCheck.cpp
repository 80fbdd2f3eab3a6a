#include "filter/ExpressionCheck.h"

#include "access/FilterCode.h"
#include "base/Ascii.h"

#include <algorithm>
#include <array>

namespace tavix {

namespace {

bool isNamePart(char c) {
    return isAsciiLetter(c) || isAsciiDigit(c) || c == '_';
}

bool isWordOfLanguage(std::string_view name) {
    constexpr std::array<std::string_view, 10> kWords = {"if",  "then", "else", "return", "and",
                                                         "not", "or",   "true", "false",  "null"};
    return std::any_of(kWords.begin(), kWords.end(),
                       [name](std::string_view word) { return equalsIgnoringAsciiCase(word, name); });
}

/// Where what begins at `at` ends; npos when it is still open.
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

ExpressionCheck CheckFilterText(std::string_view filterText) {
    if (filterText.empty())
        return {};
    ExpressionCheck check;
    check.linesBefore = codeOf(filterText).linesBefore;
    expression::Compiled compiled = compileFilter(filterText);
    if (compiled.ok())
        check.remark = std::move(compiled.remark);
    else
        check.error = std::move(compiled.error);
    return check;
}

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
            const bool isNumber = isAsciiDigit(c);
            return isNumber || isWordOfLanguage(name) ? std::string_view() : name;
        }
        at = end;
    }
    return {};
}

} // namespace tavix
