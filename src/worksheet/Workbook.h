#pragma once

#include "base/Result.h"
#include "worksheet/Sheet.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::worksheet {

/// A workbook that is written once, from the first row to the last, and saved as an .xls file (BIFF8); what the files
/// contain stands in docs/formats/worksheet.md.
///
///     Workbook book;
///     Sheet& sheet = *book.sheet("Sheet1");
///     sheet.range("A1")->putHeader("Value");
///     sheet.range("A2")->putText("x"); // each with its status to look at
///     book.save(path);
class Workbook {
  public:
    /// With one empty sheet, "Sheet1". Beyond `memoryBytes` what was written waits in a temporary file.
    explicit Workbook(std::size_t memoryBytes = SpoolStore::kDefaultMemoryBytes);
    ~Workbook();
    Workbook(const Workbook&) = delete;
    Workbook& operator=(const Workbook&) = delete;

    /// The sheet of that name, in any case; null when there is none. Sheets live as long as the workbook. What a sheet
    /// continues on is no sheet of its own here.
    [[nodiscard]] Sheet* sheet(std::string_view name);
    /// Adds a sheet behind the others. Fails for a name that is taken or that no sheet may have (see toSheetName()).
    [[nodiscard]] Result<Sheet*> addSheet(std::string_view name);
    /// Fails as addSheet() does, and when the sheet continues on others already, which are named after it.
    Status rename(Sheet& sheet, std::string_view name);

    /// Writes everything put so far to a file beside `path` and then puts it there: a file that stands there is
    /// replaced as a whole, and after a failure it is as it was. More may be put and saved after it.
    Status save(const std::string& path) const;

    /// How many texts were longer than the 32,767 UTF-16 units of a cell and were cut.
    [[nodiscard]] std::int64_t cutTexts() const { return m_store->cutTexts; }

  private:
    std::unique_ptr<WorkbookStore> m_store;
    std::vector<std::unique_ptr<Sheet>> m_sheets;
};

} // namespace tavix::worksheet
