#include "drill/DrillOutput.h"

#include "base/Characters.h"
#include "base/FileWriter.h"
#include "base/HeldRepositories.h"
#include "base/NumberText.h"
#include "grid/FoldCase.h"
#include "report/CountText.h"
#include "settings/Settings.h"
#include "worksheet/Workbook.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <filesystem>
#include <fstream>
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

/// Writes the line with a line break in place of the last comma, and clears it.
Status putLine(FileWriter& file, std::string& line) {
    if (!line.empty())
        line.pop_back();
    line += '\n';
    Status put = file.write(line);
    line.clear();
    return put;
}

void addCell(std::string& line, std::string_view text, bool quoted) {
    if (quoted)
        line += '"';
    line += text;
    if (quoted)
        line += '"';
    line += ',';
}

Status putText(const CDrillThruDataSrc& source, FileWriter& file) {
    const int columns = source.GetColumnCount();
    std::string line;
    for (int column = 0; column < columns; ++column)
        addCell(line, source.GetRows().columns()[static_cast<std::size_t>(column)].name, true);
    Status put = putLine(file, line);
    for (std::int64_t row = 0; put && row < source.GetRowCount(); ++row) {
        for (int column = 0; column < columns; ++column)
            addCell(line, source.GetText(column, row).text, !isNumeric(source.GetType(column)));
        put = putLine(file, line);
    }
    return put ? file.commit() : put;
}

bool saveText(const CDrillThruDataSrc& source, const std::string& path, Messages& messages) {
    const std::string failed = cannotOpen(path);
    const auto file = FileWriter::open(path, FileWriter::Reader::Require);
    if (!file) {
        messages.warn(failed, kFileError);
        return false;
    }
    const Status saved = putText(source, **file);
    if (!saved)
        messages.warn(failed + "\n\n" + saved.error().text, kFileError);
    return saved.ok();
}

Status putCell(worksheet::Range cell, kvbType type, std::string_view text) {
    if (text.empty())
        return {};
    if (type == kvbType::Integer) {
        if (const auto whole = parseInteger(text))
            return cell.putInteger(*whole);
    }
    if (isNumeric(type)) {
        if (const auto number = parseNumber(text))
            return cell.putNumber(*number);
    }
    return cell.putText(text);
}

Status putRows(const CDrillThruDataSrc& source, worksheet::Sheet& sheet) {
    for (std::int64_t row = 0; row <= source.GetRowCount(); ++row) {
        auto cell = sheet.range("A" + formatInteger(row + 1));
        if (!cell)
            return cell.error();
        for (int column = 0; column < source.GetColumnCount(); ++column, *cell = cell->next()) {
            const DrillColumn& shown = source.GetRows().columns()[static_cast<std::size_t>(column)];
            Status put = row == 0 ? cell->putHeader(shown.name)
                                  : putCell(*cell, shown.type, source.GetText(column, row - 1).text);
            if (!put)
                return put;
        }
    }
    return {};
}

bool saveWorksheet(const CDrillThruDataSrc& source, const std::string& path, std::string_view context,
                   Messages& messages) {
    worksheet::Workbook book;
    worksheet::Sheet& sheet = *book.sheet("Sheet1");
    Status saved = book.rename(sheet, worksheet::toSheetName(context));
    if (saved)
        saved = putRows(source, sheet);
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

std::string drillFolder(const SettingsStore& settings) {
    return readText(settings, Setting::WorkingPath);
}

std::string drillFileName(std::string_view context) {
    std::string name(context);
    std::replace_if(
        name.begin(), name.end(),
        [](char c) { return static_cast<unsigned char>(c) < ' ' || std::strchr("/\\:*?\"<>|", c) != nullptr; }, '_');
    // Leaves room for an extension.
    constexpr std::size_t kMostBytes = 200;
    name.resize(cutToBytes(name, kMostBytes).size());
    // A leading dot would make a hidden file.
    return name.empty() || name.front() == '.' ? "drill through" + name : name;
}

bool saveDrillRows(const CDrillThruDataSrc& source, const std::string& path, std::string_view context,
                   Messages& messages) {
    if (isTooLong(path)) {
        messages.warn("Path too long: " + path, kFileError);
        return false;
    }
    if (const Status free = requireNotHeld(path); !free) {
        messages.warn("Unable to open or create file " + path + "\n\n" + free.error().text, kFileError);
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
    return isWorksheet ? saveWorksheet(source, path, context, messages) : saveText(source, path, messages);
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
