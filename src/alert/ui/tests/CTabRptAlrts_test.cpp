#include "alert/AlertPrintout.h"
#include "alert/ui/CTabRptAlrts.h"
#include "alert/ui/tests/PdfText.h"
#include "base/LibraryDate.h"
#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "doc/tests/TestSite.h"
#include "drill/ui/PrintWhole.h"
#include "grid/ui/CUGCtrl.h"
#include "settings/Settings.h"
#include "support/RunScript.h"
#include "support/SampleRepository.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPrinter>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Answer = Messages::Answer;

class AlertsWindow : public ::testing::Test {
  protected:
    void SetUp() override {
        addAlert(m_sample.inventoryJob, "parts/Column 1", MetricId::Count, {.comparison = AlertComparison::Greater},
                 "Parts");
        AlertRule error{.value1 = 1};
        error.level = AlertLevel::Error;
        addAlert(m_sample.salesJob, "customers/name", MetricId::NullCount, {.value1 = 228}, "");
        addAlert(m_sample.salesJob, "customers/city", MetricId::Count, error, "Many cities");
        ASSERT_TRUE(m_site.document.OpenReport(m_sample.path, m_sample.salesJob));
    }
    void addAlert(int job, const std::string& field, MetricId metric, const AlertRule& rule, const char* description) {
        ASSERT_TRUE(m_site.document.OpenReport(m_sample.path, job));
        AlertDefinition alert;
        alert.table = m_sample.tables.at(field.substr(0, field.find('/')));
        alert.field = m_sample.fields.at(field);
        alert.metric = metric;
        alert.rule = rule;
        alert.description = description;
        int id = -1;
        PrViewer& viewer = *m_site.document.GetViewer();
        ASSERT_TRUE(viewer.createEditAlert(id, alert, "anna")) << viewer.getErrorString().view();
    }
    CTabRptAlrts& open(const CAlertsFilter& filter = {}) {
        m_window = std::make_unique<CTabRptAlrts>(m_site, filter, nullptr, [this] {
            AlertsDialogs dialogs;
            dialogs.chooseFile = [this](QWidget&, const QString& folder, const QString& name) {
                m_proposed = toUtf8(folder + u'|' + name);
                return toQString(m_path);
            };
            dialogs.choosePrinter = [this](QWidget&, QPrinter& printer) {
                printer.setOutputFormat(QPrinter::PdfFormat);
                printer.setOutputFileName(toQString(m_path));
                return true;
            };
            return dialogs;
        }());
        m_window->show();
        QApplication::setActiveWindow(m_window.get());
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
        QCoreApplication::processEvents();
        return *m_window;
    }
    [[nodiscard]] CUGCtrl& grid() const { return *m_window->findChild<CUGCtrl*>(); }
    template <typename Control>
    [[nodiscard]] Control& control(const char* name) const {
        return *m_window->findChild<Control*>(QLatin1String(name));
    }
    [[nodiscard]] std::string text(const char* name) const { return toUtf8(control<QLabel>(name).text()); }
    /// The texts of a column.
    [[nodiscard]] std::vector<std::string> column(int number) const {
        std::vector<std::string> texts;
        for (int row = 0; row < grid().model()->rowCount(); ++row)
            texts.push_back(toUtf8(grid().model()->index(row, number).data().toString()));
        return texts;
    }
    /// The control with the keyboard; the window is active again after a dialog of its own.
    QWidget* focused() {
        QApplication::setActiveWindow(m_window.get());
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
        return m_window->focusWidget();
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(focused(), key, modifiers);
    }
    static std::string contents(const std::string& path) {
        QFile file(toQString(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "";
    }

    testing::TempFolder m_folder;
    testing::SampleRepository m_sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
    std::unique_ptr<SettingsStore> m_settings = makeMemorySettings();
    testing::ScriptedMessages m_messages;
    testing::TestSite m_site{*m_settings, m_messages};
    std::string m_path;
    std::string m_proposed;
    std::unique_ptr<CTabRptAlrts> m_window;
};

constexpr const char* kNulls = "Null Count for field name is greater than 228";

TEST_F(AlertsWindow, ListsAllAlertsOfTheRepositoryRaisedOnesFirst) {
    open();
    EXPECT_THAT(column(0), ElementsAre("Many cities", "Parts", kNulls));
    EXPECT_THAT(column(3),
                ElementsAre("Warehouse.crm.public.customers", "/data/files.parts", "Warehouse.crm.public.customers"));
    EXPECT_THAT(column(4), ElementsAre("raised", "raised", "quiet"));
    EXPECT_THAT(column(11), ElementsAre("Sales", "Inventory", "Sales"));
    EXPECT_EQ("Current filter: None", text("currentFilter"));
    EXPECT_EQ("3 alerts  ·  1 error, 1 warning", text("count"));
    EXPECT_EQ(0, grid().GetCurrentRow());
    EXPECT_TRUE(grid().hasFocus());
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_THAT(toUtf8(QApplication::clipboard()->text()), HasSubstr("Many cities\tStandard Metric\tcity\t"));
}

TEST_F(AlertsWindow, ShowsWhatWasReadWhenTheRepositoryFails) {
    testing::runScript(m_sample.path, "ALTER TABLE alert_property RENAME TO gone");
    m_messages.expectWarn("Error occurred while retrieving alert list:\n\nThe repository \"" + m_sample.path +
                          "\" is not built as it should be: no such table: alert_property.");
    open();
    EXPECT_EQ(0U, m_messages.pending());
    EXPECT_EQ(3U, column(0).size());
}

TEST_F(AlertsWindow, IsSearchedAndFilteredByKeyboard) {
    open();
    press(Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(focused(), QStringLiteral("CUSTOMERS"));
    EXPECT_THAT(column(0), ElementsAre("Many cities", kNulls));
    EXPECT_EQ("2 of 3 alerts  ·  1 error", text("count"));
    QTest::keyClicks(focused(), QStringLiteral("?"));
    EXPECT_THAT(column(0), IsEmpty());
    EXPECT_EQ("No alert matches the filter and the search.", text("note"));
    EXPECT_FALSE(control<QPushButton>("save").isEnabled() || control<QPushButton>("print").isEnabled() ||
                 control<QPushButton>("goTo").isEnabled());
    press(Qt::Key_Escape);
    EXPECT_EQ(3U, column(0).size());
    EXPECT_TRUE(grid().hasFocus());

    QTimer::singleShot(0, qApp, [] {
        QWidget* dialog = QApplication::activeModalWidget();
        ASSERT_TRUE(dialog);
        auto& table = *dialog->findChild<QComboBox*>(QStringLiteral("table"));
        EXPECT_EQ("(All)", toUtf8(table.itemText(0)));
        EXPECT_FALSE(dialog->findChild<QPushButton*>(QStringLiteral("showAll"))->isEnabled());
        table.setFocus();
        QTest::keyClick(&table, Qt::Key_Down);
        auto& type = *dialog->findChild<QComboBox*>(QStringLiteral("type"));
        QTest::keyClick(&type, Qt::Key_Down);
        EXPECT_TRUE(dialog->findChild<QPushButton*>(QStringLiteral("showAll"))->isEnabled());
        QTest::keyClick(dialog, Qt::Key_Return);
    });
    press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ("Current filter: Table = customers, Type = Standard Metric", text("currentFilter"));
    EXPECT_THAT(column(0), ElementsAre("Many cities", kNulls));
    EXPECT_EQ("customers", m_window->GetFilter().Get(CAlertsFilter::Table));
    // The first Escape would have cleared a search.
    press(Qt::Key_Escape);
    EXPECT_FALSE(m_window->isVisible());

    CAlertsFilter none;
    none.Set(CAlertsFilter::Schema, "dbo");
    open(none);
    EXPECT_EQ("Current filter: Schema = dbo", text("currentFilter"));
    EXPECT_EQ("No alert matches the filter and the search.", text("note"));
    EXPECT_TRUE(control<QPushButton>("filter").isEnabled());
}

TEST_F(AlertsWindow, SavesTheListAsItIsShown) {
    ASSERT_TRUE(writeText(*m_settings, Setting::WorkingPath, m_folder.path().string()));
    open();
    m_path = m_folder.file("alerts.txt");
    grid().SortBy(0, true);
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(m_folder.path().string() + "|alerts", m_proposed);
    EXPECT_EQ("\"Description\",\"Type\",\"Input\",\"Data Source/Catalog/Schema/Table\",\"Alert\"\n"
              "\"Parts\",\"Standard Metric\",\"Column 1\",\"/data/files.parts\",\"Count for field Column 1 is greater "
              "than 0\"\n"
              "\"Null Count for field name is greater than 228\",\"Standard Metric\",\"name\","
              "\"Warehouse.crm.public.customers\",\"Null Count for field name is greater than 228\"\n"
              "\"Many cities\",\"Standard Metric\",\"city\",\"Warehouse.crm.public.customers\","
              "\"Count for field city is greater than 1\"\n",
              contents(m_path));
}

TEST_F(AlertsWindow, PrintsTheListToPaperOrToAFile) {
    open();
    m_path = m_folder.file("alerts.pdf");
    press(Qt::Key_P, Qt::ControlModifier);
    const testing::PdfText printed(toQString(m_path));
    ASSERT_EQ(1, printed.pages().size());
    const std::string since =
        formatDateTime(decompose(toLibraryDate(testing::SampleRepository::runTime(0))), userLocale());
    EXPECT_EQ("Tavix Alerts Report\nCurrent filter: None\nPage 1\n"
              "Description:\nMany cities\nType:\nStandard Metric\nInput:\ncity\n"
              "Data Source/Catalog/Schema/Table:\nWarehouse.crm.public.customers\n"
              "Alert:\nCount for field city is greater than 1\n"
              "State:\nraised (error), 3 runs, since " +
                  since +
                  "\nFigure:\n11,332 (above 1)\n"
                  "Description:\nParts\nType:\nStandard Metric\nInput:\nColumn 1\n"
                  "Data Source/Catalog/Schema/Table:\n/data/files.parts\n"
                  "Alert:\nCount for field Column 1 is greater than 0\nState:\nraised (warning), this run\n"
                  "Figure:\n2 (above 0)\n"
                  "Description:\nNull Count for field name is greater than 228\nType:\nStandard Metric\nInput:\nname\n"
                  "Data Source/Catalog/Schema/Table:\nWarehouse.crm.public.customers\n"
                  "Alert:\nNull Count for field name is greater than 228\nState:\nquiet\nFigure:\n228 (above 228)\n",
              toUtf8(printed.pages().front()));

    m_path = m_folder.file("none/alerts.pdf");
    m_messages.expectWarn("Unable to open or create file " + m_path + "\n\nNo such file or directory", "Print Error");
    press(Qt::Key_P, Qt::ControlModifier);
    QPrinter none;
    const Status failed = printWhole(
        none, [](QPrinter&) { return false; }, std::string(kPrintFailed));
    EXPECT_EQ("Unable to get printer device context", failed.error().text);
}

TEST_F(AlertsWindow, LeadsToTheFigureAndAsksBeforeItOpensAnotherReport) {
    CTabRptAlrts& window = open();
    press(Qt::Key_Return);
    EXPECT_EQ(QDialog::Accepted, window.result());
    ASSERT_TRUE(window.GetPlace());
    EXPECT_EQ("SM", window.GetPlace()->metricKind);
    EXPECT_EQ(m_sample.tables.at("customers"), window.GetPlace()->tableId);
    EXPECT_EQ(m_sample.fields.at("customers/city"), window.GetPlace()->rowId);
    EXPECT_EQ(static_cast<int>(MetricId::Count), window.GetPlace()->metricId);
    EXPECT_EQ(m_sample.salesRuns.back(), window.GetPlace()->run);

    CTabRptAlrts& again = open();
    press(Qt::Key_Down);
    const std::string question =
        "This alert belongs to the report \u201CInventory\u201D.\nDo you want to open that report?";
    m_messages.expectAsk(question, "Alerts", Answer::No, Answer::Yes);
    press(Qt::Key_Return);
    EXPECT_TRUE(again.isVisible());
    EXPECT_FALSE(again.GetPlace());
    m_messages.expectAsk(question, "Alerts", Answer::Yes, Answer::Yes);
    control<QPushButton>("goTo").click();
    ASSERT_TRUE(again.GetPlace());
    EXPECT_EQ(m_sample.inventoryJob, again.GetPlace()->report);
    EXPECT_EQ("Inventory", again.GetPlace()->reportName);
    EXPECT_EQ(m_sample.inventoryRun, again.GetPlace()->run);
}

} // namespace
} // namespace tavix
