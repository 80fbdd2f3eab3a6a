#include "drill/DrillOutput.h"

#include "base/Characters.h"
#include "base/FileWriter.h"
#include "base/NumberText.h"
#include "drill/RowsFile.h"
#include "settings/Settings.h"
#include "worksheet/Sheet.h"

#include <algorithm>
#include <cstring>

namespace tavix {

namespace {

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
    return put;
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
    const RowsFile rows{[&source](FileWriter& file) { return putText(source, file); },
                        [&source](worksheet::Sheet& sheet) { return putRows(source, sheet); }, std::string(context)};
    return saveRowsFile(rows, path, messages);
}

} // namespace tavix
