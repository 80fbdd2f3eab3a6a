#pragma once

#include "base/Result.h"
#include "worksheet/Sheet.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::worksheet {

/// A workbook that is written once, from the first row to the last, and saved as an .xls file (BIFF8);
/// docs/formats/worksheet.md describes the content of the files.
///
///     Workbook book;
///     Sheet& sheet = *book.sheet("Sheet1");
///     sheet.range("A1")->putHeader("Value");
///     sheet.range("A2")->putText("x"); // each with its status to look at
///     book.save(path);
class Workbook {
  public:
    /// With one empty sheet, "Sheet1". Beyond `memoryBytes`, unsaved data goes to a temporary file.
    explicit Workbook(std::size_t memoryBytes = SpoolStore::kDefaultMemoryBytes);
    ~Workbook();
    Workbook(const Workbook&) = delete;
    Workbook& operator=(const Workbook&) = delete;

    /// The sheet of that name, ignoring case; null without one. Sheets live as long as the workbook. A sheet on which
    /// another one continues is not listed.
    [[nodiscard]] Sheet* sheet(std::string_view name);
    /// Adds a sheet after the others. Fails for a name that is in use or invalid (see toSheetName()).
    [[nodiscard]] Result<Sheet*> addSheet(std::string_view name);
    /// Fails like addSheet(), and if the sheet already continues on others, which have its name.
    Status rename(Sheet& sheet, std::string_view name);

    /// Writes everything so far to a file beside `path`, which then replaces `path` as a whole; after a failure the old
    /// file is unchanged. More may be written and saved after it.
    Status save(const std::string& path) const;

    /// How many texts were longer than the 32,767 UTF-16 units of a cell and were cut.
    [[nodiscard]] std::int64_t cutTexts() const { return m_store->cutTexts; }

  private:
    std::unique_ptr<WorkbookStore> m_store;
    std::vector<std::unique_ptr<Sheet>> m_sheets;
};

} // namespace tavix::worksheet
