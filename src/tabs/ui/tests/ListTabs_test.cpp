#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "chart/ui/DrawingWidget.h"
#include "doc/tests/TestSite.h"
#include "grid/ui/CUGCtrl.h"
#include "report/FieldRecords.h"
#include "report/ReportTables.h"
#include "settings/Settings.h"
#include "support/RunScript.h"
#include "support/SampleRepository.h"
#include "tabs/ui/CTabAlerts.h"
#include "tabs/ui/CTabBusRule.h"
#include "tabs/ui/CTabColProf.h"
#include "tabs/ui/CTabCustMet.h"
#include "tabs/ui/CTabFreqDist.h"
#include "tabs/ui/PlainListTab.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>

#include <type_traits>

namespace tavix {
namespace {

using ::testing::ElementsAre;

class ListTabs : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(m_site.document.OpenReport(m_sample.path, m_sample.salesJob)); }

    void select(const std::string& table, const std::string& field = {}) {
        m_subject = {};
        m_subject.selection.kind = ReportSelection::Kind::Table;
        m_subject.selection.table.id = m_sample.tables.at(table);
        if (!field.empty())
            m_subject.selection.fieldId = m_sample.fields.at(table + "/" + field);
        PrViewer& viewer = *m_site.document.GetViewer();
        if (auto found = findTable(viewer, m_sample.tables.at(table), "Warehouse"))
            m_subject.table = *found;
        FieldRecords records;
        if (auto found = records.Find(viewer, m_subject.selection))
            m_subject.field = **found;
    }
    template <typename Tab>
    std::unique_ptr<Tab> open(ItemCode code = ItemCode::None, bool isTornOff = false) {
        std::unique_ptr<Tab> tab;
        if constexpr (std::is_constructible_v<Tab, CViewSite&, const ReportSubject&, bool, ItemCode>)
            tab = std::make_unique<Tab>(m_site, m_subject, isTornOff, code);
        else
            tab = std::make_unique<Tab>(m_site, m_subject, isTornOff);
        tab->resize(700, 400);
        tab->show();
        return tab;
    }
    static CUGCtrl& grid(QWidget& tab) { return *tab.findChild<CUGCtrl*>(); }
    static std::string cell(QWidget& tab, int row, int column) {
        return toUtf8(grid(tab).model()->index(row, column).data().toString());
    }
    static int rows(QWidget& tab) { return grid(tab).model()->rowCount(); }
    /// "" while the grid is shown.
    static std::string note(QWidget& tab) {
        auto* label = tab.findChild<QLabel*>(QStringLiteral("note"));
        return label->isVisible() ? toUtf8(label->text()) : "";
    }

    testing::TempFolder m_folder;
    testing::SampleRepository m_sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
    std::unique_ptr<SettingsStore> m_settings = makeMemorySettings();
    testing::ScriptedMessages m_messages;
    testing::TestSite m_site{*m_settings, m_messages};
    ReportSubject m_subject;
};

TEST_F(ListTabs, FillWhenTheyAreSeenAndOnTheirHintsOnly) {
    using enum RefreshHint;
    select("customers", "name");
    struct Case {
        std::unique_ptr<CListTab> tab;
        std::vector<RefreshHint> refills;
    };
    Case cases[] = {
        {open<CTabColProf>(ItemCode::ColumnProfiling), {DocumentReset, RunLoaded, TaskListLost, FindingsChanged}},
        {open<CTabColProf>(ItemCode::Percentiles), {DocumentReset, RunLoaded, TaskListLost}},
        {open<CTabFreqDist>(ItemCode::Frequency), {DocumentReset, RunLoaded, OptionsChanged, TaskListLost}},
        {open<CTabFreqDist>(ItemCode::Patterns), {DocumentReset, RunLoaded, OptionsChanged, TaskListLost}}};
    for (Case& each : cases) {
        std::vector<RefreshHint> refilled;
        for (const RefreshHint hint : {CollectionsRefreshed, DocumentReset, RunLoaded, OptionsChanged, TaskListLost,
                                       HistoryDeletion, FindingsChanged}) {
            const int before = m_messages.busyCount();
            each.tab->Refresh(nullptr, hint, 0);
            if (m_messages.busyCount() != before)
                refilled.push_back(hint);
        }
        EXPECT_EQ(each.refills, refilled);
        each.tab->hide();
        const int before = m_messages.busyCount();
        each.tab->Refresh(nullptr, RunLoaded, 0);
        EXPECT_EQ(before, m_messages.busyCount());
        each.tab->show();
        EXPECT_EQ(before + 1, m_messages.busyCount());
    }
}

TEST_F(ListTabs, OneClassShowsThreeListsByItemCode) {
    select("customers", "balance");
    const auto metrics = open<CTabColProf>(ItemCode::ColumnProfiling);
    EXPECT_EQ(24, rows(*metrics));
    EXPECT_EQ("Count", cell(*metrics, 0, 0));
    const auto percentiles = open<CTabColProf>(ItemCode::Percentiles);
    EXPECT_EQ("5%", cell(*percentiles, 0, 0));
    const auto outliers = open<CTabColProf>(ItemCode::Outliers);
    EXPECT_EQ("9000", cell(*outliers, 0, 1));
    EXPECT_EQ(0, grid(*open<CTabColProf>(ItemCode::KeyAnalysis)).model()->columnCount());
    EXPECT_EQ(outliers->findChild<DrawingWidget*>(), outliers->GetLastTabStop()) << "the picture beside the list";
}

TEST_F(ListTabs, TheLimitOfTheSettingsHoldsAndRowsAreCopiedAsTheyAre) {
    ASSERT_TRUE(m_settings->write("TAVIX", "MaxFreqVals", "-3"));
    select("customers", "city");
    const auto tab = open<CTabFreqDist>(ItemCode::Frequency);
    ASSERT_EQ(2, rows(*tab));
    EXPECT_EQ("Other", cell(*tab, 1, 0));
    QTest::keyClick(&grid(*tab), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&grid(*tab), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ("City 1\t150\t1.32\r\nOther\t11182\t98.68\r\n", toUtf8(QApplication::clipboard()->text()));

    select("orders", "note");
    tab->SubjectChanged();
    EXPECT_EQ("=1+1", cell(*tab, 0, 0));
}

TEST_F(ListTabs, TheMenuIsOfferedWhereThereIsSomethingToChoose) {
    select("customers", "remark");
    const auto patterns = open<CTabFreqDist>(ItemCode::Patterns);
    EXPECT_EQ("(Not calculated)", cell(*patterns, 0, 0));
    EXPECT_EQ(Qt::PreventContextMenu, grid(*patterns).contextMenuPolicy());
    select("customers", "name");
    patterns->SubjectChanged();
    EXPECT_EQ(Qt::DefaultContextMenu, grid(*patterns).contextMenuPolicy());
    EXPECT_EQ(Qt::PreventContextMenu, grid(*open<CTabFreqDist>(ItemCode::Frequency, true)).contextMenuPolicy());
}

TEST_F(ListTabs, AFailureIsToldOnceAndLeavesWhatIsShown) {
    select("customers", "name");
    const auto tab = open<CTabFreqDist>(ItemCode::Patterns);
    const int shown = rows(*tab);
    grid(*tab).SelectRow(1);
    testing::runScript(m_sample.path, "UPDATE distribution_block SET payload = x'00' WHERE kind = 'P'");
    PrViewer& viewer = *m_site.document.GetViewer();
    (void)viewer.getPatternDist(m_subject.field->id, {});
    const std::string message =
        "Error occurred while retrieving pattern distribution:\n\n" + viewer.getErrorString().str();
    m_messages.expectWarn(message);
    tab->Refresh(nullptr, RefreshHint::RunLoaded, 0);
    QApplication::processEvents();
    EXPECT_EQ(0U, m_messages.pending());
    EXPECT_EQ(shown, rows(*tab));
    EXPECT_EQ(1, grid(*tab).GetCurrentRow());

    // Rows of another field are removed.
    m_messages.expectWarn(message);
    select("customers", "city");
    tab->SubjectChanged();
    QApplication::processEvents();
    EXPECT_EQ(0, rows(*tab));
    EXPECT_EQ(message, note(*tab));
    EXPECT_EQ(nullptr, tab->GetLastTabStop());

    // It is not a failure if the run does not have the field.
    m_subject.field.reset();
    tab->SubjectChanged();
    EXPECT_EQ("This run does not have the field.", note(*tab));
    select("customers", "remark");
    tab->SubjectChanged();
    EXPECT_EQ("", note(*tab));
}

TEST_F(ListTabs, ListsOfATableAndPlainSentencesWhereThereIsNothing) {
    select("customers");
    const auto charts = open<CTabTblVis>();
    EXPECT_EQ("Nulls", cell(*charts, 0, 0));
    EXPECT_EQ("No alert is defined for this table.", note(*open<CTabAlerts>()));
    EXPECT_EQ("The job of this report defines no custom metrics for this table.", note(*open<CTabCustMet>()));
    EXPECT_EQ("The job of this report defines no business rules for this table.", note(*open<CTabBusRule>()));
    select("suppliers", "id");
    const auto keys = open<CTabPKFK>();
    EXPECT_EQ("60.00", cell(*keys, 0, 5));
    charts->SubjectChanged();
    EXPECT_EQ("No visualization of this table is stored.", note(*charts));
    m_subject = {};
    m_subject.selection.kind = ReportSelection::Kind::Collection;
    charts->SubjectChanged();
    EXPECT_EQ("A collection has no visualizations of its own; its tables may have some.", note(*charts));
    m_site.document.Clear();
    charts->Refresh(nullptr, RefreshHint::DocumentReset, 0);
    EXPECT_EQ("", note(*charts));
    EXPECT_EQ(0, rows(*charts));
}

} // namespace
} // namespace tavix
