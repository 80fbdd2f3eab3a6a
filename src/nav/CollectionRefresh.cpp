#include "nav/CollectionRefresh.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"

#include <vector>

namespace tavix {

namespace {

bool refresh(PrViewer& viewer) {
    std::vector<int> sources;
    std::vector<int> tables;
    const ProfileCursorHandle sourceRows = viewer.getDSNList();
    if (!sourceRows)
        return false;
    while (sourceRows->next())
        sources.push_back(sourceRows->getColumnInt(layout::DsnId));
    for (const int source : sources) {
        const ProfileCursorHandle tableRows = viewer.getTableList(source);
        if (!tableRows)
            return false;
        while (tableRows->next())
            tables.push_back(tableRows->getColumnInt(layout::TableId));
    }
    for (const int table : tables) {
        if (!viewer.refreshGlobalCollForTable(table))
            return false;
    }
    return true;
}

} // namespace

Status refreshCollectionsOfAllTables(PrViewer& viewer) {
    try {
        if (!refresh(viewer))
            return Error{viewer.getErrorString().str()};
    } catch (const GenException& exception) {
        return Error{exception.getText().str()};
    }
    return {};
}

} // namespace tavix
