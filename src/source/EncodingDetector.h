#pragma once

#include "base/Encodings.h"

#include <string_view>

namespace tavix::source {

/// Why a file is taken to be in an encoding.
enum class EncodingReason {
    Stated,
    Mark,      ///< a byte order mark
    ZeroBytes, ///< every other byte is zero, as in UTF-16 of most languages
    Utf8,      ///< well-formed, or more of its non-ASCII characters are than are not
    Fallback,
};

struct FoundEncoding {
    const CEncoding* encoding = nullptr;
    EncodingReason reason = EncodingReason::Fallback;
};

/// The encoding of a text by its beginning, by the rules of docs/definitions.md: a byte order mark, then the zero bytes
/// of UTF-16, then UTF-8, else windows-1252. `isWhole`: `start` is the whole text.
[[nodiscard]] FoundEncoding detectEncoding(std::string_view start, bool isWhole);

/// The stated encoding; for UTF-16 and UTF-32 a byte order mark decides the order of bytes.
[[nodiscard]] FoundEncoding stateEncoding(const CEncoding& encoding, std::string_view start);

} // namespace tavix::source
