#include "alert/AlertOutput.h"

#include "alert/AlertLine.h"
#include "alert/AlertRows.h"
#include "base/FileWriter.h"
#include "base/NumberText.h"
#include "drill/RowsFile.h"
#include "worksheet/Sheet.h"

namespace tavix {

namespace {

template <typename Texts>
Status putLine(FileWriter& file, const Texts& texts) {
    std::string line;
    for (const auto& text : texts) {
        line += line.empty() ? "\"" : "\",\"";
        line += text;
    }
    return file.write(line + "\"\n");
}

Status putText(const AlertRows& rows, FileWriter& file) {
    Status put = putLine(file, kAlertLineNames);
    for (std::int64_t row = 0; put && row < rows.GetRowCount(); ++row)
        put = putLine(file, alertLine(rows.GetAlert(row)).parts);
    return put;
}

/// The worksheet's heading has no blank in "DataSource": sheets that refer to it by that name must keep working.
std::string_view sheetHeading(std::size_t part) {
    return part == AlertLine::Path ? "DataSource/Catalog/Schema/Table" : kAlertLineNames.at(part);
}

Status putSheet(const AlertRows& rows, worksheet::Sheet& sheet) {
    for (std::int64_t row = -1; row < rows.GetRowCount(); ++row) {
        auto cell = sheet.range("A" + formatInteger(row + 2));
        if (!cell)
            return cell.error();
        const AlertLine line = row < 0 ? AlertLine() : alertLine(rows.GetAlert(row));
        for (std::size_t part = 0; part < AlertLine::kParts; ++part, *cell = cell->next()) {
            Status put = row < 0 ? cell->putHeader(sheetHeading(part)) : cell->putText(line.parts.at(part));
            if (!put)
                return put;
        }
    }
    return {};
}

} // namespace

bool saveAlerts(const AlertRows& rows, const std::string& path, Messages& messages) {
    const RowsFile file{[&rows](FileWriter& to) { return putText(rows, to); },
                        [&rows](worksheet::Sheet& to) { return putSheet(rows, to); }, "Alerts"};
    return saveRowsFile(file, path, messages);
}

} // namespace tavix
