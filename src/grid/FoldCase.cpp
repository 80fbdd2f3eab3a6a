#include "grid/FoldCase.h"

#include "base/Characters.h"

#include <unicode/unistr.h>

#include <cstdint>

namespace tavix {

std::string foldCase(std::string_view text) {
    std::string folded;
    if (isAscii(text)) {
        folded.reserve(text.size());
        for (const char c : text)
            folded += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        return folded;
    }
    icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())))
        .foldCase()
        .toUTF8String(folded);
    return folded;
}

} // namespace tavix
