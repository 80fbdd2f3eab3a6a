#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tavix {

/// A text encoding that files are read and written in: an entry of the catalogue, which lives as long as the program.
struct CEncoding {
    int code;                ///< the number of the code page
    const char* name;        ///< as files, job files and the repository name it: "UTF-8", "windows-1252"
    const char* description; ///< what people know it by: "Western European (Windows)"
    const char* converter;   ///< what ICU calls it
};

/// All encodings, UTF-8 first and then in the order of their codes.
[[nodiscard]] std::span<const CEncoding> encodingCatalogue();

/// Null when the catalogue has none of this code.
[[nodiscard]] const CEncoding* findEncoding(int code);

/// By its name, its code ("1252", "cp1252"), or a name that ICU knows for it ("latin1", "Shift_JIS"); case, hyphens and
/// the like do not matter. "UTF-16" and "UTF-32" are the little-endian ones. Null when the catalogue has none.
[[nodiscard]] const CEncoding* findEncoding(std::string_view name);

// What the readers fall back on and look for.
[[nodiscard]] const CEncoding& encodingUtf8();
[[nodiscard]] const CEncoding& encodingUtf16(bool isBigEndian);
[[nodiscard]] const CEncoding& encodingUtf32(bool isBigEndian);
[[nodiscard]] const CEncoding& encodingWindows1252();

} // namespace tavix
