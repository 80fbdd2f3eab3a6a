// Walks through everything that two reports show, and fails on Qt warnings, messages, sanitizer findings, and tabs that
// show neither rows nor a sentence.
#include "base/tests/ScriptedMessages.h"
#include "base/tests/SourceFolder.h"
#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "doc/CTavixApp.h"
#include "frame/ui/CTavixView.h"
#include "grid/ui/CUGCtrl.h"
#include "job/JobDescription.h"
#include "nav/ui/CTables.h"
#include "profiling/JobRunner.h"
#include "shell/ShellStyle.h"
#include "support/SampleRepository.h"
#include "tabs/ui/CProfTab.h"
#include "tabs/ui/TearOff.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QStackedWidget>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

#include <gtest/gtest.h>

#include <stdexcept>

namespace tavix {
namespace {

/// Counts, so that a walk that finds nothing fails.
struct Sights {
    int objects = 0;
    int tabs = 0;
    int lists = 0;
    int sentences = 0;
    int sortedColumns = 0;
    int detached = 0;
    int runs = 0;
};

class Walk {
  public:
    Walk(const std::string& repository, int jobId) {
        m_view.resize(900, 420);
        m_view.show();
        if (!m_view.LoadReportForJob("walk", jobId, repository))
            throw std::runtime_error("the report does not open");
        QApplication::setActiveWindow(&m_view);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_view));
        // Soon after loading, the view selects a table by itself; wait for that.
        EXPECT_TRUE(QTest::qWaitFor([this] { return report() != nullptr; }));
    }

    Sights all() {
        m_runs = m_view.GetTavixDoc().GetRuns().value();
        for (const int page : {0, 1}) {
            m_view.findChild<CTables*>()->ShowPage(static_cast<NavigatorPage>(page));
            m_tree = m_view.findChild<QTreeView*>(QStringLiteral("page%1").arg(page));
            // A change of run rebuilds the tree, so nodes are identified by their rows.
            std::vector<std::vector<int>> paths;
            collect({}, {}, paths);
            for (const std::vector<int>& path : paths)
                visit(path);
        }
        return m_seen;
    }

  private:
    void collect(const QModelIndex& parent, const std::vector<int>& above, std::vector<std::vector<int>>& paths) {
        QAbstractItemModel& model = *m_tree->model();
        if (model.canFetchMore(parent))
            model.fetchMore(parent);
        for (int row = 0; row < model.rowCount(parent); ++row) {
            std::vector<int> path = above;
            path.push_back(row);
            paths.push_back(path);
            collect(model.index(row, 0, parent), path, paths);
        }
    }
    QModelIndex indexOf(const std::vector<int>& path) {
        QModelIndex index;
        for (const int row : path) {
            if (m_tree->model()->canFetchMore(index))
                m_tree->model()->fetchMore(index);
            index = m_tree->model()->index(row, 0, index);
        }
        return index;
    }
    CReportView* report() { return dynamic_cast<CReportView*>(&m_view.GetReportPane()); }

    void visit(const std::vector<int>& path) {
        const QModelIndex node = indexOf(path);
        m_tree->setCurrentIndex(node);
        QCoreApplication::processEvents();
        if (!report())
            return;
        ++m_seen.objects;
        const QString name = node.data().toString();
        EXPECT_EQ(toUtf8(name), toUtf8(report()->findChild<QLabel*>(QStringLiteral("viewTitle"))->text()));
        for (int index = 0; index < report()->GetTabCount(); ++index) {
            report()->SelectTab(index);
            SCOPED_TRACE(toUtf8(name) + ", tab " + std::to_string(index));
            lookAt(report()->GetTab(index));
        }
        report()->SelectTab(m_seen.objects % report()->GetTabCount());
        detachAndChangeRuns();
    }

    void lookAt(CProfTab& tab) {
        ++m_seen.tabs;
        ASSERT_TRUE(tab.isVisible());
        auto* grid = qobject_cast<CUGCtrl*>(tab.GetMainControl());
        if (grid && grid->isVisible()) {
            ++m_seen.lists;
            ASSERT_GT(grid->model()->rowCount(), 0) << "an empty list and no sentence";
            useList(*grid);
        } else {
            ++m_seen.sentences;
            bool isSaid = false;
            for (const QLabel* label : tab.findChildren<QLabel*>())
                isSaid = isSaid || (label->isVisible() && label->text().endsWith(u'.'));
            EXPECT_TRUE(isSaid);
        }
        EXPECT_FALSE(m_view.grab().isNull());
    }

    void useList(CUGCtrl& grid) {
        const int rows = grid.model()->rowCount();
        const int columns = grid.model()->columnCount();
        int shownColumns = 0;
        for (int column = 0; column < columns; ++column)
            shownColumns += grid.isColumnHidden(column) ? 0 : 1;
        grid.setFocus();
        for (int column = 0; column < columns; ++column) {
            for (const bool descending : {false, true})
                grid.SortBy(column, descending);
            ++m_seen.sortedColumns;
        }
        EXPECT_EQ(rows, grid.model()->rowCount());
        grid.SelectCell(rows - 1, columns - 1);
        QTest::keyClicks(&grid, QStringLiteral("ci 9"));
        for (const Qt::Key key : {Qt::Key_End, Qt::Key_PageUp, Qt::Key_Home, Qt::Key_Down})
            QTest::keyClick(&grid, key);
        QTest::keyClick(&grid, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&grid, Qt::Key_C, Qt::ControlModifier);
        const QString bare = QApplication::clipboard()->text();
        EXPECT_GE(bare.count(u'\n'), rows);
        EXPECT_GE(bare.count(u'\t'), rows * (shownColumns - 1));
        QTest::keyClick(&grid, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
        const QString headed = QApplication::clipboard()->text();
        EXPECT_TRUE(headed.endsWith(bare));
        EXPECT_TRUE(headed.startsWith(grid.model()->headerData(0, Qt::Horizontal).toString()));
    }

    void detachAndChangeRuns() {
        report()->findChild<QToolButton*>(QStringLiteral("detachButton"))->click();
        const QPointer<CTearOff> window = m_view.findChild<CTearOff*>();
        ASSERT_TRUE(window);
        ++m_seen.detached;
        const int last = m_view.GetTavixDoc().GetCurrentJob();
        for (const RunInfo& run : m_runs) {
            EXPECT_TRUE(m_view.GetTavixDoc().SetCurrentJob(run.id));
            ++m_seen.runs;
            EXPECT_FALSE(window->grab().isNull());
        }
        EXPECT_TRUE(m_view.GetTavixDoc().SetCurrentJob(last));
        window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(window.isNull());
    }

    testing::ScriptedMessages m_messages; ///< expects no message
    CTavixApp m_app{makeMemorySettings()};
    CTavixView m_view{m_app, m_messages};
    QTreeView* m_tree = nullptr;
    std::vector<RunInfo> m_runs;
    Sights m_seen;
};

class ReportWalk : public ::testing::TestWithParam<ColorScheme> {
  protected:
    void SetUp() override { shell::applyLook(GetParam()); }

    testing::TempFolder m_folder;
};

TEST_P(ReportWalk, EverythingOfTheSampleRepository) {
    const auto sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
    const Sights seen = Walk(sample.path, sample.salesJob).all();
    // Tables with their fields, and two collections with theirs.
    EXPECT_EQ(7 + 16 + 2 + 5, seen.objects);
    EXPECT_EQ(9 * 7 + 21 * 8, seen.tabs);
    EXPECT_EQ(seen.tabs, seen.lists + seen.sentences);
    EXPECT_GT(seen.lists, 21 * 3);
    EXPECT_GT(seen.sortedColumns, 9 * 20);
    EXPECT_EQ(seen.objects, seen.detached);
    EXPECT_EQ(3 * seen.objects, seen.runs);
    // Collections belong to the repository and not to one report.
    EXPECT_EQ(1 + 1 + 2 + 5, Walk(sample.path, sample.inventoryJob).all().objects);
}

TEST_P(ReportWalk, EverythingOfTheDemonstration) {
    const auto job = job::readJobFile(testing::sourceFile("share/examples/demo.yaml"));
    ASSERT_TRUE(job.ok()) << job.error().text;
    const std::string repository = m_folder.file("demo.tavix");
    const auto run = profiling::runJob(*job, repository);
    ASSERT_TRUE(run.ok()) << run.error().text;
    const Sights seen = Walk(repository, run->jobId).all();
    std::size_t fields = 0;
    for (const profiling::TableOutcome& table : run->tables)
        fields += table.fields;
    EXPECT_EQ(run->tables.size() + fields + 2 + 6, static_cast<std::size_t>(seen.objects));
    EXPECT_GT(seen.lists, seen.sentences);
}

INSTANTIATE_TEST_SUITE_P(InBothSchemes, ReportWalk, ::testing::Values(ColorScheme::Light, ColorScheme::Dark),
                         [](const auto& each) { return each.param == ColorScheme::Light ? "light" : "dark"; });

} // namespace
} // namespace tavix
