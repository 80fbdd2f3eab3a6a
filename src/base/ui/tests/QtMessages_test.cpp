#include "base/ui/QtMessages.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace tavix {
namespace {

/// Calls `act` with the message box that opens next.
template <typename Act>
void onBox(Act act) {
    QTimer::singleShot(0, qApp, [act] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        act(*box);
    });
}

TEST(QtMessages, WarningShowsTheWholeTextAsItStands) {
    QtMessages messages;
    QString text;
    QString caption;
    onBox([&](QMessageBox& box) {
        text = box.text();
        caption = box.windowTitle();
        EXPECT_EQ(box.icon(), QMessageBox::Warning);
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::ArrowCursor);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    {
        const auto busy = messages.busy();
        EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
        messages.warn("Failed:\n\n<b>caf\xC3\xA9</b>", {});
        EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    }
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(toUtf8(text), "Failed:\n\n<b>caf\xC3\xA9</b>");
    EXPECT_FALSE(caption.isEmpty());
}

TEST(QtMessages, ReturnTakesTheDefaultAndEscapeMeansNo) {
    QtMessages messages;
    const auto answer = [&](Messages::Answer preset, Qt::Key key) {
        onBox([key](QMessageBox& box) { QTest::keyClick(&box, key); });
        return messages.ask("Delete?", "Delete History", preset);
    };
    EXPECT_EQ(answer(Messages::Answer::No, Qt::Key_Return), Messages::Answer::No);
    EXPECT_EQ(answer(Messages::Answer::Yes, Qt::Key_Return), Messages::Answer::Yes);
    EXPECT_EQ(answer(Messages::Answer::Yes, Qt::Key_Escape), Messages::Answer::No);
}

TEST(QtMessages, EndlessTextIsCut) {
    QtMessages messages;
    qsizetype length = 0;
    onBox([&](QMessageBox& box) {
        length = box.text().size();
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    messages.warn(std::string(1'000'000, 'x'), {});
    EXPECT_GT(length, 1000);
    EXPECT_LT(length, 10'000);
}

TEST(Theme, FontKeepsWhatWasNotChosen) {
    QFont own(QStringLiteral("DejaVu Sans"), 12);
    EXPECT_EQ(toQFont({}, own).family(), own.family());
    EXPECT_DOUBLE_EQ(toQFont({}, own).pointSizeF(), 9.0);
    const QFont chosen = toQFont({"DejaVu Sans Mono", 1, 105, true, false}, own);
    EXPECT_EQ(chosen.family(), QStringLiteral("DejaVu Sans Mono"));
    EXPECT_DOUBLE_EQ(chosen.pointSizeF(), 10.5);
    EXPECT_TRUE(chosen.bold());
}

TEST(Theme, TextIsLegibleInBothSchemes) {
    for (const QPalette& palette : {lightPalette(), darkPalette()})
        for (const QColor& text : {palette.color(QPalette::WindowText), quietText(palette)})
            EXPECT_GT(std::abs(text.lightness() - palette.color(QPalette::Window).lightness()), 90);
    EXPECT_TRUE(isDark(darkPalette()));
    EXPECT_FALSE(isDark(lightPalette()));
}

} // namespace
} // namespace tavix
