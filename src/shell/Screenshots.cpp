#include "shell/Screenshots.h"

#include "base/FileWriter.h"
#include "base/ui/QtText.h"
#include "shell/ShellOptions.h"
#include "shell/ShellWindow.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QBuffer>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QStackedWidget>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QTreeView>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace tavix::shell {

namespace {

// Longer than what the viewer puts off until a report is on the screen.
constexpr int kSettleMilliseconds = 500;
// Enough for what was clicked to be laid out and painted.
constexpr int kPaintMilliseconds = 60;

void settle(int milliseconds = kSettleMilliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

class Album {
  public:
    explicit Album(const QString& folder) : m_folder(folder) {
        if (!m_folder.mkpath(QStringLiteral("."))) {
            std::fprintf(stderr, "tavix-shell: cannot make the folder %s\n", qUtf8Printable(folder));
            m_ok = false;
        }
    }

    void take(QWidget& widget, const QString& name) {
        const QString path = m_folder.filePath(name + QStringLiteral(".png"));
        if (!m_ok)
            return;
        if (const Status saved = save(widget, path); saved) {
            std::printf("%s\n", qUtf8Printable(path));
        } else {
            std::fprintf(stderr, "tavix-shell: cannot write %s: %s\n", qUtf8Printable(path),
                         saved.error().text.c_str());
            m_ok = false;
        }
    }

    [[nodiscard]] bool ok() const { return m_ok; }

  private:
    static Status save(QWidget& widget, const QString& path) {
        QByteArray picture;
        QBuffer device(&picture);
        device.open(QIODevice::WriteOnly);
        widget.grab().save(&device, "PNG");
        const auto file = FileWriter::open(QFile::encodeName(path).toStdString());
        if (!file)
            return file.error();
        const Status written = (*file)->write({picture.constData(), static_cast<std::size_t>(picture.size())});
        return written ? (*file)->commit() : written;
    }

    QDir m_folder;
    bool m_ok = true;
};

// Opens a modal dialog through a command of the viewer and photographs it, page by page where it has pages.
void takeDialog(Veldra::Solenne::Tavix::TavixHost& host, CommandId id, Album& album, const QString& name) {
    QTimer::singleShot(kSettleMilliseconds, qApp, [&album, name] {
        QWidget* dialog = QApplication::activeModalWidget();
        if (!dialog)
            return;
        auto* pages = dialog->findChild<QTabWidget*>();
        if (!pages)
            album.take(*dialog, name);
        for (int page = 0; pages && page < pages->count(); ++page) {
            pages->setCurrentIndex(page);
            album.take(*dialog, QStringLiteral("%1-%2").arg(name).arg(page + 1));
        }
        dialog->close();
    });
    host.ExecuteCommand(static_cast<int>(id));
}

void pressDown(QWidget& widget) {
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
    QApplication::sendEvent(&widget, &press);
}

QString fileName(const QString& caption) {
    QString name;
    for (const QChar c : caption.toLower()) {
        if (c.isLetterOrNumber())
            name += c;
        else if (!name.endsWith(u'-'))
            name += u'-';
    }
    return name;
}

/// Of the view that is showing; null when none is.
QTabBar* tabStrip(const ShellWindow& window) {
    const auto* pane = window.findChild<QStackedWidget*>(QStringLiteral("reportPane"));
    return pane ? pane->currentWidget()->findChild<QTabBar*>(QStringLiteral("tabStrip")) : nullptr;
}

// The source rows behind a row of the list that is showing, through the list's own menu entry.
void takeDrillThrough(ShellWindow& window, Album& album, const QString& name) {
    for (auto* list : window.findChildren<QTableView*>()) {
        const QList<QAction*> actions = list->actions();
        const auto action = std::find_if(actions.begin(), actions.end(), [](const QAction* each) {
            return each->objectName() == QLatin1String("drillThrough");
        });
        if (!list->isVisible() || action == actions.end())
            continue;
        // A rule that no row violates is no picture.
        bool isTaken = false;
        for (int row = 0; row < list->model()->rowCount() && !isTaken; ++row) {
            list->setCurrentIndex(list->model()->index(row, 0));
            (*action)->trigger();
            settle(kPaintMilliseconds);
            // Gone at once, so that the next one found is another.
            const std::unique_ptr<QDialog> rows(window.findChild<QDialog*>(QStringLiteral("drillThru")));
            const auto* print = rows ? rows->findChild<QAbstractButton*>(QStringLiteral("print")) : nullptr;
            isTaken = print && print->isEnabled();
            if (isTaken)
                album.take(*rows, name);
        }
        return;
    }
}

// Every tab of the view that is showing.
void takeTabs(ShellWindow& window, Album& album, const QString& name) {
    auto* strip = tabStrip(window);
    for (int tab = 0; strip && tab < strip->count(); ++tab) {
        strip->setCurrentIndex(tab);
        settle(kPaintMilliseconds);
        const QString caption = fileName(strip->tabText(tab));
        album.take(window, QStringLiteral("%1-%2-%3").arg(name).arg(tab + 1).arg(caption));
        takeDrillThrough(window, album, QStringLiteral("drill-through-%1").arg(caption));
    }
    if (strip)
        strip->setCurrentIndex(0);
}

void press(const QWidget& dialog, const char* button) {
    if (auto* found = dialog.findChild<QAbstractButton*>(QLatin1String(button)))
        found->click();
}

void chooseEntry(const QWidget& dialog, const char* list, int entry) {
    if (auto* found = dialog.findChild<QComboBox*>(QLatin1String(list)))
        found->setCurrentIndex(entry);
}

// The names that are offered while one is written.
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

// The menu of filters that are at hand; a condition was set before.
void takeFilterMenu(QDialog& dialog, Album& album) {
    if (auto* menu = dialog.findChild<QMenu*>(QStringLiteral("filterMenu"))) {
        menu->popup(dialog.geometry().center());
        settle(kPaintMilliseconds);
        album.take(*menu, QStringLiteral("filter-menu"));
        menu->close();
    }
    dialog.reject();
}

// The filter dialog empty and while an expression is written, with the functions that are offered.
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

// The same with a condition, in words and in code; it is left with the condition.
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

void takeFilter(ShellWindow& window, Veldra::Solenne::Tavix::TavixHost& host, Album& album) {
    auto* strip = tabStrip(window);
    if (!strip)
        return;
    strip->setCurrentIndex(1);
    settle(kPaintMilliseconds);
    if (host.ExecuteUpdateUICommand(static_cast<int>(CommandId::Filter)).Enabled) {
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
    strip->setCurrentIndex(0);
}

void takeNavigatorPages(ShellWindow& window, Album& album) {
    auto* navigator = window.findChild<QWidget*>(QStringLiteral("navigator"));
    auto* tabs = navigator ? navigator->findChild<QTabBar*>() : nullptr;
    if (!tabs)
        return;
    takeTabs(window, album, QStringLiteral("table"));
    for (const int page : {2, 1}) {
        tabs->setCurrentIndex(page);
        if (auto* tree = navigator->findChild<QTreeView*>(QStringLiteral("page%1").arg(page))) {
            tree->setFocus();
            tree->setCurrentIndex(tree->model()->index(0, 0));
            tree->expand(tree->currentIndex());
        }
        settle(kPaintMilliseconds);
        album.take(window, page == 1 ? QStringLiteral("collection") : QStringLiteral("analyses"));
    }
    tabs->setCurrentIndex(0);
    if (auto* tree = navigator->findChild<QTreeView*>(QStringLiteral("page0"))) {
        tree->setFocus();
        tree->expand(tree->currentIndex());
        for (int i = 0; i < 3; ++i)
            pressDown(*tree);
    }
    settle(kPaintMilliseconds);
    takeTabs(window, album, QStringLiteral("field"));
}

} // namespace

bool takeScreenshots(ShellWindow& window, Veldra::Solenne::Tavix::TavixHost& host, const ShellOptions& options) {
    Album album(toQString(options.screenshots));
    window.resize(1280, 800);
    window.show();
    settle();
    album.take(window, QStringLiteral("welcome"));
    if (options.repository.empty() || !album.ok())
        return album.ok();
    if (!window.openRepository(toQString(options.repository)))
        return false;
    if (!options.job.empty() && !window.openReportNamed(options.job))
        return false;
    window.showReports();
    settle();
    album.take(window, QStringLiteral("reports"));
    if (!window.showReport())
        return album.ok();
    settle();
    takeNavigatorPages(window, album);
    takeFilter(window, host, album);
    if (!host.ExecuteUpdateUICommand(static_cast<int>(CommandId::ToggleTableInformation)).Checked)
        host.ExecuteCommand(static_cast<int>(CommandId::ToggleTableInformation));
    settle();
    album.take(window, QStringLiteral("table-information"));
    takeDialog(host, CommandId::Options, album, QStringLiteral("options"));
    if (host.ExecuteUpdateUICommand(static_cast<int>(CommandId::DeleteHistory)).Enabled)
        takeDialog(host, CommandId::DeleteHistory, album, QStringLiteral("delete-history"));
    return album.ok();
}

} // namespace tavix::shell
