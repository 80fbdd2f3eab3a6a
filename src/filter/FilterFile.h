#pragma once

#include "base/FileWriter.h"
#include "base/Result.h"

#include <fstream>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

/// Files ".flt": an unsigned 16-bit little-endian length L, then L bytes of filter text in UTF-8.
namespace tavix {

inline constexpr std::string_view kFilterFilePatterns = "Filter Files (*.flt)|*.flt|All Files (*.*)|*.*||";
inline constexpr std::string_view kFilterFileExtension = "flt";

[[nodiscard]] Result<std::ifstream> openFilterToRead(const std::string& path);
/// An existing file is as it was until writeFilter() succeeds.
[[nodiscard]] Result<std::unique_ptr<FileWriter>> openFilterToWrite(const std::string& path);

/// Reads what the length says and nothing after it; bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] Result<std::string> readFilter(std::istream& file);
/// The length is the number of bytes modulo 65,536, and only so many bytes are written: readers of this format rely on
/// the two fitting each other, so a longer text is cut.
[[nodiscard]] std::string filterFileBytes(std::string_view text);
/// To be called once for a file.
Status writeFilter(FileWriter& file, std::string_view text);

} // namespace tavix
