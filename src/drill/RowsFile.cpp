#include "drill/RowsFile.h"

#include "base/FileWriter.h"
#include "base/HeldRepositories.h"
#include "grid/FoldCase.h"
#include "report/CountText.h"
#include "worksheet/Workbook.h"

#include <climits>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace tavix {

namespace {

constexpr std::string_view kFileError = "File Error";

bool endsWith(std::string_view path, std::string_view ending) {
    return path.size() >= ending.size() && foldCase(path.substr(path.size() - ending.size())) == ending;
}

std::string cannotOpen(const std::string& path) {
    return "Unable to open or create file " + path;
}

bool isTooLong(const std::string& path) {
    return path.size() >= PATH_MAX || std::filesystem::path(path).filename().string().size() > NAME_MAX;
}

bool saveText(const RowsFile& rows, const std::string& path, Messages& messages) {
    const std::string failed = cannotOpen(path);
    const auto file = FileWriter::open(path, FileWriter::Reader::Require);
    if (!file) {
        messages.warn(failed, kFileError);
        return false;
    }
    Status saved = rows.putText(**file);
    if (saved)
        saved = (*file)->commit();
    if (!saved)
        messages.warn(failed + "\n\n" + saved.error().text, kFileError);
    return saved.ok();
}

bool saveWorksheet(const RowsFile& rows, const std::string& path, Messages& messages) {
    worksheet::Workbook book;
    worksheet::Sheet& sheet = *book.sheet("Sheet1");
    Status saved = book.rename(sheet, worksheet::toSheetName(rows.sheetName));
    if (saved)
        saved = rows.putSheet(sheet);
    if (saved)
        saved = book.save(path);
    if (!saved) {
        messages.warn("Unable to create new Microsoft Excel workbook\n\n" + saved.error().text, "Export Error");
        return false;
    }
    if (book.cutTexts() > 0)
        messages.warn(countOf(book.cutTexts(), "value") + (book.cutTexts() == 1 ? " was" : " were") +
                          " longer than the 32,767 characters that a cell of a worksheet holds, and cut there.",
                      "Export");
    return true;
}

} // namespace

bool saveRowsFile(const RowsFile& rows, const std::string& path, Messages& messages) {
    if (isTooLong(path)) {
        messages.warn("Path too long: " + path, kFileError);
        return false;
    }
    if (const Status free = requireNotHeld(path); !free) {
        messages.warn(cannotOpen(path) + "\n\n" + free.error().text, kFileError);
        return false;
    }
    const bool isWorksheet = endsWith(path, ".xls");
    std::error_code ignored;
    if (std::filesystem::exists(path, ignored)) {
        const std::string question = isWorksheet ? "Worksheet " + path + " already exists. Overwrite it?"
                                                 : path + " already exists.\nDo you want to replace it?";
        if (messages.ask(question, "Overwrite", Messages::Answer::No) != Messages::Answer::Yes)
            return false;
    }
    const auto busy = messages.busy();
    return isWorksheet ? saveWorksheet(rows, path, messages) : saveText(rows, path, messages);
}

Status saveMadeFile(const std::string& made, const std::string& path) {
    constexpr std::size_t kPiece = std::size_t{1} << 20u;
    std::ifstream from(made, std::ios::binary);
    const auto file = FileWriter::open(path, FileWriter::Reader::Require);
    Status saved = file ? Status() : file.error();
    std::string piece(kPiece, '\0');
    while (saved && from) {
        from.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        saved = (*file)->write(std::string_view(piece).substr(0, static_cast<std::size_t>(from.gcount())));
    }
    if (saved)
        saved = from.eof() ? (*file)->commit() : Error{"The temporary file cannot be read"};
    return saved ? Status() : Error{cannotOpen(path) + "\n\n" + saved.error().text};
}

} // namespace tavix
