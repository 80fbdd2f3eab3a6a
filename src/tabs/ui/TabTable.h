#pragma once

#include "doc/CViewSite.h"
#include "doc/ItemCode.h"
#include "report/ReportSubject.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <type_traits>

namespace tavix {

class CProfTab;

/// One tab of a view. The rows of a table are in the order of the strip.
struct TabRow {
    int index; ///< in the strip
    std::string_view caption;
    ItemCode code;
    CProfTab* (*make)(CViewSite& site, const ReportSubject& subject, bool isTornOff, ItemCode code);
};

[[nodiscard]] constexpr bool isInOrder(std::span<const TabRow> rows) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].index != static_cast<int>(i))
            return false;
    }
    return true;
}

/// Makes a tab for TabRow::make; a class that serves several tabs is given the item code.
template <typename Tab>
CProfTab* makeTab(CViewSite& site, const ReportSubject& subject, bool isTornOff, ItemCode code) {
    if constexpr (std::is_constructible_v<Tab, CViewSite&, const ReportSubject&, bool, ItemCode>)
        return new Tab(site, subject, isTornOff, code);
    else
        return new Tab(site, subject, isTornOff);
}

} // namespace tavix
