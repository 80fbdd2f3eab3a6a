#include "alert/ListedAlerts.h"

#include "access/CursorText.h"
#include "access/Layouts.h"

#include <string_view>

namespace tavix {

namespace {

bool isNamed(const TableIdentity& table, std::string_view dataSource, std::string_view catalog, std::string_view schema,
             std::string_view name) {
    return dataSource == table.dataSource && catalog == table.catalog && schema == table.schema &&
           name == table.displayName();
}

} // namespace

bool isListedFor(const AlertState& alert, const TableIdentity& table) {
    return isNamed(table, alert.dataSource, alert.catalog, alert.schema,
                   alert.objectName.empty() ? alert.tableName : alert.objectName);
}

bool isListedFor(const ProfileCursor& alert, const TableIdentity& table) {
    using namespace layout;
    const std::string object = textAt(alert, AlertObject);
    return isNamed(table, textAt(alert, AlertDsn), textAt(alert, AlertCatalog), textAt(alert, AlertSchema),
                   object.empty() ? textAt(alert, AlertTable) : object);
}

} // namespace tavix
