#include "report/AlertFigures.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "base/NumberText.h"

namespace tavix {

std::optional<double> alertFigureAt(const ProfileCursor& row, bool ofFailedPercent) {
    // Most metrics are numbers, but a minimum may be a text, which a getter of numbers would give as 0.
    const auto figure = parseNumber(row.getColumnValue(layout::FigureValue).view());
    if (!figure || !ofFailedPercent)
        return figure;
    const double rows = row.getColumnDouble(layout::FigureRows);
    return rows > 0 ? std::optional(100 * *figure / rows) : std::nullopt;
}

void FigureHistory::addEarlier(const Run& run) {
    if (run.figure)
        m_figures.push_back({*run.figure, run.weekday});
    m_runs.push_back({run.figure, run.weekday, m_figures.size()});
}

std::span<const RunFigure> FigureHistory::before(const Entry& run) const {
    return std::span(m_figures).subspan(run.earlier);
}

AlertVerdict FigureHistory::judge(const AlertRule& rule, std::size_t run) const {
    const Entry& entry = m_runs[run];
    return checkAlert(rule, entry.figure, entry.weekday, before(entry));
}

bool FigureHistory::needsMore(const AlertRule& rule, std::size_t run) const {
    const Entry& entry = m_runs[run];
    return needsEarlierRuns(rule, entry.weekday, before(entry));
}

} // namespace tavix
