// From the values of a report to the rows of its source.
#include "access/Layouts.h"
#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "doc/CTavixApp.h"
#include "drill/ui/CDrillThru.h"
#include "drill/ui/CLocateFileDlg.h"
#include "frame/ui/CTavixView.h"
#include "grid/ui/CUGCtrl.h"
#include "job/JobDescription.h"
#include "profiling/JobRunner.h"
#include "tabs/ui/CFieldView.h"
#include "tabs/ui/CProfTab.h"
#include "tabs/ui/CTableView.h"
#include "tabs/ui/TearOff.h"

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Lines = std::vector<std::string>;

class DrillThroughWalk : public ::testing::Test {
  protected:
    void SetUp() override {
        write("people.csv", "id,city,size\n1,Rome,5\n2,Bonn,7\n3,,9\n4,Rome,700\n5,Oslo,\n6,rome,6\n");
        write("job.yaml", "job: People\ntables:\n  - file: people.csv\n    key: [id]\n    rules:\n"
                          "      - {name: Has a city, condition: \"not isnull(`city`)\"}\n");
        const auto job = job::readJobFile(m_folder.file("job.yaml"));
        if (!job.ok())
            throw std::runtime_error(job.error().text);
        const auto outcome = profiling::runJob(*job, m_folder.file("people.tavix"));
        if (!outcome.ok())
            throw std::runtime_error(outcome.error().text);
        m_view.resize(1000, 600);
        m_view.show();
        ASSERT_TRUE(m_view.LoadReportForJob("", outcome->jobId, m_folder.file("people.tavix")));
        ASSERT_TRUE(QTest::qWaitFor([this] { return m_view.findChild<CTableView*>()->isVisible(); }));
    }
    void write(const char* name, const std::string& text) { std::ofstream(m_folder.file(name)) << text; }

    void selectField(const std::string& name) {
        const ProfileCursorHandle fields =
            m_view.GetTavixDoc().GetViewer()->getFieldList(m_view.GetSelection().table.id);
        while (fields->next()) {
            if (fields->getColumnValue(layout::FieldName).str() == name) {
                ASSERT_TRUE(m_view.SelectField(fields->getColumnInt(layout::FieldId)));
                return;
            }
        }
        FAIL() << "no field " << name;
    }
    CUGCtrl& openTab(int tab) {
        auto& view = dynamic_cast<CReportView&>(m_view.GetReportPane());
        view.SelectTab(tab);
        return *view.GetTab(tab).findChild<CUGCtrl*>();
    }
    /// Calls `act` with the next dialog that asks for a missing file.
    void answerLocating(std::function<void(CLocateFileDlg&)> act) {
        m_locating.disconnect();
        m_locating.callOnTimeout([this, act = std::move(act)] {
            if (auto* dialog = qobject_cast<CLocateFileDlg*>(QApplication::activeModalWidget())) {
                m_locating.stop();
                act(*dialog);
            }
        });
        m_locating.start(5);
    }
    static void doubleClick(CUGCtrl& grid, int row, int column) {
        grid.scrollTo(grid.model()->index(row, column));
        const QPoint at = grid.visualRect(grid.model()->index(row, column)).center();
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, Qt::NoModifier, at);
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, Qt::NoModifier, at);
    }
    static int rowOf(const CUGCtrl& grid, const std::string& text) {
        for (int row = 0; row < grid.model()->rowCount(); ++row) {
            if (toUtf8(grid.model()->index(row, 0).data().toString()) == text)
                return row;
        }
        throw std::runtime_error("no row " + text);
    }
    /// Title, status and rows of each open window; closes the windows.
    Lines takeWindow() {
        const auto windows = m_view.findChildren<CDrillThru*>();
        Lines lines;
        for (CDrillThru* window : windows) {
            lines.push_back(toUtf8(window->windowTitle()));
            lines.push_back(toUtf8(window->findChild<QLabel*>(QStringLiteral("status"))->text()));
            const QAbstractItemModel& rows = *window->findChild<CUGCtrl*>()->model();
            for (int row = 0; row < rows.rowCount(); ++row) {
                std::string line;
                for (int column = 0; column < rows.columnCount(); ++column)
                    line += (column > 0 ? "|" : "") + toUtf8(rows.index(row, column).data().toString());
                lines.push_back(line);
            }
            delete window;
        }
        return lines;
    }

    testing::TempFolder m_folder;
    testing::ScriptedMessages m_messages;
    CTavixApp m_app{makeMemorySettings()};
    CTavixView m_view{m_app, m_messages};
    QTimer m_locating;
};

constexpr int kValues = CFieldView::Frequency;
constexpr int kPatterns = CFieldView::Patterns;
constexpr int kOutliers = CFieldView::Outliers;

TEST_F(DrillThroughWalk, ValuesPatternsAndOutliers) {
    selectField("city");
    CUGCtrl& values = openTab(kValues);
    doubleClick(values, rowOf(values, "Rome"), 1);
    EXPECT_THAT(takeWindow(), ElementsAre("Frequency Distribution Drill Through", "2 rows", "1|Rome|5", "4|Rome|700"));
    doubleClick(values, rowOf(values, "(null value)"), 0);
    EXPECT_THAT(takeWindow(), ElementsAre("Frequency Distribution Drill Through", "1 row", "3||9"));
    values.SelectRow(rowOf(values, "rome"));
    QTest::keyClick(&values, Qt::Key_Return);
    EXPECT_THAT(takeWindow(), ElementsAre("Frequency Distribution Drill Through", "1 row", "6|rome|6"));

    CUGCtrl& patterns = openTab(kPatterns);
    doubleClick(patterns, rowOf(patterns, "Aaaa"), 0);
    EXPECT_THAT(takeWindow(), ElementsAre("Pattern Frequency Distribution Drill Through", "4 rows", "1|Rome|5",
                                          "2|Bonn|7", "4|Rome|700", "5|Oslo|"));

    selectField("size");
    CUGCtrl& outliers = openTab(kOutliers);
    doubleClick(outliers, 0, 1);
    EXPECT_THAT(takeWindow(), ElementsAre("Outliers Drill Through", "1 row", "4|Rome|700"));
    doubleClick(outliers, 0, 0);
    EXPECT_THAT(takeWindow(), ElementsAre("Outliers Drill Through", "1 row", "1|Rome|5"));
}

TEST_F(DrillThroughWalk, WindowsAreListedWithWhatTheyShow) {
    selectField("city");
    CUGCtrl& values = openTab(kValues);
    doubleClick(values, rowOf(values, "Rome"), 1);
    doubleClick(values, rowOf(values, "Bonn"), 1);
    Lines names;
    for (const OpenWindow& window : m_view.GetOpenWindows())
        names.push_back(window.name);
    EXPECT_THAT(names, ElementsAre("Frequency Distribution Drill Through · city: “Rome”",
                                   "Frequency Distribution Drill Through · city: “Bonn”"));
    EXPECT_TRUE(m_view.RaiseWindow(m_view.GetOpenWindows().front().id));
    m_view.CloseWindows();
    EXPECT_TRUE(m_view.GetOpenWindows().empty());
}

TEST_F(DrillThroughWalk, RulesShowTheRowsThatTheRunKept) {
    auto& table = dynamic_cast<CReportView&>(m_view.GetReportPane());
    table.SelectTab(CTableView::BusinessRules);
    // There are two more lists below the rules.
    const auto grids = table.GetTab(CTableView::BusinessRules).findChildren<CUGCtrl*>();
    const auto isRules = [](const CUGCtrl* grid) { return grid->accessibleName() == QLatin1String("Business Rules"); };
    CUGCtrl& rules = **std::find_if(grids.begin(), grids.end(), isRules);
    doubleClick(rules, 0, 0);
    EXPECT_THAT(takeWindow(), ElementsAre("Business Rule Violation Drill Through", "1 row", "3|"));
}

TEST_F(DrillThroughWalk, TheSourceMayHaveChangedOrGone) {
    selectField("city");
    CUGCtrl& values = openTab(kValues);
    const std::string longer = "id,city,size\n1,Rome,5\n2,Bonn,7\n3,,9\n4,Rome,700\n5,Oslo,\n6,rome,6\n7,Rome,1\n";
    write("people.csv", longer);
    doubleClick(values, rowOf(values, "Rome"), 0);
    Lines lines = takeWindow();
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_THAT(lines[1], ::testing::StartsWith("2 in the run, 3 now: the source changed since"));

    write("people.csv", "id,town,size\n1,Rome,5\n");
    PrViewer& viewer = *m_view.GetTavixDoc().GetViewer();
    ASSERT_FALSE(viewer.drillDown(m_view.GetSelection().fieldId, KvbString("Rome"), false, nullptr, nullptr));
    m_messages.expectWarn("Drill through information is unavailable for this item.\n\n" + viewer.getErrorString().str(),
                          "Error");
    doubleClick(values, rowOf(values, "Rome"), 0);
    EXPECT_THAT(takeWindow(), IsEmpty());

    write("people.csv", longer);
    std::filesystem::create_directory(m_folder.file("elsewhere"));
    const std::string place = m_folder.file("elsewhere/people.csv");
    std::filesystem::rename(m_folder.file("people.csv"), place);
    int asked = 0;
    answerLocating([&](CLocateFileDlg& dialog) {
        ++asked;
        EXPECT_TRUE(NestedLoops::instance().isDialogOpen());
        dialog.reject();
    });
    doubleClick(values, rowOf(values, "Rome"), 0);
    EXPECT_THAT(takeWindow(), IsEmpty());
    answerLocating([&](CLocateFileDlg& dialog) {
        ++asked;
        QTimer::singleShot(0, &dialog, [&dialog, &place] {
            auto* files = dialog.findChild<QFileDialog*>();
            ASSERT_TRUE(files);
            files->findChild<QLineEdit*>()->setText(QString::fromStdString(place));
            static_cast<QDialog*>(files)->accept();
        });
        dialog.findChild<QPushButton*>(QStringLiteral("locate"))->click();
    });
    m_messages.expectWarn("\"" + place + "\" has 73 bytes where the run read 64. Its place is not kept.", "Error");
    doubleClick(values, rowOf(values, "Rome"), 0);
    EXPECT_EQ(takeWindow().size(), 5U);
    EXPECT_EQ(asked, 2);
}

TEST_F(DrillThroughWalk, NotForSummaryRowsAndNotWithThatConnectionType) {
    ASSERT_TRUE(m_app.GetSettings().write("TAVIX", "MaxFreqVals", "1").ok());
    selectField("city");
    CUGCtrl& values = openTab(kValues);
    const auto* action = dynamic_cast<CReportView&>(m_view.GetReportPane())
                             .GetTab(kValues)
                             .findChild<QAction*>(QStringLiteral("drillThrough"));
    values.SelectRow(0);
    EXPECT_TRUE(action->isEnabled());
    doubleClick(values, rowOf(values, "Other"), 0);
    EXPECT_FALSE(action->isEnabled());
    EXPECT_THAT(takeWindow(), IsEmpty());
    ASSERT_TRUE(m_app.GetSettings().write("Settings", "ConnectionType", "ctdd").ok());
    doubleClick(values, 0, 0);
    EXPECT_THAT(takeWindow(), IsEmpty());
}

TEST_F(DrillThroughWalk, SeveralWindowsAlsoFromDetachedTabs) {
    selectField("city");
    CUGCtrl& values = openTab(kValues);
    doubleClick(values, rowOf(values, "Bonn"), 0);
    m_view.ExecuteCommand(static_cast<int>(CommandId::DetachTabs));
    auto* detached = m_view.findChild<CTearOff*>();
    ASSERT_TRUE(detached);
    CReportView& view = detached->GetView();
    view.SelectTab(kValues);
    CUGCtrl& grid = *view.GetTab(kValues).findChild<CUGCtrl*>();
    doubleClick(grid, rowOf(grid, "Oslo"), 0);
    detached->close();
    // Neither window needs the tab that opened it, nor the report.
    m_view.GetTavixDoc().Clear();
    EXPECT_THAT(takeWindow(), ElementsAre("Frequency Distribution Drill Through", "1 row", "2|Bonn|7",
                                          "Frequency Distribution Drill Through", "1 row", "5|Oslo|"));
}

} // namespace
} // namespace tavix
