#include "report/FitReadings.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "report/CheckedCursor.h"

namespace tavix {

std::optional<FitFigures> FitReadings::Of(int tableId, int fieldId) {
    auto table = m_tables.find(tableId);
    if (table == m_tables.end())
        table = m_tables.emplace(tableId, Read(tableId)).first;
    const auto field = table->second.find(fieldId);
    return field == table->second.end() ? std::nullopt : std::optional(field->second);
}

FitReadings::Table FitReadings::Read(int tableId) {
    using namespace layout;
    Table fields;
    const ProfileCursorHandle rows = checked(m_viewer, m_viewer.getFitReadings(tableId));
    while (rows->next()) {
        if (rows->getColumnInt(FitHasFigures) != 0)
            fields[rows->getColumnInt(FitFieldId)] = {textAt(*rows, FitReading), rows->getColumnInt64(FitFitRows),
                                                      rows->getColumnInt64(FitRows)};
    }
    return fields;
}

} // namespace tavix
