#include "doc/ItemCode.h"

#include <array>
#include <cstddef>
#include <span>

namespace tavix {

namespace {

constexpr std::array<int, 6> kTableTabs = {0, 1, 2, 3, 4, 14};
constexpr std::array<int, 7> kFieldTabs = {5, 6, 7, 8, 9, 12, 10};

} // namespace

int itemCode(ReportPaneKind pane, int tabIndex) {
    std::span<const int> codes;
    if (pane == ReportPaneKind::Table)
        codes = kTableTabs;
    else if (pane == ReportPaneKind::Field)
        codes = kFieldTabs;
    return tabIndex >= 0 && static_cast<std::size_t>(tabIndex) < codes.size()
               ? codes[static_cast<std::size_t>(tabIndex)]
               : -1;
}

} // namespace tavix
