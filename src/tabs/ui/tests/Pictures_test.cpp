#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "chart/ui/DrawingWidget.h"
#include "doc/tests/TestSite.h"
#include "grid/ui/CUGCtrl.h"
#include "report/FieldRecords.h"
#include "report/ReportTables.h"
#include "settings/Settings.h"
#include "support/SampleRepository.h"
#include "tabs/ui/CTabColProf.h"
#include "tabs/ui/CTabFreqDist.h"
#include "tabs/ui/PicturePane.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace tavix {
namespace {

class PicturesBesideLists : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(m_site.document.OpenReport(m_sample.path, m_sample.salesJob)); }

    void select(const std::string& table, const std::string& field) {
        m_subject = {};
        m_subject.selection.kind = ReportSelection::Kind::Table;
        m_subject.selection.table.id = m_sample.tables.at(table);
        m_subject.selection.fieldId = m_sample.fields.at(table + "/" + field);
        FieldRecords records;
        if (auto found = records.Find(*m_site.document.GetViewer(), m_subject.selection))
            m_subject.field = **found;
    }
    template <typename Tab>
    std::unique_ptr<Tab> open(ItemCode code, int width = 1000) {
        auto tab = std::make_unique<Tab>(m_site, m_subject, false, code);
        tab->resize(width, 420);
        tab->show();
        return tab;
    }
    static PicturePane& pane(QWidget& tab) { return *tab.findChild<PicturePane*>(); }
    static DrawingWidget& drawing(QWidget& tab) { return *tab.findChild<DrawingWidget*>(); }
    static QToolButton& toggle(QWidget& tab) { return *tab.findChild<QToolButton*>(QStringLiteral("pictureToggle")); }
    static std::string title(QWidget& tab) {
        return toUtf8(tab.findChild<QLabel*>(QStringLiteral("pictureTitle"))->text());
    }
    static std::string note(QWidget& tab) {
        auto* label = tab.findChild<QLabel*>(QStringLiteral("pictureNote"));
        return label->isVisible() ? toUtf8(label->text()) : "";
    }

    testing::TempFolder m_folder;
    testing::SampleRepository m_sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
    std::unique_ptr<SettingsStore> m_settings = makeMemorySettings();
    testing::ScriptedMessages m_messages;
    testing::TestSite m_site{*m_settings, m_messages};
    ReportSubject m_subject;
};

TEST_F(PicturesBesideLists, FollowTheFieldAndGiveWay) {
    select("customers", "active");
    const auto tab = open<CTabColProf>(ItemCode::ColumnProfiling);
    ASSERT_TRUE(pane(*tab).isVisible());
    EXPECT_EQ(title(*tab), "Values");
    EXPECT_EQ(drawing(*tab).GetDrawing().hits.at(0).text, "true: 700 rows, 70.0 %");
    EXPECT_GE(tab->findChild<CUGCtrl*>()->width(), 360) << "the columns of the list";
    select("customers", "city");
    tab->SubjectChanged();
    EXPECT_EQ(title(*tab), "Lengths of texts, in characters");
    tab->resize(500, 420);
    EXPECT_FALSE(pane(*tab).isVisible());
    tab->resize(1000, 420);
    EXPECT_TRUE(pane(*tab).isVisible());
    m_subject.field.reset();
    tab->SubjectChanged();
    EXPECT_FALSE(pane(*tab).isVisible()) << "there is no list either";
}

TEST_F(PicturesBesideLists, CloseAndOpenForAllLists) {
    select("customers", "active");
    const auto tab = open<CTabColProf>(ItemCode::ColumnProfiling);
    EXPECT_EQ(toUtf8(toggle(*tab).accessibleName()), "Hide Picture");
    toggle(*tab).click();
    EXPECT_FALSE(drawing(*tab).isVisible());
    EXPECT_TRUE(toggle(*tab).isVisible());
    EXPECT_LT(pane(*tab).width(), 40);
    EXPECT_EQ(toUtf8(toggle(*tab).accessibleName()), "Show Picture");
    EXPECT_TRUE(readFlag(*m_settings, Setting::HidePictures));
    select("customers", "city");
    tab->SubjectChanged();
    EXPECT_EQ(title(*tab), "Values") << "a closed picture is not read";
    toggle(*tab).click();
    EXPECT_EQ(title(*tab), "Lengths of texts, in characters");
    EXPECT_TRUE(drawing(*tab).isVisible());
    EXPECT_GT(pane(*tab).width(), 239);
}

TEST_F(PicturesBesideLists, FilterTheValuesOfARange) {
    select("customers", "city");
    const auto tab = open<CTabColProf>(ItemCode::ColumnProfiling);
    const auto values = open<CTabFreqDist>(ItemCode::Frequency);
    m_site.listeners = {values.get()};
    QSignalSpy asked(tab.get(), &CProfTab::TabRequested);
    drawing(*tab).setFocus();
    QTest::keyClick(&drawing(*tab), Qt::Key_Right);
    QTest::keyClick(&drawing(*tab), Qt::Key_Return);
    ASSERT_EQ(asked.size(), 1);
    EXPECT_EQ(asked.at(0).at(0).value<ItemCode>(), ItemCode::Frequency);
    EXPECT_EQ(m_site.document.GetFieldFilters().Get(m_subject.field->id, DistributionKind::Frequency),
              "length(`Value`) = 6");
    EXPECT_EQ(values->findChild<CUGCtrl*>()->model()->rowCount(), 9) << "City 1 to City 9";
    EXPECT_EQ(tab->GetLastTabStop(), &drawing(*tab));
}

} // namespace
} // namespace tavix
