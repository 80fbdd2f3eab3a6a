#include "grid/CellOrder.h"

#include "base/NumberText.h"
#include "grid/FoldCase.h"

#include <tuple>

namespace tavix {

CellOrderKey::CellOrderKey(std::string_view text) : m_number(parseNumber(text)), m_text(text) {
    if (!m_number)
        m_folded = foldCase(text);
}

bool CellOrderKey::operator<(const CellOrderKey& other) const {
    if (m_number.has_value() != other.m_number.has_value())
        return m_number.has_value();
    if (m_number && *m_number != *other.m_number)
        return *m_number < *other.m_number;
    return std::tie(m_folded, m_text) < std::tie(other.m_folded, other.m_text);
}

} // namespace tavix
