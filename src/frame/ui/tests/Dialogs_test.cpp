#include "base/tests/ScriptedMessages.h"
#include "base/ui/Theme.h"
#include "base/ui/tests/NamedControls.h"
#include "frame/ui/CDeleteHistoryDlg.h"
#include "frame/ui/COptionsSheet.h"
#include "frame/ui/CRunListDlg.h"
#include "frame/ui/CRunTable.h"
#include "frame/ui/CSourceLoginDlg.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QFontComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>

#include <gtest/gtest.h>

namespace tavix {
namespace {

template <typename Widget>
Widget* child(const QWidget& window, const char* name) {
    auto* found = window.findChild<Widget*>(QLatin1String(name));
    if (!found)
        throw std::runtime_error(std::string("no child ") + name);
    return found;
}

QPushButton* okButton(const QWidget& window) {
    return window.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
}

void show(QDialog& dialog) {
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
}

void type(QSpinBox* box, const char* digits) {
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, QLatin1String(digits));
}

/// Saves a picture of the window in the folder that TAVIX_SHOTS names, if any.
void shoot(QWidget& window, const char* name) {
    const QString folder = qEnvironmentVariable("TAVIX_SHOTS");
    if (!folder.isEmpty())
        window.grab().save(QStringLiteral("%1/%2.png").arg(folder, QLatin1String(name)));
}

std::vector<RunInfo> threeRuns() {
    return {{3, 46000.0, "First load"},
            {8, 46100.0, "After the repair of the <b>airport</b> codes"},
            {5, 46050.5, "Nightly"}};
}

class OptionsSheetTest : public ::testing::Test {
  protected:
    OptionsModel model() const {
        return {*m_store, {{"Count", true, 0}, {"Unique Count", true, 1}, {"Null Count", false, 2}}};
    }
    std::unique_ptr<SettingsStore> m_store = makeMemorySettings();
    testing::ScriptedMessages m_messages;
};

TEST_F(OptionsSheetTest, ThresholdsInTheWrongOrderKeepTheSheetOpen) {
    COptionsSheet sheet(model(), m_messages);
    show(sheet);
    EXPECT_EQ(sheet.windowTitle(), QStringLiteral("Options"));
    auto* pages = child<QTabWidget>(sheet, "pages");
    ASSERT_EQ(pages->count(), 3);
    auto* second = child<QSpinBox>(sheet, "SecondRDAThreshold");
    type(child<QSpinBox>(sheet, "FirstRDAThreshold"), "30");
    type(second, "20");
    pages->setCurrentIndex(2);
    m_messages.expectWarn("The second RDA warning threshold must be greater than or equal to the first");
    okButton(sheet)->click();
    EXPECT_TRUE(sheet.isVisible());
    EXPECT_EQ(pages->currentIndex(), 0);
    EXPECT_EQ(QApplication::focusWidget(), second);

    QTest::keyClicks(second, QStringLiteral("30"));
    QTest::keyClick(second, Qt::Key_Return);
    EXPECT_EQ(sheet.result(), QDialog::Accepted);
    EXPECT_EQ(sheet.Model().values.secondThreshold, 30);
}

TEST_F(OptionsSheetTest, EveryControlReachesTheValues) {
    COptionsSheet sheet(model(), m_messages);
    show(sheet);
    type(child<QSpinBox>(sheet, "MaxChartVals"), "12");
    type(child<QSpinBox>(sheet, "MaxFreqVals"), "2000000000");
    child<QComboBox>(sheet, "NotesSortOrder")->setCurrentIndex(1);
    auto* colors = child<QComboBox>(sheet, "ColorScheme");
    EXPECT_EQ("Like the desktop", colors->currentText().toStdString());
    colors->setCurrentText(QStringLiteral("Dark"));
    child<QCheckBox>(sheet, "HideWelcomeDialog")->click();
    child<QCheckBox>(sheet, "ownFont")->click();
    child<QFontComboBox>(sheet, "StatFontName")->setEditText(QStringLiteral("Some Font"));
    child<QLineEdit>(sheet, "DefaultLocale")->setText(QStringLiteral(" en_US "));
    child<QCheckBox>(sheet, "OverrideFieldWidths")->click();
    okButton(sheet)->click();
    ASSERT_EQ(sheet.result(), QDialog::Accepted);
    const OptionValues expected = {
        12,   2'000'000'000,    100, 100, 1000, 20, 50, true, true, {"Some Font", 1, 90, false, false}, "en_US",
        true, ColorScheme::Dark};
    EXPECT_EQ(sheet.Model().values, expected);
}

TEST_F(OptionsSheetTest, AProgramThatDoesNotFollowTheChoiceOfColoursDoesNotOfferIt) {
    OptionsModel withoutColors = model();
    withoutColors.values.colorScheme.reset();
    const COptionsSheet sheet(withoutColors, m_messages);
    EXPECT_EQ(nullptr, sheet.findChild<QComboBox*>(QStringLiteral("ColorScheme")));
}

TEST_F(OptionsSheetTest, MetricsAreChosenAndMovedByKeyboard) {
    COptionsSheet sheet(model(), m_messages);
    child<QTabWidget>(sheet, "pages")->setCurrentIndex(1);
    show(sheet);
    auto* list = child<QListWidget>(sheet, "metrics");
    auto* up = child<QPushButton>(sheet, "moveUp");
    EXPECT_FALSE(up->isEnabled());
    list->setFocus();
    list->setCurrentRow(2);
    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_EQ(child<QLabel>(sheet, "shownCount")->text(), QStringLiteral("3 of 3 shown"));
    QTest::keyClick(list, Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(list->currentRow(), 1);
    up->click();
    EXPECT_EQ(list->item(0)->text(), QStringLiteral("Null Count"));
    EXPECT_FALSE(up->isEnabled());
    // As if the first row were dropped after the last one.
    ASSERT_TRUE(list->model()->moveRow({}, 0, {}, 3));
    EXPECT_EQ(sheet.Model().Metrics(),
              (std::vector<MetricDisplay>{{"Count", true, 0}, {"Unique Count", true, 1}, {"Null Count", true, 2}}));
    child<QPushButton>(sheet, "showNone")->click();
    EXPECT_EQ(sheet.Model().ShownCount(), 0);
    EXPECT_EQ(list->item(1)->checkState(), Qt::Unchecked);
}

TEST(DeleteHistoryDlg, AsksBeforeItDeletesAndTellsWhatIsShownAfterwards) {
    testing::ScriptedMessages messages;
    CDeleteHistoryDlg dialog({threeRuns(), 5}, messages);
    show(dialog);
    auto* table = child<CRunTable>(dialog, "runs");
    auto* afterwards = child<QComboBox>(dialog, "afterwards");
    EXPECT_FALSE(okButton(dialog)->isEnabled());
    QTest::keyClick(table, Qt::Key_Home);
    EXPECT_FALSE(okButton(dialog)->isEnabled()) << "the newest run stays";
    QTest::keyClick(table, Qt::Key_End);
    EXPECT_TRUE(okButton(dialog)->isEnabled());
    EXPECT_FALSE(afterwards->isEnabled()) << "the current run stays";
    EXPECT_EQ(dialog.Deletion().runAfter, 5);
    QTest::keyClick(table, Qt::Key_Up);
    EXPECT_TRUE(afterwards->isEnabled());
    EXPECT_EQ(afterwards->count(), 1);

    const std::string summary =
        child<QLabel>(dialog, "summary")->text().toStdString() + "\n\nThis cannot be undone. Delete?";
    EXPECT_EQ(summary.rfind("2 runs from ", 0), 0u) << summary;
    messages.expectAsk(summary, "Delete History", Messages::Answer::No);
    okButton(dialog)->click();
    EXPECT_TRUE(dialog.isVisible());
    messages.expectAsk(summary, "Delete History", Messages::Answer::Yes);
    okButton(dialog)->click();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.Deletion().bound, 5);
    EXPECT_EQ(dialog.Deletion().runAfter, 8);
}

TEST(RunListDlg, SelectsTheCurrentRunAndIsUsedByKeys) {
    CRunListDlg dialog(threeRuns(), 5);
    EXPECT_GE(testing::namedControls(dialog), 3);
    show(dialog);
    auto* table = child<CRunTable>(dialog, "runs");
    EXPECT_EQ(table->headerItem()->text(0), QStringLiteral("Date/time"));
    EXPECT_EQ(table->headerItem()->text(1), QStringLiteral("Description"));
    EXPECT_GE(table->columnWidth(0), 120);
    EXPECT_EQ(dialog.SelectedRun(), 5);
    QTest::keyClick(child<QLineEdit>(dialog, "search"), Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().endsWith(QStringLiteral("\tNightly")));
    QApplication::clipboard()->clear();
    table->setFocus();
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().endsWith(QStringLiteral("\tNightly")));
    QTest::keyClick(table, Qt::Key_Up);
    QTest::keyClick(table, Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.SelectedRun(), 8);
}

TEST(RunListDlg, FindsARunAmongHundredsWhileTheUserTypes) {
    std::vector<RunInfo> runs;
    for (int i = 1; i <= 300; ++i)
        runs.push_back({i + 10, 46000.0 + i, i % 50 == 0 ? "Straße " + std::to_string(i) : "Nightly", 3, 1000 + i});
    QElapsedTimer timer;
    timer.start();
    CRunListDlg dialog(std::move(runs), 310);
    show(dialog);
    EXPECT_LT(timer.elapsed(), 1000);
    auto* search = child<QLineEdit>(dialog, "search");
    const auto count = [&] { return toUtf8(child<QLabel>(dialog, "count")->text()); };
    EXPECT_TRUE(search->hasFocus());
    EXPECT_EQ("300 runs", count());
    EXPECT_EQ(310, dialog.SelectedRun());
    QTest::keyClicks(search, QStringLiteral("STRASSE"));
    EXPECT_EQ("6 of 300 runs", count());
    EXPECT_EQ(310, dialog.SelectedRun()) << "the newest of them";
    QTest::keyClick(search, Qt::Key_Down);
    EXPECT_EQ(260, dialog.SelectedRun());
    QTest::keyClicks(search, QStringLiteral("?"));
    EXPECT_EQ("0 of 300 runs", count());
    EXPECT_EQ(-1, dialog.SelectedRun());
    EXPECT_FALSE(okButton(dialog)->isEnabled());
    search->setText(QStringLiteral("200 (id"));
    EXPECT_EQ("1 of 300 runs", count());
    QTest::keyClick(search, Qt::Key_Return);
    EXPECT_EQ(QDialog::Accepted, dialog.result());
    EXPECT_EQ(210, dialog.SelectedRun());
}

TEST(SourceLoginDlg, AsksForAPasswordThatIsNotShown) {
    CSourceLoginDlg dialog({"shop <b>1</b>", "ada", "shop: the server wants a password\n" + std::string(5000, 'x')});
    show(dialog);
    EXPECT_EQ("User and password for \u201Cshop <b>1</b>\u201D", toUtf8(child<QLabel>(dialog, "source")->text()));
    auto* refusal = child<QLabel>(dialog, "refusal");
    EXPECT_TRUE(toUtf8(refusal->text()).starts_with("shop: the server wants a password xxx"));
    EXPECT_LT(refusal->text().size(), 1000);
    EXPECT_EQ(Qt::PlainText, refusal->textFormat());
    auto* password = child<QLineEdit>(dialog, "password");
    EXPECT_TRUE(password->hasFocus());
    EXPECT_EQ(QLineEdit::Password, password->echoMode());
    EXPECT_EQ("User:", testing::accessibleName(child<QLineEdit>(dialog, "user")));
    EXPECT_EQ("Password:", testing::accessibleName(password));
    EXPECT_EQ(4, testing::namedControls(dialog));
    QTest::keyClicks(password, QStringLiteral("p;w{}"));
    QTest::keyClick(&dialog, Qt::Key_Return);
    EXPECT_EQ(QDialog::Accepted, dialog.result());
    EXPECT_EQ("ada", dialog.GetCredentials().user);
    EXPECT_EQ("p;w{}", dialog.GetCredentials().password);
}

TEST(Dialogs, DrawInBothSchemes) {
    const auto store = makeMemorySettings();
    ASSERT_TRUE(writeFirstStartDefaults(*store));
    testing::ScriptedMessages messages;
    const QPalette before = QApplication::palette();
    for (const auto& [palette, scheme] : {std::pair(lightPalette(), "light"), std::pair(darkPalette(), "dark")}) {
        QApplication::setPalette(palette);
        COptionsSheet sheet({*store, standardMetricDisplay(*store)}, messages);
        show(sheet);
        for (int page = 0; page < 3; ++page) {
            child<QTabWidget>(sheet, "pages")->setCurrentIndex(page);
            shoot(sheet, qPrintable(QStringLiteral("options%1-%2").arg(page + 1).arg(QLatin1String(scheme))));
        }
        // Fits the smallest common desktop at 200 % scale.
        EXPECT_LE(sheet.minimumSizeHint().height(), 500);
        EXPECT_LE(sheet.sizeHint().width(), 900);
        CDeleteHistoryDlg deletion({threeRuns(), 5}, messages);
        show(deletion);
        child<CRunTable>(deletion, "runs")->setCurrentItem(child<CRunTable>(deletion, "runs")->topLevelItem(1));
        shoot(deletion, qPrintable(QStringLiteral("delete-%1").arg(QLatin1String(scheme))));
        CRunListDlg runs(threeRuns(), 5);
        show(runs);
        shoot(runs, qPrintable(QStringLiteral("runs-%1").arg(QLatin1String(scheme))));
        CSourceLoginDlg login({"shop", "ada",
                               "shop: no connection with DSN=shop (FATAL:  password authentication failed for user "
                               "\"ada\")"});
        show(login);
        shoot(login, qPrintable(QStringLiteral("login-%1").arg(QLatin1String(scheme))));
    }
    QApplication::setPalette(before);
}

} // namespace
} // namespace tavix
