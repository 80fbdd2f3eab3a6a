#pragma once

#include "base/Result.h"

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

namespace tavix::worksheet {

/// Whether a sheet may have this name: 1 to 31 UTF-16 units of UTF-8 text without control characters and []:*?/\ and
/// without an apostrophe at either end, and not "History", which spreadsheet programs keep for themselves.
Status checkSheetName(std::string_view name);

/// A valid name as near to the text as can be: what is not allowed becomes "_", the rest is cut; "Sheet" for nothing.
[[nodiscard]] std::string toSheetName(std::string_view text);

/// The names that are taken in one workbook. Names that differ only in case are the same.
class SheetNames {
  public:
    [[nodiscard]] static bool same(std::string_view left, std::string_view right);
    [[nodiscard]] bool has(std::string_view name) const;
    [[nodiscard]] std::size_t count() const { return m_folded.size(); }
    /// Fails when the name is invalid or taken, or when there are already too many sheets.
    Status add(std::string_view name);
    void remove(std::string_view name);
    /// Takes "Name (2)" for `from` 2, or the next number that is free; the name is cut where that would be too long.
    /// Fails when there are already too many sheets.
    [[nodiscard]] Result<std::string> addFurther(std::string_view name, int from);

    /// Fails when so many further sheets are too many.
    [[nodiscard]] Status checkRoom(std::int64_t further) const;

  private:
    std::set<std::string> m_folded; ///< case-folded
};

} // namespace tavix::worksheet
