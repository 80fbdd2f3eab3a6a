#pragma once

#include "base/Result.h"

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

namespace tavix::worksheet {

/// Whether a sheet may have this name: 1 to 31 UTF-16 units of UTF-8 text without control characters and []:*?/\ and
/// without an apostrophe at either end, and not "History", which spreadsheet programs reserve.
Status checkSheetName(std::string_view name);

/// The valid name closest to the text: invalid characters become "_", and the rest is cut; "Sheet" for an empty text.
[[nodiscard]] std::string toSheetName(std::string_view text);

/// The names in use in one workbook. Names that differ only in case are equal.
class SheetNames {
  public:
    [[nodiscard]] static bool same(std::string_view left, std::string_view right);
    [[nodiscard]] bool has(std::string_view name) const;
    [[nodiscard]] std::size_t count() const { return m_folded.size(); }
    /// Fails if the name is invalid or in use, or if there are already too many sheets.
    Status add(std::string_view name);
    void remove(std::string_view name);
    /// Reserves "Name (2)" for `from` 2, or the next free number; cuts the name if necessary. Fails if there are
    /// already too many sheets.
    [[nodiscard]] Result<std::string> addFurther(std::string_view name, int from);

    /// Fails if so many additional sheets are too many.
    [[nodiscard]] Status checkRoom(std::int64_t further) const;

  private:
    std::set<std::string> m_folded; ///< case-folded
};

} // namespace tavix::worksheet
