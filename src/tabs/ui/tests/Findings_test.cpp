#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "doc/tests/TestSite.h"
#include "grid/ui/CUGCtrl.h"
#include "report/FieldBreakdown.h"
#include "report/ReportTables.h"
#include "support/RunScript.h"
#include "support/SampleFits.h"
#include "support/SampleRepository.h"
#include "tabs/ui/CSuggestDlg.h"
#include "tabs/ui/CTabColProf.h"
#include "tabs/ui/CTabStdMet.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class FindingsInTabs : public ::testing::Test {
  protected:
    void SetUp() override { openReport(); }
    void openReport() { ASSERT_TRUE(m_site.document.OpenReport(m_sample.path, m_sample.salesJob)); }
    void select(const std::string& table, int field = -1) {
        PrViewer& viewer = *m_site.document.GetViewer();
        m_subject = {};
        m_subject.selection.kind = ReportSelection::Kind::Table;
        m_subject.table = *findTable(viewer, m_sample.tables.at(table), "Warehouse");
        m_subject.selection.table = m_subject.table;
        if (field < 0)
            return;
        m_subject.field = readFields(viewer, m_subject.table.id).at(static_cast<std::size_t>(field));
        m_subject.selection.fieldId = m_subject.field->id;
    }
    template <typename Tab>
    void show(std::unique_ptr<Tab>& tab, int height = 700) {
        tab->resize(800, height);
        tab->show();
        m_site.listeners = {tab.get()};
    }
    static std::string text(const QWidget& tab, const char* label) {
        const auto* found = tab.findChild<QLabel*>(QLatin1String(label));
        return found && found->isVisible() ? toUtf8(found->text()) : "";
    }
    static QAbstractButton& button(const QWidget& tab, const char* name) {
        return *tab.findChild<QAbstractButton*>(QLatin1String(name));
    }
    static CUGCtrl& grid(const QWidget& tab, const char* name) { return *tab.findChild<CUGCtrl*>(QLatin1String(name)); }

    testing::TempFolder m_folder;
    testing::SampleRepository m_sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
    std::unique_ptr<SettingsStore> m_settings = makeMemorySettings();
    testing::ScriptedMessages m_messages;
    testing::TestSite m_site{*m_settings, m_messages};
    ReportSubject m_subject;
};

TEST_F(FindingsInTabs, AreDismissedWithAReasonAndRestored) {
    select("orders", 1);
    auto tab = std::make_unique<CTabColProf>(m_site, m_subject, false, ItemCode::ColumnProfiling);
    show(tab);
    EXPECT_THAT(text(*tab, "findingsText"), StartsWith("1 finding: 1 definite"));
    EXPECT_TRUE(grid(*tab, "findings").isVisible()) << "so few are listed at once";
    bool wasEnabled = true;
    QTimer::singleShot(0, qApp, [&wasEnabled] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        auto* dismiss = dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        wasEnabled = dismiss->isEnabled();
        dialog->findChild<QPlainTextEdit*>()->setPlainText(QStringLiteral("Tabs are meant."));
        dismiss->click();
    });
    button(*tab, "findingDismiss").click();
    EXPECT_FALSE(wasEnabled) << "without a reason";
    EXPECT_THAT(m_site.sent, Contains(RefreshHint::FindingsChanged));
    EXPECT_EQ("no findings", text(*tab, "findingsText"));
    EXPECT_EQ("show 1 dismissed", toUtf8(button(*tab, "findingsDismissed").text()));
    button(*tab, "findingsDismissed").click();
    EXPECT_THAT(text(*tab, "findingExplanation"), HasSubstr(": Tabs are meant."));
    EXPECT_EQ("restore", toUtf8(button(*tab, "findingDismiss").text()));
    button(*tab, "findingDismiss").click();
    EXPECT_THAT(text(*tab, "findingsText"), StartsWith("1 finding"));
}

TEST_F(FindingsInTabs, StayALineInALowWindowAndLeaveARowWholeAboveAScrollBar) {
    select("orders", 1);
    auto tab = std::make_unique<CTabColProf>(m_site, m_subject, false, ItemCode::ColumnProfiling);
    show(tab, 500);
    EXPECT_FALSE(grid(*tab, "findings").isVisible());
    button(*tab, "findingsToggle").click();
    CUGCtrl& findings = grid(*tab, "findings");
    const int wide = 2000;
    findings.horizontalHeader()->resizeSection(0, wide);
    EXPECT_TRUE(QTest::qWaitFor([&findings] { return findings.horizontalScrollBar()->isVisible(); }));
    QCoreApplication::processEvents();
    EXPECT_GE(findings.viewport()->height(), findings.verticalHeader()->defaultSectionSize());
}

TEST_F(FindingsInTabs, LeadToTheirValuesAndCloseToALine) {
    select("orders");
    auto tab = std::make_unique<CTabStdMet>(m_site, m_subject, false);
    show(tab);
    EXPECT_THAT(text(*tab, "findingsText"), StartsWith("2 findings: 1 definite, 1 possible"));
    button(*tab, "findingsToggle").click();
    EXPECT_FALSE(grid(*tab, "findings").isVisible());
    button(*tab, "findingsToggle").click();
    button(*tab, "findingValues").click();
    EXPECT_EQ("has_control_chars(`Value`)",
              m_site.document.GetFieldFilters().Get(m_sample.fields.at("orders/note"), DistributionKind::Frequency));
    grid(*tab, "findings").SelectRow(1);
    EXPECT_FALSE(button(*tab, "findingValues").isVisible()) << "a finding about the table has no values";
    select("suppliers");
    tab->SubjectChanged();
    EXPECT_EQ("", text(*tab, "findingsText"));
}

TEST_F(FindingsInTabs, ThoseWhichDoNotFitAreBelowTheMetrics) {
    testing::makeFits(m_sample, 200, "date");
    testing::runScript(m_sample.path, "UPDATE type_breakdown SET fit_values = 0 WHERE reading = 'date'");
    select("customers", 2);
    auto tab = std::make_unique<CTabColProf>(m_site, m_subject, false, ItemCode::ColumnProfiling);
    show(tab);
    EXPECT_THAT(text(*tab, "typesText"), StartsWith("Types: date 200 of 1,000; do not fit: 12.3456789 (502), -3.5 "));
    EXPECT_EQ("4 values do not fit", toUtf8(tab->findChild<QLabel*>(QStringLiteral("misfitHeading"))->text()));
    EXPECT_EQ(4, grid(*tab, "misfits").model()->rowCount());
    EXPECT_EQ(&grid(*tab, "misfits"), tab->GetLastTabStop());
    const QSignalSpy requested(tab.get(), &CProfTab::TabRequested);
    button(*tab, "showMisfits").click();
    EXPECT_EQ(1, requested.size());
    EXPECT_EQ(misfitCondition("date"),
              m_site.document.GetFieldFilters().Get(m_subject.field->id, DistributionKind::Frequency));
    select("orders", 1);
    tab->SubjectChanged();
    EXPECT_EQ("Types: text 100 of 100", text(*tab, "typesText"));
    EXPECT_FALSE(grid(*tab, "forms").isVisible()) << "one form is one line";
}

TEST_F(FindingsInTabs, SuggestionsAreChosenAndSaved) {
    SuggestionsModel model;
    ASSERT_TRUE(model.Fill(*m_site.document.GetViewer(), m_sample.salesJob, m_sample.tables.at("customers"), [] {}));
    ASSERT_GT(model.size(), 0U);
    CSuggestDlg dialog(m_site.document.GetSession(), m_messages, std::move(model), QStringLiteral("customers"),
                       nullptr);
    dialog.show();
    auto* table = dialog.findChild<QTableWidget*>(QStringLiteral("suggestions"));
    auto* file = dialog.findChild<QPlainTextEdit*>(QStringLiteral("jobFile"));
    const int all = table->rowCount();
    const auto isChosen = [table](int row) { return table->item(row, 0)->checkState() == Qt::Checked; };
    button(dialog, "chooseNone").click();
    EXPECT_FALSE(isChosen(0));
    table->setCurrentCell(0, 0);
    QTest::keyClick(table, Qt::Key_Space);
    EXPECT_TRUE(isChosen(0));
    button(dialog, "chooseAll").click();
    EXPECT_TRUE(isChosen(all - 1));
    EXPECT_THAT(toUtf8(file->toPlainText()), StartsWith("The run does not say from where"))
        << "a reason in place of the file";
    EXPECT_FALSE(button(dialog, "saveAs").isEnabled() || button(dialog, "copy").isEnabled());
    const std::string path = m_folder.file("rules.yaml");
    EXPECT_TRUE(SuggestionsModel::Save(path, "job: x\n"));
    const Status failed = SuggestionsModel::Save(m_folder.file("none/rules.yaml"), "job: x\n");
    ASSERT_FALSE(failed);
    EXPECT_THAT(failed.error().text, HasSubstr("none/rules.yaml\" cannot be written: "));
}

} // namespace
} // namespace tavix
