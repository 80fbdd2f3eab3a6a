#include "source/ShownName.h"

#include "base/Characters.h"

namespace tavix::source {

std::string shownName(std::string_view name) {
    constexpr std::size_t kLongest = 100;
    std::string text;
    forEachCharacter(shortened(name, kLongest), [&](std::int32_t character, std::string_view bytes) {
        const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
        text += isControl ? std::string_view("\uFFFD") : bytes;
    });
    return text;
}

} // namespace tavix::source
