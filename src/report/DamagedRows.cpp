#include "report/DamagedRows.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/NumberText.h"
#include "report/CheckedCursor.h"
#include "report/CountText.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

namespace tavix {

namespace {

/// "3: 1 cell instead of 2."; false for a text without a number.
bool readNumber(std::string_view text, DamagedRow& row) {
    const std::size_t colon = text.find(": ");
    const auto number = colon == std::string_view::npos ? std::nullopt : parseInteger(text.substr(0, colon));
    if (!number)
        return false;
    row.number = *number;
    row.reason = text.substr(colon + 2);
    return true;
}

/// A text of the log such as "Line 3: 1 cell instead of 2." or "b.csv, line 3: ..."; nothing for any other.
std::optional<DamagedRow> damagedRowIn(std::string_view text) {
    constexpr std::string_view kLine = "Line ";
    constexpr std::string_view kRow = "Row ";
    constexpr std::string_view kInFile = ", line ";
    DamagedRow row;
    if (text.starts_with(kLine) && readNumber(text.substr(kLine.size()), row))
        return row;
    row.isLine = !text.starts_with(kRow);
    if (!row.isLine && readNumber(text.substr(kRow.size()), row))
        return row;
    row.isLine = true;
    for (std::size_t at = text.find(kInFile); at != std::string_view::npos; at = text.find(kInFile, at + 1)) {
        row.file = text.substr(0, at);
        if (readNumber(text.substr(at + kInFile.size()), row))
            return row;
    }
    return std::nullopt;
}

} // namespace

std::vector<DamagedRow> readDamagedRows(PrViewer& viewer, int tableId) {
    constexpr int kInformation = 0;
    std::vector<DamagedRow> rows;
    const ProfileCursorHandle log = checked(viewer, viewer.getExecutionLog());
    while (log->next()) {
        if (log->isColumnNull(layout::LogTableId) || log->getColumnInt(layout::LogTableId) != tableId ||
            log->getColumnInt(layout::LogLevelCode) == kInformation)
            continue;
        if (auto row = damagedRowIn(log->getColumnValue(layout::LogText).view()))
            rows.push_back(std::move(*row));
    }
    return rows;
}

std::string changeOfFile(PrViewer& viewer, int tableId) {
    TextFileInfo info;
    if (!viewer.getTextFileInfo(tableId, info) || info.path.isEmpty())
        return {};
    const std::filesystem::path path(info.path.str());
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        // The path of several files is a pattern.
        const bool isPattern = info.path.view().find_first_of("*?[") != std::string_view::npos;
        return isPattern ? "" : "The file is not at its place any more: " + path.string();
    }
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(path, error));
    if (error || size == info.size)
        return {};
    return "The file has changed since: it had " + countOf(info.size, "byte") + " and has " + groupedCount(size) +
           ", so the numbers may be those of other rows now.";
}

} // namespace tavix
