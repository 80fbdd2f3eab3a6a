#include "grid/FoldCase.h"

#include "base/Ascii.h"
#include "base/Characters.h"

#include <unicode/unistr.h>

#include <cstdint>

namespace tavix {

std::string foldCase(std::string_view text) {
    if (isAscii(text))
        return asciiLower(text);
    std::string folded;
    icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())))
        .foldCase()
        .toUTF8String(folded);
    return folded;
}

} // namespace tavix
