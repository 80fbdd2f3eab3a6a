// Reports that are closed or replaced while a dialog is open, which is accepted afterwards.
#include "frame/ui/tests/ViewOverSample.h"
#include "support/LongList.h"

#include <QDialog>
#include <QPlainTextEdit>
#include <QTimer>
#include <QTreeWidget>

namespace tavix {
namespace {

using testing::ViewOverSample;

class ReportDialogs : public ViewOverSample {
  protected:
    void SetUp() override { ASSERT_TRUE(load()); }
    bool loadOther() { return m_view->LoadReportForJob("", m_sample.inventoryJob, m_sample.path); }
    /// Executes the command and calls `act` in the dialog that it opens.
    void inDialog(CommandId command, const std::function<void(QDialog&)>& act) {
        int acted = 0;
        inNextDialog(act, &acted);
        EXPECT_TRUE(execute(command));
        EXPECT_EQ(1, acted);
    }
    /// Chooses the oldest run, as if the user had confirmed.
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
    inDialog(CommandId::DeleteHistory, [this](QDialog& dialog) {
        EXPECT_TRUE(execute(CommandId::New));
        chooseOldest(dialog);
    });
    EXPECT_FALSE(m_view->GetTavixDoc().HasReport());
    EXPECT_EQ(3U, runsOfSales());

    m_messages.expectWarn(kMessage);
    inDialog(CommandId::DeleteHistory, [this](QDialog& dialog) {
        EXPECT_TRUE(loadOther());
        chooseOldest(dialog);
    });
    EXPECT_EQ("Inventory", m_view->GetTavixDoc().GetTitle());
    EXPECT_EQ(1U, m_view->GetTavixDoc().GetRuns()->size());
    EXPECT_EQ(3U, runsOfSales());
    inDialog(CommandId::DeleteHistory, &ReportDialogs::chooseOldest);
    EXPECT_EQ(2U, runsOfSales());
}

TEST_F(ReportDialogs, ANoteGoesToTheTableThatItWasWrittenFor) {
    ASSERT_TRUE(selectTable("suppliers"));
    inDialog(CommandId::AddTableNote, [this](QDialog& dialog) {
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
    inDialog(CommandId::Filter, [this](QDialog& dialog) {
        EXPECT_TRUE(loadOther());
        dialog.done(QDialog::Accepted);
    });
    EXPECT_EQ("", m_view->GetTavixDoc().GetFieldFilters().Get(m_sample.fields.at("customers/name"),
                                                              DistributionKind::Frequency));
    EXPECT_EQ("Inventory", m_view->GetTavixDoc().GetTitle());
}

TEST_F(ReportDialogs, OtherDialogsDoTheirWorkWithoutTheReport) {
    for (const CommandId command : {CommandId::Options, CommandId::NoteCategories}) {
        ASSERT_TRUE(load());
        inDialog(command, [this](QDialog& dialog) {
            EXPECT_TRUE(execute(CommandId::New));
            dialog.done(QDialog::Accepted);
        });
        EXPECT_FALSE(m_view->GetTavixDoc().HasReport()) << static_cast<int>(command);
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
        ASSERT_TRUE(navigator().SelectObject(table));
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
                EXPECT_TRUE(execute(CommandId::New));
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
