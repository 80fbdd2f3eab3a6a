#include "tabs/PkFkRows.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"

#include <algorithm>

namespace tavix {

namespace {

constexpr std::string_view kFailed = "Error occurred while retrieving analysis results:";
constexpr std::string_view kNone = "No primary key/foreign key analysis of this field is stored.";

std::vector<GridColumn> columns() {
    return {listColumn("Field Name", 100),       listColumn("Table Name", 100),
            listColumn("Schema Name", 100),      listColumn("Catalog Name", 100),
            listColumn("Data Source Name", 115), listColumn("Match Percentage", 115, CellAlignment::Right)};
}

} // namespace

PkFkRows::PkFkRows() : ListRows(columns(), kNone) {}

bool PkFkRows::Fill(PrViewer& viewer, int fieldId) try {
    using namespace layout;
    const ProfileCursorHandle rows = viewer.getPKFKAnalysis(fieldId);
    if (!rows)
        return Fail(kFailed, viewer.getErrorString().view());
    std::vector<Analysis> analyses;
    while (rows->next()) {
        Analysis analysis;
        for (const int column : {KeyFieldName, KeyTable, KeySchema, KeyCatalog, KeyDsn})
            analysis.names.push_back(rows->getColumnValue(column).str());
        analysis.matchPercent = rows->getColumnDouble(KeyMatchPercent);
        analyses.push_back(std::move(analysis));
    }
    m_analyses = std::move(analyses);
    ShowRecords(m_analyses.size());
    return true;
} catch (const GenException& failure) {
    return Fail(kFailed, failure.getText().view());
}

void PkFkRows::Clear() {
    m_analyses.clear();
    ShowRecords(0);
}

GridCell PkFkRows::CellOf(int column, std::size_t record) const {
    const Analysis& analysis = m_analyses.at(record);
    const auto at = static_cast<std::size_t>(column);
    if (at < analysis.names.size())
        return textCell(analysis.names[at]);
    return percentCell(analysis.matchPercent, std::clamp(analysis.matchPercent / 100, 0.0, 1.0));
}

} // namespace tavix
