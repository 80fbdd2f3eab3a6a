// The tab of changes: the choice of runs, the progress of a comparison, and how it is drawn.
#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "doc/tests/TestSite.h"
#include "drill/ui/ReadingProgress.h"
#include "grid/ui/CUGCtrl.h"
#include "report/FieldRecords.h"
#include "report/ReportTables.h"
#include "support/SampleRepository.h"
#include "tabs/ui/CTabChanges.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

namespace tavix {
namespace {

class ChangesTab : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(m_site.document.OpenReport(m_sample.path, m_sample.salesJob));
        m_subject.selection.kind = ReportSelection::Kind::Table;
        m_subject.selection.table.id = m_sample.tables.at("customers");
        m_subject.selection.fieldId = m_sample.fields.at("customers/name");
        PrViewer& viewer = *m_site.document.GetViewer();
        m_subject.table = *findTable(viewer, m_sample.tables.at("customers"), "Warehouse");
        FieldRecords records;
        m_subject.field = **records.Find(viewer, m_subject.selection);
        m_tab.resize(900, 400);
    }
    int rows() { return m_tab.findChild<CUGCtrl*>()->model()->rowCount(); }
    std::string note() {
        auto* label = m_tab.findChild<QLabel*>(QStringLiteral("note"));
        return label->isVisible() ? toUtf8(label->text()) : "";
    }
    std::string summary() { return toUtf8(m_tab.findChild<QLabel*>(QStringLiteral("summary"))->accessibleName()); }
    /// The null count of the earlier run.
    std::string nullsBefore() { return toUtf8(m_tab.findChild<CUGCtrl*>()->model()->index(0, 2).data().toString()); }
    QComboBox& box(const char* name) { return *m_tab.findChild<QComboBox*>(QLatin1String(name)); }
    void choose(const char* name, int row) {
        box(name).setFocus();
        box(name).setCurrentIndex(row);
        Q_EMIT box(name).activated(row);
    }

    testing::TempFolder m_folder;
    testing::SampleRepository m_sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
    std::unique_ptr<SettingsStore> m_settings = makeMemorySettings();
    testing::ScriptedMessages m_messages;
    testing::TestSite m_site{*m_settings, m_messages};
    ReportSubject m_subject;
    CTabFieldChanges m_tab{m_site, m_subject, false};
};

TEST_F(ChangesTab, ComparesOnlyWhenItIsSeenAndWithTheRunsThatTheUserChooses) {
    m_tab.SubjectChanged();
    EXPECT_EQ(0, rows());
    EXPECT_EQ(0, box("sinceRun").count()) << "nothing is read for a hidden tab";
    m_tab.show();
    EXPECT_GT(rows(), 0);
    EXPECT_EQ(3, box("sinceRun").count());
    EXPECT_EQ(1, box("sinceRun").currentIndex());
    EXPECT_EQ(0, box("untilRun").currentIndex());
    EXPECT_THAT(toUtf8(box("sinceRun").currentText()), ::testing::StartsWith("2"));
    EXPECT_EQ("229", nullsBefore());
    EXPECT_EQ("2 moved values, 1 moved pattern", summary());
    choose("sinceRun", 2);
    EXPECT_EQ("230", nullsBefore());
    EXPECT_THAT(m_site.sent, ::testing::ElementsAre(RefreshHint::ComparedRunsChanged));
    choose("sinceRun", 0);
    EXPECT_EQ("Both are the same run. Choose another one to see what has changed.", note());
    EXPECT_EQ("", summary());
    EXPECT_EQ(&box("untilRun"), m_tab.GetLastTabStop());
    // Another view chooses as well.
    m_site.document.SetComparedRuns({});
    m_tab.Refresh(nullptr, RefreshHint::ComparedRunsChanged, 0);
    EXPECT_EQ("229", nullsBefore());
    ASSERT_TRUE(m_site.document.SetCurrentJob(m_sample.salesRuns[0]));
    m_tab.Refresh(nullptr, RefreshHint::RunLoaded, 0);
    EXPECT_EQ("Run 1 is the first one, so there is no earlier run to compare it with.", note());
}

TEST_F(ChangesTab, ALongComparisonCanBeCancelledAndStartedAgain) {
    m_site.patienceMilliseconds = 0;
    int dialogs = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &m_tab, [&dialogs] {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (auto* dialog = qobject_cast<ReadingProgressDlg*>(window); dialog && dialog->isVisible()) {
                ++dialogs;
                EXPECT_EQ(QStringLiteral("Changes"), dialog->windowTitle());
                dialog->reject();
            }
    });
    watch.start(0);
    m_tab.show();
    EXPECT_EQ(1, dialogs);
    EXPECT_EQ("The comparison was stopped. Choose a run above to start it again.", note());
    watch.stop();
    m_site.patienceMilliseconds = 60'000;
    choose("sinceRun", 1);
    EXPECT_GT(rows(), 0);
}

} // namespace
} // namespace tavix
