#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "base/ui/tests/NamedControls.h"
#include "drill/tests/FakeCursors.h"
#include "drill/ui/CDrillThru.h"
#include "drill/ui/ReadingProgress.h"
#include "grid/ui/CUGCtrl.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPrinter>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using testing::FakeSource;
using testing::openDrill;
using testing::openProfile;
using testing::sampleSource;

constexpr int kPatienceMilliseconds = 400;

class DrillThru : public ::testing::Test {
  protected:
    CDrillThru* open(DrillCursor cursor, DrillOrigin origin = DrillOrigin::Frequency,
                     std::optional<std::int64_t> inRun = {}, DrillSourceMode mode = DrillSourceMode::Rows) {
        DrillRequest request;
        request.origin = origin;
        request.cursor = std::move(cursor);
        request.mode = mode;
        request.context = "city";
        request.subject = "city: <b>Berlin</b>";
        request.inRun = inRun;
        ReadingProgress progress(ReadingKind::Source, &m_frame, kPatienceMilliseconds);
        return CDrillThru::Show(std::move(request), progress, *m_settings, m_messages, &m_frame, m_frame, m_dialogs);
    }
    static CUGCtrl& grid(const CDrillThru& window) { return *window.findChild<CUGCtrl*>(); }
    /// The column of the sort arrow, -1 for none, and the order.
    static std::pair<int, Qt::SortOrder> sorting(const CDrillThru& window) {
        const QHeaderView& header = *grid(window).horizontalHeader();
        return {header.sortIndicatorSection(), header.sortIndicatorOrder()};
    }
    static QAbstractButton& button(const CDrillThru& window, const char* name) {
        return *window.findChild<QAbstractButton*>(QLatin1String(name));
    }
    static std::string status(const CDrillThru& window) {
        return toUtf8(window.findChild<QLabel*>(QStringLiteral("status"))->text());
    }
    static std::vector<std::string> column(const CDrillThru& window, int at) {
        std::vector<std::string> texts;
        for (int row = 0; row < grid(window).model()->rowCount(); ++row)
            texts.push_back(toUtf8(grid(window).model()->index(row, at).data().toString()));
        return texts;
    }

    std::unique_ptr<SettingsStore> m_settings = makeMemorySettings();
    testing::ScriptedMessages m_messages;
    testing::TempFolder m_folder;
    DrillDialogs m_dialogs;
    QWidget m_frame;
};

TEST_F(DrillThru, ShowsRowsSortedAndGivesTheCursorBack) {
    m_frame.setGeometry(100, 30, 600, 540); // the screen has 800 by 600
    m_frame.show();
    FakeSource source = sampleSource({"b", "a"});
    source.rows[0][0] = KvbString("10");
    source.rows[1][0] = KvbString("9");
    const CDrillThru& window = *open(openDrill(source), DrillOrigin::Outliers);
    EXPECT_EQ(source.released, 1);
    EXPECT_EQ(toUtf8(window.windowTitle()), "Outliers Drill Through");
    EXPECT_FALSE(window.isModal());
    EXPECT_LE((window.geometry().center() - m_frame.geometry().center()).manhattanLength(), 10);
    EXPECT_THAT(column(window, 0), ElementsAre("9", "10"));
    EXPECT_EQ(sorting(window), std::pair(0, Qt::AscendingOrder));
    EXPECT_EQ(toUtf8(window.findChild<QLabel*>(QStringLiteral("subject"))->text()), "city: <b>Berlin</b>");
    EXPECT_EQ(status(window), "2 rows");
    EXPECT_TRUE(button(window, "export").isEnabled() && button(window, "print").isEnabled());
    EXPECT_EQ(grid(window).GetSelectedRows(), std::vector<std::int64_t>{0});
    EXPECT_TRUE(grid(window).verticalHeader()->isHidden());
    EXPECT_GT(testing::namedControls(const_cast<CDrillThru&>(window)), 5);
}

TEST_F(DrillThru, WithoutRowsThereIsNothingToExportOrPrint) {
    FakeSource source = sampleSource({});
    const CDrillThru& window = *open(openProfile(source), DrillOrigin::Frequency, 3);
    EXPECT_FALSE(button(window, "export").isEnabled() || button(window, "print").isEnabled());
    EXPECT_TRUE(button(window, "close").isEnabled());
    EXPECT_EQ(sorting(window).first, -1);
    EXPECT_EQ(grid(window).model()->columnCount(), 3);
    EXPECT_EQ(status(window), "3 in the run, 0 now: the source changed since");
    EXPECT_EQ(source.released, 1);
}

TEST_F(DrillThru, SeveralAreOpenAtOnceEachWithItsRows) {
    ASSERT_TRUE(m_settings->write("TAVIX", "MaxDrillThruRows", "2").ok());
    FakeSource first = sampleSource({"a", "b", "c"});
    FakeSource second{{"Row", "Rule Id", "Position", "id"}, {}, {{"9", "1", "0", "x"}}};
    QPointer<CDrillThru> one = open(openDrill(first), DrillOrigin::Frequency, 3);
    QPointer<CDrillThru> two = open(openProfile(second), DrillOrigin::BusinessRule, {}, DrillSourceMode::RuleLog);
    EXPECT_EQ(toUtf8(two->windowTitle()), "Business Rule Violation Drill Through");
    EXPECT_THAT(column(*one, 2), ElementsAre("a", "b"));
    EXPECT_EQ(status(*one), "The first 2 rows of 3: the limit in the options is reached");
    EXPECT_THAT(column(*two, 0), ElementsAre("x"));
    QTest::keyClick(two, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(two);
    ASSERT_TRUE(one);
    button(*one, "close").click();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(one);
}

TEST_F(DrillThru, AFailureIsSaidAndWhatWasReadStays) {
    FakeSource source = sampleSource({"a", "b", "c"});
    source.failsAt = 2;
    m_messages.expectWarn("Drill through information is unavailable for this item.", "Error");
    const CDrillThru& window = *open(openDrill(source));
    EXPECT_EQ(source.released, 1);
    EXPECT_THAT(column(window, 2), ElementsAre("a", "b"));
    EXPECT_EQ(status(window), "Incomplete: the first 2 rows. The source is gone.");
}

TEST_F(DrillThru, HeadingsSortAndToggle) {
    FakeSource source = sampleSource({"b", "a", "C"});
    const CDrillThru& window = *open(openDrill(source));
    QHeaderView& header = *grid(window).horizontalHeader();
    const auto click = [&header](int section) {
        const QPoint at(header.sectionViewportPosition(section) + 20, header.height() / 2);
        QTest::mouseClick(header.viewport(), Qt::LeftButton, Qt::NoModifier, at);
    };
    click(2);
    EXPECT_THAT(column(window, 2), ElementsAre("a", "b", "C"));
    click(2);
    EXPECT_THAT(column(window, 2), ElementsAre("C", "b", "a"));
    EXPECT_EQ(sorting(window), std::pair(2, Qt::DescendingOrder));
    click(0);
    EXPECT_THAT(column(window, 0), ElementsAre("0", "1", "2"));
}

TEST_F(DrillThru, TypingFindsCellsOfAllColumns) {
    FakeSource source = sampleSource({"alpha", "beta", "Alphabet"});
    CDrillThru& window = *open(openDrill(source));
    QApplication::setActiveWindow(&window);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_F, Qt::ControlModifier);
    auto& find = *window.findChild<QLineEdit*>(QStringLiteral("find"));
    ASSERT_TRUE(find.hasFocus());
    const auto current = [&window] {
        const QModelIndex at = grid(window).currentIndex();
        return std::pair(at.row(), at.column());
    };
    QTest::keyClicks(&find, QStringLiteral("alpha"));
    EXPECT_EQ(current(), std::pair(0, 2));
    QTest::keyClick(&find, Qt::Key_Return);
    EXPECT_EQ(current(), std::pair(2, 2));
    EXPECT_EQ(grid(window).GetSelectedRows(), std::vector<std::int64_t>{2});
    QTest::keyClick(&find, Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(current(), std::pair(0, 2));
    const auto& notFound = *window.findChild<QLabel*>(QStringLiteral("notFound"));
    EXPECT_FALSE(notFound.isVisible());
    QTest::keyClicks(&find, QStringLiteral("q"));
    EXPECT_TRUE(notFound.isVisible());
    EXPECT_EQ(current(), std::pair(0, 2));
    QTest::keyClick(&find, Qt::Key_Escape);
    EXPECT_TRUE(window.isVisible() && find.text().isEmpty() && grid(window).hasFocus());
    EXPECT_FALSE(notFound.isVisible());
}

TEST_F(DrillThru, ShowsOnlyTheRowsThatMatchTheSearch) {
    FakeSource source = sampleSource({"alpha", "beta", "Alphabet"});
    CDrillThru& window = *open(openDrill(source), DrillOrigin::Frequency, 5);
    QApplication::setActiveWindow(&window);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    auto& find = *window.findChild<QLineEdit*>(QStringLiteral("find"));
    auto& only = *window.findChild<QCheckBox*>(QStringLiteral("onlyMatching"));
    auto& columns = *window.findChild<QComboBox*>(QStringLiteral("searchedColumn"));
    const auto& notFound = *window.findChild<QLabel*>(QStringLiteral("notFound"));
    EXPECT_EQ("Find in all columns (Ctrl+F)", toUtf8(find.placeholderText()));
    QTest::keyClick(&window, Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(&find, QStringLiteral("~^.l"));
    EXPECT_EQ("Not found", toUtf8(notFound.text())) << "as a text";
    QTest::keyClick(&window, Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(only.isChecked());
    EXPECT_THAT(column(window, 2), ElementsAre("alpha", "Alphabet"));
    EXPECT_EQ("2 of 3 rows match. 5 in the run, 3 now: the source changed since", status(window));
    EXPECT_FALSE(notFound.isVisible());
    EXPECT_TRUE(find.hasFocus());
    if (const QString folder = qEnvironmentVariable("TAVIX_SHOTS"); !folder.isEmpty())
        window.grab().save(folder + QStringLiteral("/drill-search.png"));
    // Another column, after a pause.
    columns.setCurrentIndex(3);
    find.setText(QStringLiteral("beta"));
    QTRY_COMPARE(grid(window).model()->rowCount(), 1);
    columns.setCurrentIndex(1);
    QTRY_COMPARE(grid(window).model()->rowCount(), 0);
    EXPECT_FALSE(button(window, "export").isEnabled());
    // A text that is not understood changes nothing.
    find.setText(QStringLiteral(">"));
    QTest::keyClick(&find, Qt::Key_Return);
    EXPECT_EQ("Enter a value after >", toUtf8(notFound.text()));
    EXPECT_EQ(0, grid(window).model()->rowCount());
    QTest::keyClick(&find, Qt::Key_Escape);
    EXPECT_EQ(3, grid(window).model()->rowCount());
    EXPECT_EQ("5 in the run, 3 now: the source changed since", status(window));
    EXPECT_TRUE(button(window, "export").isEnabled() && grid(window).hasFocus());
}

TEST_F(DrillThru, ExportsCopiesAndPrints) {
    std::string path;
    std::function<void(QPrinter&)> setUp;
    m_dialogs = {[&path](QWidget&, const QString&, const QString& name) {
                     EXPECT_EQ(toUtf8(name), "city");
                     return toQString(path);
                 },
                 [&setUp](QWidget&, QPrinter& printer) {
                     setUp(printer);
                     return true;
                 }};
    FakeSource source = sampleSource({"a, b"});
    CDrillThru& window = *open(openDrill(source));
    button(window, "export").click();
    path = m_folder.file("rows.csv");
    button(window, "export").click();
    QFile file(toQString(path));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().toStdString(), "\"id\",\"price\",\"name\"\n0,0.5,\"a, b\"\n");

    grid(window).selectAll();
    QTest::keyClick(&grid(window), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(toUtf8(QApplication::clipboard()->text()), "id\tprice\tname\r\n0\t0.5\ta, b\r\n");

    const QString pdf = toQString(m_folder.file("rows.pdf"));
    QString job;
    setUp = [&](QPrinter& printer) {
        job = printer.docName();
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(pdf);
    };
    button(window, "print").click();
    EXPECT_EQ(toUtf8(job), "Profile - Drill Through");
    QFile printed(pdf);
    ASSERT_TRUE(printed.open(QIODevice::ReadOnly));
    EXPECT_TRUE(printed.readAll().startsWith("%PDF"));
    EXPECT_TRUE(QFile::setPermissions(pdf, QFile::ReadOwner | QFile::WriteOwner));
    button(window, "print").click();
    EXPECT_EQ(printed.permissions() & QFile::ReadOther, QFile::Permissions());

    const QString nowhere = toQString(m_folder.file("none/rows.pdf"));
    setUp = [&nowhere](QPrinter& printer) { printer.setOutputFileName(nowhere); };
    m_messages.expectWarn("Unable to open or create file " + toUtf8(nowhere) + "\n\nNo such file or directory",
                          "Print");
    button(window, "print").click();
    const QString full = toQString(m_folder.file("full.pdf"));
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/full"), full));
    setUp = [&full](QPrinter& printer) { printer.setOutputFileName(full); };
    m_messages.expectWarn("Unable to open or create file " + toUtf8(full) + "\n\nNo space left on device", "Print");
    button(window, "print").click();
}

TEST_F(DrillThru, ItsDialogsAreKnownToTheShellAndItIsAWindowOfItsOwner) {
    FakeSource source = sampleSource({"a"});
    CDrillThru& window = *open(openDrill(source));
    for (const char* name : {"export", "print"}) {
        bool wasOpen = false;
        QTimer::singleShot(0, &window, [&wasOpen] {
            wasOpen = NestedLoops::instance().isDialogOpen();
            QApplication::activeModalWidget()->close();
        });
        button(window, name).click();
        EXPECT_TRUE(wasOpen) << name;
        EXPECT_FALSE(NestedLoops::instance().isDialogOpen());
    }
    EXPECT_EQ(Qt::Dialog, window.windowType()) << "other windows do not go with their owner under X11";
    EXPECT_EQ(m_frame.windowHandle(), window.windowHandle()->transientParent());
    EXPECT_FALSE(window.isModal());
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
}

TEST_F(DrillThru, ALongReadingCanBeCancelled) {
    ReadingProgress progress(ReadingKind::Source, &m_frame, kPatienceMilliseconds);
    EXPECT_TRUE(progress.progress("Reading", 1, 100));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "shown before it is worth while";
    // Cancels as soon as the dialog is there.
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [] {
        if (QWidget* dialog = QApplication::activeModalWidget()) {
            EXPECT_TRUE(NestedLoops::instance().isDialogOpen());
            QTest::keyClick(dialog, Qt::Key_Escape);
        }
    });
    poll.start(5);
    QElapsedTimer since;
    since.start();
    while (progress.progress("Reading", 50, 100) && since.elapsed() < 20'000) {
    }
    EXPECT_TRUE(progress.WasCancelled());
    EXPECT_FALSE(progress.Found(7));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

} // namespace
} // namespace tavix
