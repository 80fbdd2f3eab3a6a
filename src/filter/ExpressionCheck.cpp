#include "filter/ExpressionCheck.h"

#include "expression/Program.h"
#include "filter/FilterFields.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace tavix {

namespace {

std::vector<expression::Field> fieldsOfDistribution() {
    std::vector<expression::Field> fields;
    fields.reserve(kFilterFields.size());
    for (const FilterField& field : kFilterFields)
        fields.push_back({std::string(field.name),
                          field.type == FieldTypeCode::Count ? expression::Type::Integer : expression::Type::Text});
    return fields;
}

bool isNamePart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool isWordOfLanguage(std::string_view name) {
    constexpr std::array<std::string_view, 10> kWords = {"if",  "then", "else", "return", "and",
                                                         "not", "or",   "true", "false",  "null"};
    return std::any_of(kWords.begin(), kWords.end(), [name](std::string_view word) {
        return std::equal(word.begin(), word.end(), name.begin(), name.end(),
                          [](char a, char b) { return a == (b >= 'A' && b <= 'Z' ? b - 'A' + 'a' : b); });
    });
}

/// Where what begins at `at` ends; npos when it is still open.
std::size_t endOf(std::string_view text, std::size_t at) {
    if (text[at] == '/') {
        const std::size_t end = text.find("*/", at + 2);
        return end == std::string_view::npos ? end : end + 2;
    }
    const char quote = text[at];
    for (++at; at < text.size(); ++at) {
        if (quote == '\'' && text.substr(at).starts_with("\\'"))
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
    const std::vector<expression::Field> fields = fieldsOfDistribution();
    expression::Compiled compiled = expression::compile(filterText, fields, expression::Wanted::Condition);
    if (!compiled.ok())
        return {std::move(compiled.error), {}};
    return {{}, std::move(compiled.remark)};
}

std::string_view NameBeingWritten(std::string_view written) {
    for (std::size_t at = 0; at < written.size();) {
        const char c = written[at];
        if (c == '\'' || c == '`' || written.substr(at).starts_with("/*")) {
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

} // namespace tavix
