// Reports that are closed or replaced under a dialog, and the answer that the dialog gives afterwards.
#include "frame/ui/tests/ViewOverSample.h"
#include "support/LongList.h"

#include <QDialog>
#include <QPlainTextEdit>
#include <QTimer>
#include <QTreeWidget>

namespace tavix {
namespace {

using testing::ViewOverSample;

constexpr int kNew = 57600;
constexpr int kAddTableNote = 32818;
constexpr int kFilter = 32832;
constexpr int kNoteCategories = 32838;
constexpr int kOptions = 40001;
constexpr int kDeleteHistory = 40002;

class ReportDialogs : public ViewOverSample {
  protected:
    void SetUp() override { ASSERT_TRUE(load()); }
    bool loadOther() { return m_view->LoadReportForJob("", m_sample.inventoryJob, m_sample.path); }
    /// Executes the command and does `act` in the dialog that it opens.
    void inDialog(int command, const std::function<void(QDialog&)>& act) {
        int acted = 0;
        QTimer::singleShot(0, qApp, [&acted, act] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_TRUE(dialog);
            ++acted;
            act(*dialog);
        });
        EXPECT_TRUE(execute(command));
        EXPECT_EQ(1, acted);
    }
    /// As Yes to the dialog's question does, for the oldest run.
    static void chooseOldest(QDialog& dialog) {
        auto& runs = *dialog.findChild<QTreeWidget*>(QStringLiteral("runs"));
        runs.setCurrentItem(runs.topLevelItem(runs.topLevelItemCount() - 1));
        dialog.done(QDialog::Accepted);
    }
    std::size_t runsOfSales() { return load() ? m_view->GetTavixDoc().GetRuns()->size() : 0; }
};

TEST_F(ReportDialogs, RunsAreNotDeletedWhenTheirReportIsClosedOrAnotherOneOpen) {
    constexpr const char* kMessage = "No run was deleted: the report whose runs were chosen is closed.";
    m_messages.expectWarn(kMessage);
    inDialog(kDeleteHistory, [this](QDialog& dialog) {
        EXPECT_TRUE(execute(kNew));
        chooseOldest(dialog);
    });
    EXPECT_FALSE(m_view->GetTavixDoc().HasReport());
    EXPECT_EQ(3U, runsOfSales());

    m_messages.expectWarn(kMessage);
    inDialog(kDeleteHistory, [this](QDialog& dialog) {
        EXPECT_TRUE(loadOther());
        chooseOldest(dialog);
    });
    EXPECT_EQ("Inventory", m_view->GetTavixDoc().GetTitle());
    EXPECT_EQ(1U, m_view->GetTavixDoc().GetRuns()->size());
    EXPECT_EQ(3U, runsOfSales());
    inDialog(kDeleteHistory, &ReportDialogs::chooseOldest);
    EXPECT_EQ(2U, runsOfSales());
}

TEST_F(ReportDialogs, ANoteGoesToTheTableThatItWasWrittenFor) {
    ASSERT_TRUE(selectTable("suppliers"));
    inDialog(kAddTableNote, [this](QDialog& dialog) {
        EXPECT_TRUE(loadOther());
        dialog.findChild<QPlainTextEdit*>()->setPlainText(QStringLiteral("Six of them"));
        dialog.accept();
    });
    EXPECT_EQ("Inventory", m_view->GetTavixDoc().GetTitle());
    ASSERT_TRUE(load());
    ASSERT_TRUE(selectTable("suppliers"));
    report().SelectTab(CTableView::Notes);
    EXPECT_EQ(1, rows(tab()));
}

TEST_F(ReportDialogs, AFilterIsNotPutOnAFieldOfAnotherReport) {
    ASSERT_TRUE(selectField("customers", "name"));
    report().SelectTab(CFieldView::Frequency);
    inDialog(kFilter, [this](QDialog& dialog) {
        EXPECT_TRUE(loadOther());
        dialog.done(QDialog::Accepted);
    });
    EXPECT_EQ("", m_view->GetTavixDoc().GetFieldFilters().Get(m_sample.fields.at("customers/name"),
                                                              DistributionKind::Frequency));
    EXPECT_EQ("Inventory", m_view->GetTavixDoc().GetTitle());
}

TEST_F(ReportDialogs, OtherDialogsDoTheirWorkWithoutTheReport) {
    for (const int command : {kOptions, kNoteCategories}) {
        ASSERT_TRUE(load());
        inDialog(command, [this](QDialog& dialog) {
            EXPECT_TRUE(execute(kNew));
            dialog.done(QDialog::Accepted);
        });
        EXPECT_FALSE(m_view->GetTavixDoc().HasReport()) << command;
        EXPECT_TRUE(isEmptyViewShown());
    }
}

TEST_F(ReportDialogs, AReadingMayEndInAnotherReport) {
    makeView(0);
    const auto list = testing::LongList::build(m_folder.file("long.tavix"));
    ReportSelection table;
    table.kind = ReportSelection::Kind::Table;
    table.table.id = list.table;
    for (const bool isNew : {true, false}) {
        ASSERT_TRUE(m_view->LoadReportForJob("", list.job, list.path));
        ASSERT_TRUE(m_view->GetNavigator().SelectObject(table));
        ASSERT_TRUE(m_view->SelectField(list.field));
        report().SelectTab(CFieldView::Frequency);
        CProfTab& values = tab();
        m_view->GetTavixDoc().GetFieldFilters().Set(list.field, DistributionKind::Frequency,
                                                    "instr(`Value`, 'x') == 0");
        int acted = 0;
        QTimer::singleShot(0, &values, [this, &acted, isNew] {
            ASSERT_TRUE(QApplication::activeModalWidget());
            ++acted;
            if (isNew)
                EXPECT_TRUE(execute(kNew));
            else
                EXPECT_TRUE(load() && selectField("customers", "name"));
        });
        values.SubjectChanged();
        EXPECT_EQ(1, acted);
        EXPECT_FALSE(QApplication::activeModalWidget());
        if (isNew) {
            EXPECT_TRUE(isEmptyViewShown());
        } else {
            EXPECT_EQ(5, rows(tab())) << "those of the field that is shown now";
        }
    }
}

} // namespace
} // namespace tavix
