#include "alert/AlertColumns.h"

#include "base/NumberText.h"
#include "grid/ListRows.h"
#include "report/AlertMarks.h"
#include "report/AlertTexts.h"
#include "report/CAlertDisplayHelper.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace tavix {

namespace {

struct ColumnInfo {
    std::string_view heading;
    int width;
    CellAlignment alignment;
    bool isOptional;
    bool isShownAtFirst;
};

constexpr std::array<ColumnInfo, 12> kColumns = {{
    {"Description", 280, CellAlignment::Left, false, true},
    {"Type", 120, CellAlignment::Left, false, true},
    {"Input", 140, CellAlignment::Left, false, true},
    {"Data Source/Catalog/Schema/Table", 230, CellAlignment::Left, false, true},
    {"State", 105, CellAlignment::Left, false, true},
    {"Level", 70, CellAlignment::Left, false, true},
    {"Figure", 95, CellAlignment::Right, false, true},
    {"Compared With", 150, CellAlignment::Left, false, true},
    {"Raised", 150, CellAlignment::Left, true, true},
    {"Condition", 300, CellAlignment::Left, true, false},
    {"Defined By", 90, CellAlignment::Left, true, true},
    {"Report", 130, CellAlignment::Left, true, true},
}};

GridCell descriptionCell(const AlertState& alert) {
    GridCell cell = textCell(alert.description);
    cell.alert = markOf(alert);
    return cell;
}

GridCell figureCell(const AlertState& alert) {
    GridCell cell = textCell(alertFigureText(alert), CellAlignment::Right);
    if (!alert.figure)
        return cell;
    cell.order = formatReal(*alert.figure);
    if (!cell.text.ends_with('%') && cell.text != cell.order) {
        cell.shown = cell.text;
        cell.text = cell.order;
    }
    return cell;
}

/// Sorted by the number of runs.
GridCell raisedCell(const AlertState& alert, const std::locale& locale) {
    GridCell cell = textCell(alertSinceText(alert, locale));
    cell.order = formatInteger(cell.text.empty() ? 0 : alert.raisedRuns);
    return cell;
}

GridCell stateCell(const AlertState& alert) {
    GridCell cell = textCell(alertShownWord(alert.shown()));
    cell.order = formatInteger(alertRank(alert));
    return cell;
}

} // namespace

GridColumn alertGridColumn(AlertColumn column) {
    const ColumnInfo& info = kColumns.at(static_cast<std::size_t>(column));
    GridColumn shown = listColumn(info.heading, info.width, info.alignment);
    shown.takesRest = column == AlertColumn::Description;
    shown.isOptional = info.isOptional;
    shown.isShownAtFirst = info.isShownAtFirst;
    return shown;
}

GridCell alertCell(AlertColumn column, const AlertState& alert, const std::string& report, const std::locale& locale) {
    switch (column) {
    case AlertColumn::Description:
        return descriptionCell(alert);
    case AlertColumn::Type:
        return textCell(CAlertDisplayHelper::TypeWord(alert.typeCode));
    case AlertColumn::Input:
        return textCell(alert.input);
    case AlertColumn::Path:
        return textCell(alertPath(alert));
    case AlertColumn::State:
        return stateCell(alert);
    case AlertColumn::Level:
        return textCell(alertLevelText(alert));
    case AlertColumn::Figure:
        return figureCell(alert);
    case AlertColumn::ComparedWith:
        return textCell(alertReferenceText(alert));
    case AlertColumn::Raised:
        return raisedCell(alert, locale);
    case AlertColumn::Condition:
        return textCell(alert.condition());
    case AlertColumn::DefinedBy:
        return textCell(alertOriginText(alert));
    case AlertColumn::Report:
        break;
    }
    return textCell(report);
}

std::string alertToolTip(const AlertState& alert, const std::locale& locale) {
    std::string lines;
    const auto add = [&lines](const std::string& line) {
        if (line.empty())
            return;
        lines += lines.empty() ? "" : "\n";
        lines += line;
    };
    if (alert.isDescribed() || alert.fits)
        add(alert.condition());
    std::string state(alertShownWord(alert.shown()));
    if (const std::string level = alertLevelText(alert); !level.empty() && alert.shown() == AlertShown::Raised)
        state += " (" + level + ")";
    if (const std::string since = alertSinceText(alert, locale); !since.empty())
        state += ": " + since;
    add(state);
    add(alertMuteText(alert, locale));
    return lines;
}

int alertRank(const AlertState& alert) {
    return alert.isRaisedAt(AlertLevel::Error) ? 0 : 1 + static_cast<int>(alert.shown());
}

} // namespace tavix
