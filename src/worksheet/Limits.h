#pragma once

#include <cstdint>

/// The limits of the file format ([MS-XLS], BIFF8), and our own.
namespace tavix::worksheet {

inline constexpr std::int64_t kMaxRows = 65536; ///< of one sheet; further rows continue on the next sheet
inline constexpr int kMaxColumns = 256;
inline constexpr int kMaxTextLength = 32767;   ///< UTF-16 units of a cell
inline constexpr int kMaxSheetNameLength = 31; ///< UTF-16 units
/// Sheets of a file, including those on which rows continue. The format has no such limit, but a row number of ten
/// digits should be an error and not a file of empty sheets.
inline constexpr std::size_t kMaxSheets = 1000;
/// Readers use signed 32-bit file positions.
inline constexpr std::int64_t kMaxBytes = 2'000'000'000;

} // namespace tavix::worksheet
