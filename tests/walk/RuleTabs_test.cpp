// Custom metrics and business rules from the job file to the screen.
#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "doc/CTavixApp.h"
#include "frame/ui/CTavixView.h"
#include "grid/ui/CUGCtrl.h"
#include "job/JobDescription.h"
#include "profiling/JobRunner.h"
#include "tabs/ui/CProfTab.h"
#include "tabs/ui/CTableView.h"

#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>

#include <fstream>

namespace tavix {
namespace {

using ::testing::ElementsAre;

class RuleTabs : public ::testing::Test {
  protected:
    int run(const std::string& rows) {
        write("parts.csv", "id,size\n" + rows);
        write("job.yaml", "job: Parts\ntables:\n  - file: parts.csv\n    key: [id]\n    custom metrics:\n"
                          "      - {name: Sum of sizes, output: mm, sum: \"tonumber(`size`)\"}\n    rules:\n"
                          "      - {name: Size is a number, condition: \"isnumber(`size`)\"}\n"
                          "    alerts:\n      - {field: size, metric: Null Count, max: 0}\n"
                          "      - {custom metric: Sum of sizes, min: 1}\n"
                          "      - {rule: Size is a number, max: 0, description: Sizes are wrong}\n");
        const auto job = job::readJobFile(m_folder.file("job.yaml"));
        if (!job.ok())
            throw std::runtime_error(job.error().text);
        const auto outcome = profiling::runJob(*job, m_repository);
        if (!outcome.ok())
            throw std::runtime_error(outcome.error().text);
        return outcome->jobId;
    }
    void write(const char* name, const std::string& text) { std::ofstream(m_folder.file(name)) << text; }

    /// The first columns of a list, by row.
    static std::vector<std::string> rows(const CUGCtrl& grid, int columns) {
        std::vector<std::string> all;
        for (int row = 0; row < grid.model()->rowCount(); ++row) {
            std::string line;
            for (int column = 0; column < columns; ++column)
                line += (column == 0 ? "" : "|") + toUtf8(grid.model()->index(row, column).data().toString());
            all.push_back(line);
        }
        return all;
    }
    static const CUGCtrl& list(QWidget& tab, const char* name) {
        for (const CUGCtrl* grid : tab.findChildren<CUGCtrl*>()) {
            if (grid->accessibleName() == QLatin1String(name))
                return *grid;
        }
        throw std::runtime_error(std::string("no list ") + name);
    }

    testing::TempFolder m_folder;
    std::string m_repository = m_folder.file("parts.tavix");
    testing::ScriptedMessages m_messages;
    CTavixApp m_app{makeMemorySettings()};
};

TEST_F(RuleTabs, ShowWhatTheRunFoundAndHowItWasBefore) {
    run("1,10\n2,20\n");
    const int job = run("1,10\n2,\n3,wide\n4,5\n");
    CTavixView view(m_app, m_messages);
    view.resize(1000, 600);
    view.show();
    ASSERT_TRUE(view.LoadReportForJob("", job, m_repository));
    ASSERT_TRUE(QTest::qWaitFor([&view] { return view.findChild<CTableView*>()->isVisible(); }));
    auto& table = *view.findChild<CTableView*>();

    table.SelectTab(CTableView::CustomMetrics);
    QWidget& metrics = table.GetTab(CTableView::CustomMetrics);
    EXPECT_THAT(rows(list(metrics, "Custom Metrics"), 4), ElementsAre("Sum of sizes|mm|15|sum"));
    const CUGCtrl& history = list(metrics, "History of the metric");
    ASSERT_EQ(2, history.model()->rowCount());
    EXPECT_EQ("15", toUtf8(history.model()->index(0, 2).data().toString())) << "the latest run comes first";
    EXPECT_EQ("30", toUtf8(history.model()->index(1, 2).data().toString()));

    table.SelectTab(CTableView::BusinessRules);
    QWidget& rules = table.GetTab(CTableView::BusinessRules);
    EXPECT_THAT(rows(list(rules, "Business Rules"), 4), ElementsAre("Size is a number|2|50.00|4"));
    const CUGCtrl& violations = list(rules, "Rows that violate the rule");
    EXPECT_THAT(rows(violations, 3), ElementsAre("2|2|(null value)", "3|3|wide"));
    EXPECT_EQ(2, list(rules, "History of the rule").model()->rowCount());

    table.SelectTab(CTableView::Alerts);
    EXPECT_THAT(rows(*table.GetTab(CTableView::Alerts).findChild<CUGCtrl*>(), 3),
                ElementsAre("Null Count for field size is greater than 0|Standard Metric|size",
                            "Sizes are wrong|Business Rule|Size is a number",
                            "mm for custom metric Sum of sizes is less than 1|Custom Metric|Sum of sizes"))
        << "raised ones come first";

    // An earlier run without violations.
    table.SelectTab(CTableView::BusinessRules);
    ASSERT_TRUE(view.GetTavixDoc().SetCurrentJob(view.GetTavixDoc().GetRuns()->back().id));
    EXPECT_THAT(rows(list(rules, "Business Rules"), 4), ElementsAre("Size is a number|0|0.00|2"));
    EXPECT_EQ(0, violations.model()->rowCount());
}

} // namespace
} // namespace tavix
