#pragma once

#include "base/Encodings.h"

#include <string_view>

namespace tavix::source {

/// Why a file is taken to be in an encoding.
enum class EncodingReason {
    Stated,
    Mark,      ///< a byte order mark
    ZeroBytes, ///< as every other byte of UTF-16 in most languages
    Utf8,      ///< it is well-formed, or more of its characters beyond ASCII are than are not
    Fallback,
};

struct FoundEncoding {
    const CEncoding* encoding = nullptr;
    EncodingReason reason = EncodingReason::Fallback;
};

/// The encoding that a text begins in, by the rules of docs/definitions.md: a byte order mark, then the zero bytes of
/// UTF-16, then UTF-8, else windows-1252. `isWhole`: the text ends where `start` does.
[[nodiscard]] FoundEncoding detectEncoding(std::string_view start, bool isWhole);

/// The stated encoding; of UTF-16 and UTF-32 a byte order mark tells which order of bytes is meant.
[[nodiscard]] FoundEncoding stateEncoding(const CEncoding& encoding, std::string_view start);

} // namespace tavix::source
