#include "FilterPictures.h"

#include "Album.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTimer>

namespace tavix::pictures {

using Veldra::Solenne::Tavix::CommandId;
using Veldra::Solenne::Tavix::TavixHost;

namespace {

void press(const QWidget& dialog, const char* button) {
    if (auto* found = dialog.findChild<QAbstractButton*>(QLatin1String(button)))
        found->click();
}

void chooseEntry(const QWidget& dialog, const char* list, int entry) {
    if (auto* found = dialog.findChild<QComboBox*>(QLatin1String(list)))
        found->setCurrentIndex(entry);
}

// The list of completions while a name is being typed.
void takeCompletions(const QDialog& dialog, Album& album) {
    auto* box = dialog.findChild<QPlainTextEdit*>(QStringLiteral("expression"));
    if (!box)
        return;
    box->setPlainText(QStringLiteral("is"));
    box->moveCursor(QTextCursor::End);
    QKeyEvent ask(QEvent::KeyPress, Qt::Key_Space, Qt::ControlModifier);
    QApplication::sendEvent(box, &ask);
    settle(kPaintMilliseconds);
    if (QWidget* names = QApplication::activePopupWidget()) {
        album.take(*names, QStringLiteral("filter-completion"));
        names->close();
    }
}

// The menu of recent filters. A condition must have been set before.
void takeFilterMenu(QDialog& dialog, Album& album) {
    if (auto* menu = dialog.findChild<QMenu*>(QStringLiteral("filterMenu"))) {
        menu->popup(dialog.geometry().center());
        settle(kPaintMilliseconds);
        album.take(*menu, QStringLiteral("filter-menu"));
        menu->close();
    }
    dialog.reject();
}

// The empty filter dialog, then an expression being typed, then the list of functions.
void takeFilterEditing(QDialog& dialog, Album& album) {
    album.take(dialog, QStringLiteral("filter"));
    press(dialog, "editMode");
    if (auto* box = dialog.findChild<QPlainTextEdit*>(QStringLiteral("expression")))
        box->setPlainText(QStringLiteral("lower(`Value`) = 'abc'\nor `Count` > 1000"));
    settle();
    album.take(dialog, QStringLiteral("filter-edit"));
    takeCompletions(dialog, album);
    QTimer::singleShot(kSettleMilliseconds, &dialog, [&dialog, &album] {
        QWidget* functions = QApplication::activeModalWidget();
        if (!functions || functions == &dialog)
            return;
        album.take(*functions, QStringLiteral("filter-functions"));
        functions->close();
    });
    press(dialog, "functions");
    dialog.reject();
}

// The filter dialog with a condition, in words and in code. Accepts the condition.
void takeFilterConditions(QDialog& dialog, Album& album) {
    constexpr int kCount = 1;
    constexpr int kGreater = 1;
    chooseEntry(dialog, "field", kCount);
    chooseEntry(dialog, "operation", kGreater);
    if (auto* value = dialog.findChild<QLineEdit*>(QStringLiteral("value")))
        value->setText(QStringLiteral("1"));
    press(dialog, "addCondition");
    album.take(dialog, QStringLiteral("filter-conditions"));
    press(dialog, "code");
    album.take(dialog, QStringLiteral("filter-code"));
    dialog.accept();
}

} // namespace

void takeFilter(QWidget& window, TavixHost& host, Album& album) {
    if (!host.ExecuteUpdateUICommand(static_cast<int>(CommandId::Filter)).Enabled)
        return;
    for (const auto take : {takeFilterEditing, takeFilterConditions, takeFilterMenu}) {
        QTimer::singleShot(kSettleMilliseconds, qApp, [&album, take] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
                take(*dialog, album);
        });
        host.ExecuteCommand(static_cast<int>(CommandId::Filter));
    }
    settle(kPaintMilliseconds);
    album.take(window, QStringLiteral("field-filtered"));
    host.ExecuteCommand(static_cast<int>(CommandId::StopFiltering));
}

} // namespace tavix::pictures
