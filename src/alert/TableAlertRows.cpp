#include "alert/TableAlertRows.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "report/CAlertDisplayHelper.h"

namespace tavix {

namespace {

constexpr std::string_view kFailed = "Error occurred while retrieving alert list:";
constexpr std::string_view kNone = "No alert is defined for this table.";

bool belongsTo(const ProfileCursor& alert, const TableIdentity& table) {
    using namespace layout;
    const std::string object = textAt(alert, AlertObject);
    return textAt(alert, AlertDsn) == table.dataSource && textAt(alert, AlertCatalog) == table.catalog &&
           textAt(alert, AlertSchema) == table.schema &&
           (object.empty() ? textAt(alert, AlertTable) : object) == table.displayName();
}

CAlertDisplayHelper::NamesByKey namesOf(ProfileCursor& cursor, int key, int name) {
    CAlertDisplayHelper::NamesByKey names;
    while (cursor.next())
        names[textAt(cursor, key)] = textAt(cursor, name);
    return names;
}

GridColumn descriptionColumn() {
    GridColumn column = listColumn("Description", 300);
    column.takesRest = true;
    return column;
}

} // namespace

TableAlertRows::TableAlertRows()
    : ListRows({descriptionColumn(), listColumn("Type", 120), listColumn("Input", 180)}, kNone) {}

bool TableAlertRows::Fill(PrViewer& viewer, const TableIdentity& table) try {
    const ProfileCursorHandle rows = viewer.getAlerts();
    if (!rows)
        return Fail(kFailed, viewer.getErrorString().view());
    const ProfileCursorHandle metrics = viewer.getCustomMetrics(table.id);
    const ProfileCursorHandle rules = metrics ? viewer.getBusinessRules(table.id) : nullptr;
    if (!rules)
        return Fail(kFailed, viewer.getErrorString().view());
    const CAlertDisplayHelper words(namesOf(*metrics, layout::CustomMetricKey, layout::CustomMetricName),
                                    namesOf(*rules, layout::RuleKey, layout::RuleName));
    std::vector<Alert> alerts;
    while (rows->next()) {
        if (!belongsTo(*rows, table))
            continue;
        alerts.push_back({textAt(*rows, layout::AlertDescription),
                          CAlertDisplayHelper::TypeWord(textAt(*rows, layout::AlertTypeCode)), words.InputText(*rows)});
    }
    m_alerts = std::move(alerts);
    ShowRecords(m_alerts.size());
    return true;
} catch (const GenException& failure) {
    return Fail(kFailed, failure.getText().view());
}

void TableAlertRows::Clear() {
    m_alerts.clear();
    ShowRecords(0);
}

GridCell TableAlertRows::CellOf(int column, std::size_t record) const {
    const Alert& alert = m_alerts.at(record);
    return textCell(column == 0 ? alert.description : column == 1 ? alert.type : std::string_view(alert.input));
}

} // namespace tavix
