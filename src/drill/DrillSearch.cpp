#include "drill/DrillSearch.h"

#include "filter/QuickMatcher.h"
#include "grid/FoldedFinder.h"

namespace tavix {

namespace {

template <typename IsNamed>
std::vector<std::uint32_t> rowsWith(const DrillRows& rows, int column, bool isNegated, IsNamed isNamed) {
    const int first = column == kAllColumns ? 0 : column;
    const int last = column == kAllColumns ? static_cast<int>(rows.columns().size()) - 1 : column;
    std::vector<std::uint32_t> found;
    for (std::uint32_t row = 0; row < rows.count(); ++row) {
        bool isAnyNamed = false;
        for (int at = first; at <= last && !isAnyNamed; ++at)
            isAnyNamed = isNamed(rows.cell(at, row));
        if (isAnyNamed != isNegated)
            found.push_back(row);
    }
    return found;
}

} // namespace

Result<std::vector<std::uint32_t>> searchRows(const DrillRows& rows, const QuickTerm& term, int column) {
    if (term.kind == QuickTerm::Kind::Contains) {
        const FoldedFinder finder(term.value);
        return rowsWith(rows, column, false,
                        [&finder](const DrillRows::Cell& cell) { return !cell.isNull && finder.isIn(cell.text); });
    }
    const auto matcher = QuickMatcher::make(term);
    if (!matcher)
        return matcher.error();
    return rowsWith(rows, column, term.isNegated,
                    [&matcher](const DrillRows::Cell& cell) { return (*matcher)->isNamed(cell.text, cell.isNull); });
}

} // namespace tavix
