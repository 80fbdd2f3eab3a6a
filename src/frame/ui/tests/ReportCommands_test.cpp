// Commands and navigation requests to the view of a table or field.
#include "doc/Commands.h"
#include "doc/NavigateRequest.h"
#include "frame/ui/tests/ViewOverSample.h"
#include "grid/CUGDataSource.h"
#include "support/SampleRules.h"

#include <QDialog>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>

#include <gmock/gmock.h>

#include <set>

namespace tavix {
namespace {

using testing::ViewOverSample;

constexpr CommandState kUnhandled = {};
constexpr CommandState kEnabled = {true, true, false};
constexpr CommandState kDisabled = {true, false, false};
constexpr CommandState kChecked = {true, true, true};

class ReportCommands : public ViewOverSample {
  protected:
    void SetUp() override { ASSERT_TRUE(load()); }
    [[nodiscard]] NavigateRequest request(const char* kind, int metric = -1, const char* field = "customers/city") {
        return {"Warehouse", "crm", "public", "customers", 0, kind, metric, m_sample.fields.at(field)};
    }
    static void writeNote(const char* text) {
        inNextDialog([text](QDialog& dialog) {
            dialog.findChild<QPlainTextEdit*>()->setPlainText(QLatin1String(text));
            dialog.accept();
        });
    }
};

TEST_F(ReportCommands, ARequestLeadsToTheFigureThatItNames) {
    m_view->resize(700, 600);
    ASSERT_TRUE(selectField("suppliers", "city"));
    const int percentNull = static_cast<int>(MetricId::PercentNull);
    ASSERT_TRUE(m_view->Navigate(request("SM", percentNull)));
    EXPECT_EQ("customers", m_view->GetSelection().table.name);
    EXPECT_EQ(0, m_view->GetItemCode());
    CUGCtrl& metrics = grid(tab());
    EXPECT_EQ("city", cell(tab(), static_cast<int>(metrics.GetCurrentRow()), 0));
    int column = 0;
    while (metrics.model()->headerData(column, Qt::Horizontal).toString() != QStringLiteral("Percent Null"))
        ASSERT_LT(++column, metrics.model()->columnCount());
    EXPECT_GT(metrics.horizontalScrollBar()->value(), 0);
    const QRect seen = metrics.visualRect(metrics.model()->index(0, column));
    EXPECT_TRUE(seen.left() >= 0 && seen.right() <= metrics.viewport()->width()) << seen.left() << " " << seen.right();

    // From another tab of the table that is already shown, and to another row.
    report().SelectTab(CTableView::Notes);
    ASSERT_TRUE(m_view->Navigate(request("SM", 0, "customers/name")));
    EXPECT_EQ("name", cell(tab(), static_cast<int>(grid(tab()).GetCurrentRow()), 0));
    EXPECT_EQ(0, m_view->GetItemCode());

    ASSERT_TRUE(m_view->Navigate(request("CM", 3)));
    EXPECT_EQ(1, m_view->GetItemCode());
    ASSERT_TRUE(selectField("customers", "id"));
    ASSERT_TRUE(m_view->Navigate(request("BR", 3)));
    EXPECT_EQ(2, m_view->GetItemCode());
}

TEST_F(ReportCommands, ARequestForAMetricOrRuleOfTheJobSelectsItsRow) {
    testing::addRules(m_sample);
    ASSERT_TRUE(selectField("suppliers", "city"));
    const auto selected = [this] {
        CUGCtrl& rows = list(tab(), m_view->GetItemCode() == 1 ? "Custom Metrics" : "Business Rules");
        return toUtf8(rows.model()->index(static_cast<int>(rows.GetCurrentRow()), 0).data().toString()) + ": " +
               std::to_string(rows.GetSelectedRows().size());
    };
    ASSERT_TRUE(m_view->Navigate(request("CM", testing::ruleId("Margin"))));
    EXPECT_EQ(1, m_view->GetItemCode());
    EXPECT_EQ("Margin: 1", selected());
    // The list below shows the selected row.
    EXPECT_EQ("22", toUtf8(list(tab(), "History of the metric").model()->index(0, 2).data().toString()));
    ASSERT_TRUE(m_view->Navigate(request("CM", testing::ruleId("Spread"))));
    EXPECT_EQ("Spread: 1", selected());
    ASSERT_TRUE(m_view->Navigate(request("BR", testing::ruleId("Balance is positive"))));
    EXPECT_EQ(2, m_view->GetItemCode());
    EXPECT_EQ("Balance is positive: 1", selected());
    // The list is opened even if the run does not have the rule.
    ASSERT_TRUE(m_view->Navigate(request("BR", 4711)));
    EXPECT_EQ("Name is known: 1", selected());
}

TEST_F(ReportCommands, ARequestForWhatIsNotThereIsNoAndSaysNothing) {
    const auto with = [this](auto change) {
        NavigateRequest changed = request("SM", 0);
        change(changed);
        return changed;
    };
    EXPECT_FALSE(m_view->Navigate(with([](NavigateRequest& r) { r.table = "Customers"; })));
    EXPECT_FALSE(m_view->Navigate(with([](NavigateRequest& r) { r.dataSource = ""; })));
    EXPECT_FALSE(m_view->Navigate(with([](NavigateRequest& r) { r.mode = 4; })));
    EXPECT_FALSE(m_view->Navigate(with([](NavigateRequest& r) { r.schema = "dbo"; })));
    // A table is shown even if it does not have the field or metric.
    EXPECT_TRUE(m_view->Navigate(with([](NavigateRequest& r) { r.rowId = 4711; })));
    EXPECT_TRUE(m_view->Navigate(with([](NavigateRequest& r) { r.metricId = 4711; })));
    EXPECT_EQ("city", cell(tab(), static_cast<int>(grid(tab()).GetCurrentRow()), 0));
    report().SelectTab(CTableView::Notes);
    EXPECT_TRUE(m_view->Navigate(with([](NavigateRequest& r) { r.metricKind = "sm"; })));
    EXPECT_EQ(14, m_view->GetItemCode());
    EXPECT_TRUE(execute(CommandId::New));
    EXPECT_FALSE(m_view->Navigate(request("SM", 0)));
}

TEST_F(ReportCommands, AreEnabledWhereTheyCanDoSomething) {
    const auto states = [this] {
        return std::vector<CommandState>{stateOf(CommandId::AddTableNote), stateOf(CommandId::AddFieldNote),
                                         stateOf(CommandId::NoteCategories), stateOf(CommandId::DetachTabs),
                                         stateOf(CommandId::ShowInvisible)};
    };
    using ::testing::ElementsAre;
    const auto ofTable = ElementsAre(kEnabled, kUnhandled, kEnabled, kEnabled, kEnabled);
    EXPECT_THAT(states(), ElementsAre(kUnhandled, kUnhandled, kEnabled, kUnhandled, kEnabled));
    ASSERT_TRUE(selectTable("customers"));
    EXPECT_THAT(states(), ofTable);
    report().SelectTab(CTableView::BusinessRules);
    EXPECT_THAT(states(), ofTable);
    selectCollection(0);
    EXPECT_THAT(states(), ofTable);
    ASSERT_TRUE(selectField("customers", "name"));
    EXPECT_THAT(states(), ElementsAre(kUnhandled, kEnabled, kEnabled, kEnabled, kEnabled));
    EXPECT_TRUE(execute(CommandId::ShowInvisible));
    EXPECT_EQ(kChecked, stateOf(CommandId::ShowInvisible));
    EXPECT_TRUE(execute(CommandId::New));
    EXPECT_THAT(states(), ElementsAre(kUnhandled, kUnhandled, kDisabled, kUnhandled, kChecked));
    EXPECT_FALSE(execute(CommandId::AddTableNote) || execute(CommandId::AddFieldNote) ||
                 execute(CommandId::DetachTabs));
}

// Menus list the commands that have a handler, and no others.
TEST_F(ReportCommands, AreListedWhenTheyHaveAHandler) {
    std::set<int> handled;
    const auto lookAround = [&] {
        for (const int first : {32700, 40000, 57600}) {
            for (int id = first; id < first + 300; ++id) {
                if (stateOf(static_cast<CommandId>(id)).handled)
                    handled.insert(id);
            }
        }
    };
    ASSERT_TRUE(selectTable("customers"));
    lookAround();
    ASSERT_TRUE(selectField("customers", "name"));
    report().SelectTab(CFieldView::Frequency);
    lookAround();
    std::set<int> listed;
    for (const TavixCommand& command : kCommands)
        listed.insert(static_cast<int>(command.id));
    EXPECT_EQ(listed, handled);
}

TEST_F(ReportCommands, AddNotesFromAnyTabAndShowThem) {
    ASSERT_TRUE(selectTable("suppliers"));
    report().SelectTab(CTableView::BusinessRules);
    writeNote("Six of them");
    EXPECT_TRUE(execute(CommandId::AddTableNote));
    EXPECT_EQ(14, m_view->GetItemCode());
    EXPECT_EQ(1, rows(tab()));
    EXPECT_EQ("Six of them", toUtf8(tab().findChild<QPlainTextEdit*>(QStringLiteral("noteText"))->toPlainText()));
    ASSERT_TRUE(selectField("suppliers", "city"));
    writeNote("With an umlaut");
    EXPECT_TRUE(execute(CommandId::AddFieldNote));
    EXPECT_EQ(10, m_view->GetItemCode());
    EXPECT_EQ(1, rows(tab()));
    EXPECT_EQ("With an umlaut", toUtf8(tab().findChild<QPlainTextEdit*>(QStringLiteral("noteText"))->toPlainText()));
}

TEST_F(ReportCommands, CategoriesAreTheReportsAndTheTabsFollow) {
    ASSERT_TRUE(selectTable("customers"));
    report().SelectTab(CTableView::Notes);
    CTearOff& window = detach();
    m_messages.onEvent = {};
    int seen = 0;
    inNextDialog([&seen](QDialog& dialog) { seen = dialog.findChild<QListWidget*>()->count(); });
    EXPECT_TRUE(execute(CommandId::NoteCategories));
    EXPECT_EQ(2, seen);

    // A note added in one of them appears in the other.
    writeNote("A third");
    EXPECT_TRUE(execute(CommandId::AddTableNote));
    EXPECT_EQ(3, rows(tab()));
    EXPECT_EQ(3, rows(window.GetView().GetTab(CTableView::Notes)));
}

TEST_F(ReportCommands, DetachOpensAWindowAndSignsAreShownInEveryList) {
    ASSERT_TRUE(selectField("orders", "note"));
    report().SelectTab(CFieldView::Frequency);
    EXPECT_TRUE(execute(CommandId::DetachTabs));
    ASSERT_EQ(1U, tearOffs().size());
    EXPECT_EQ(CFieldView::Frequency, tearOffs().front()->GetView().GetCurrentTab());
    EXPECT_TRUE(execute(CommandId::ShowInvisible));
    for (CReportView* view : {&report(), &tearOffs().front()->GetView()}) {
        for (const CUGCtrl* list : view->findChildren<CUGCtrl*>())
            EXPECT_TRUE(list->ShowsInvisible()) << toUtf8(list->accessibleName());
    }
    // Later views follow the setting, and so does the next start.
    ASSERT_TRUE(selectTable("customers"));
    EXPECT_TRUE(grid(tab()).ShowsInvisible());
    m_view.reset();
    makeView();
    EXPECT_EQ(kChecked, stateOf(CommandId::ShowInvisible));
}

} // namespace
} // namespace tavix
