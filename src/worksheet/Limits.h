#pragma once

#include <cstdint>

/// What the file format holds ([MS-XLS], BIFF8), and what we allow beyond it.
namespace tavix::worksheet {

inline constexpr std::int64_t kMaxRows = 65536; ///< of one sheet; further rows go to a further sheet
inline constexpr int kMaxColumns = 256;
inline constexpr int kMaxTextLength = 32767;   ///< UTF-16 units of a cell
inline constexpr int kMaxSheetNameLength = 31; ///< UTF-16 units
/// Sheets of a file, those on which rows continue included. The format has no such limit, but a row number of ten
/// digits should be an error and not a file of empty sheets.
inline constexpr std::size_t kMaxSheets = 1000;
/// Readers keep positions in signed 32-bit numbers.
inline constexpr std::int64_t kMaxBytes = 2'000'000'000;

} // namespace tavix::worksheet
