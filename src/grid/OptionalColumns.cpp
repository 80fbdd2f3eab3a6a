#include "grid/OptionalColumns.h"

namespace tavix {

void OptionalColumns::SetMemory(ColumnMemory* memory) {
    m_memory = memory;
    m_chosen.clear();
}

bool OptionalColumns::IsShown(const GridColumn& column) const {
    if (!column.isOptional)
        return true;
    if (const auto chosen = m_chosen.find(column.identity()); chosen != m_chosen.end())
        return chosen->second;
    return (m_memory ? m_memory->ReadShown(column.identity()) : std::nullopt).value_or(column.isShownAtFirst);
}

void OptionalColumns::Choose(const GridColumn& column, bool shown) {
    m_chosen[column.identity()] = shown;
    if (m_memory)
        m_memory->KeepShown(column.identity(), shown);
}

std::vector<int> OptionalColumns::ShownColumns(const CUGDataSource& source) const {
    std::vector<int> shown;
    for (int column = 0; column < source.GetColumnCount(); ++column) {
        if (IsShown(source.GetColumn(column)))
            shown.push_back(column);
    }
    return shown;
}

std::vector<int> OptionalColumns::Optional(const CUGDataSource& source) {
    std::vector<int> optional;
    for (int column = 0; column < source.GetColumnCount(); ++column) {
        if (source.GetColumn(column).isOptional)
            optional.push_back(column);
    }
    return optional;
}

} // namespace tavix
