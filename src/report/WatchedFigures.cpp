#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "report/AlertBackTest.h"
#include "report/AlertFigures.h"
#include "report/CheckedCursor.h"

#include <algorithm>

namespace tavix {

std::vector<BackTestRun> readWatchedFigures(PrViewer& viewer, const AlertDefinition& alert) {
    constexpr int kAllRuns = 0;
    const bool ofFailedPercent = alert.subject == AlertSubject::BusinessRule && alert.rule.ofFailedPercent;
    std::vector<BackTestRun> runs;
    const ProfileCursorHandle rows = checked(viewer, viewer.getWatchedFigures(alert, viewer.getCurrentJob(), kAllRuns));
    while (rows->next())
        runs.push_back({rows->getColumnInt(layout::FigureRun),
                        rows->getColumnDouble(layout::FigureDate),
                        rows->getColumnInt(layout::FigureWeekday),
                        alertFigureAt(*rows, ofFailedPercent),
                        {}});
    std::reverse(runs.begin(), runs.end());
    return runs;
}

} // namespace tavix
