#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tavix {

/// A text encoding for reading and writing files: an entry of the catalogue, valid for the lifetime of the program.
struct CEncoding {
    int code;                ///< the number of the code page
    const char* name;        ///< the name in files, job files and the repository: "UTF-8", "windows-1252"
    const char* description; ///< the common name: "Western European (Windows)"
    const char* converter;   ///< ICU's name
};

/// All encodings, UTF-8 first, then in the order of their codes.
[[nodiscard]] std::span<const CEncoding> encodingCatalogue();

/// Null without an encoding of this code.
[[nodiscard]] const CEncoding* findEncoding(int code);

/// By its name, its code ("1252", "cp1252"), or one of ICU's names for it ("latin1", "Shift_JIS"), ignoring case,
/// hyphens and the like. "UTF-16" and "UTF-32" are the little-endian ones. Null if the catalogue has none.
[[nodiscard]] const CEncoding* findEncoding(std::string_view name);

// The encodings that detection knows.
[[nodiscard]] const CEncoding& encodingUtf8();
[[nodiscard]] const CEncoding& encodingUtf16(bool isBigEndian);
[[nodiscard]] const CEncoding& encodingUtf32(bool isBigEndian);
[[nodiscard]] const CEncoding& encodingWindows1252();

} // namespace tavix
