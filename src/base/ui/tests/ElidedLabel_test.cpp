#include "base/ui/ElidedLabel.h"

#include <QHelpEvent>
#include <QImage>
#include <QTest>
#include <QToolTip>

#include <gtest/gtest.h>

namespace tavix {
namespace {

TEST(ElidedLabel, ATextWithoutRoomEndsWithAnEllipsisAndItsTipHasAllOfIt) {
    const QString text = QStringLiteral("3,376 records <b>and</b> more");
    ElidedLabel label(text, nullptr);
    EXPECT_EQ(0, label.minimumSizeHint().width());
    label.resize(label.sizeHint());
    label.show();
    const auto tip = [&label] {
        QToolTip::hideText();
        QHelpEvent ask(QEvent::ToolTip, QPoint(2, 2), label.mapToGlobal(QPoint(2, 2)));
        QApplication::sendEvent(&label, &ask);
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    };
    EXPECT_EQ("", tip().toStdString());
    QLabel plain(text);
    plain.setTextFormat(Qt::PlainText);
    plain.resize(label.size());
    EXPECT_EQ(plain.grab().toImage(), label.grab().toImage()) << "as any label";

    label.resize(label.width() / 2, label.height());
    EXPECT_EQ("<qt style=\"white-space:pre-wrap\">3,376 records &lt;b&gt;and&lt;/b&gt; more</qt>", tip().toStdString());
    plain.resize(label.size());
    plain.setText(label.fontMetrics().elidedText(text, Qt::ElideRight, label.width()));
    EXPECT_EQ(plain.grab().toImage(), label.grab().toImage());
    EXPECT_EQ(text, label.text());
    QToolTip::hideText();
}

} // namespace
} // namespace tavix
