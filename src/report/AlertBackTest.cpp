#include "report/AlertBackTest.h"

#include "report/AlertFigures.h"

#include <algorithm>
#include <utility>

namespace tavix {

AlertBackTest backTest(const AlertRule& rule, std::vector<BackTestRun> runs) {
    FigureHistory history;
    for (auto run = runs.rbegin(); run != runs.rend(); ++run)
        history.addEarlier({run->figure, run->weekday});
    AlertBackTest test;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        BackTestRun& run = runs[runs.size() - 1 - i];
        run.verdict = history.judge(rule, i);
        test.judged += run.verdict.state != AlertVerdict::State::Unknown ? 1 : 0;
        test.raised += run.verdict.state == AlertVerdict::State::Raised ? 1 : 0;
    }
    test.runs = std::move(runs);
    return test;
}

} // namespace tavix
