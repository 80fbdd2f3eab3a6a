#include "filter/OneLine.h"

#include "base/Characters.h"

#include <cstdint>

namespace tavix {

std::string OneLine(std::string_view text) {
    std::string line;
    forEachCharacter(text, [&line](std::int32_t character, std::string_view bytes) {
        if (!isWhiteSpace(character))
            line += bytes;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    });
    while (line.ends_with(' '))
        line.pop_back();
    return line;
}

std::string Shortened(std::string_view text, std::size_t most) {
    if (countCharacters(text) <= most)
        return std::string(text);
    return std::string(text.substr(0, offsetOfCharacter(text, most))) + "…";
}

} // namespace tavix
