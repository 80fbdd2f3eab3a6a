#include "report/ExpressionText.h"

namespace tavix {

namespace {

std::string quoted(std::string_view text) {
    std::string made = "'";
    for (const char c : text) {
        if (c == '\'')
            made += '\\';
        made += c;
    }
    return made + '\'';
}

} // namespace

std::string fieldText(std::string_view name) {
    std::string made = "`";
    for (const char c : name) {
        if (c == '`')
            made += '`';
        made += c;
    }
    return made + '`';
}

std::string literalText(std::string_view text) {
    const std::size_t end = text.find_last_not_of('\\') + 1;
    if (end == text.size())
        return quoted(text);
    std::string made = "concat(" + quoted(text.substr(0, end));
    for (std::size_t i = end; i < text.size(); ++i)
        made += ", char(92)";
    return made + ')';
}

std::string regularText(std::string_view character) {
    constexpr std::string_view kSpecial = ".+*?()|[]{}^$";
    if (character == "\\")
        return "[\\x5C]";
    if (character.size() == 1 && kSpecial.find(character.front()) != std::string_view::npos)
        return "\\" + std::string(character);
    return std::string(character);
}

} // namespace tavix
