#include "WindowPictures.h"

#include "Album.h"
#include "FilterPictures.h"
#include "base/ui/QtText.h"
#include "shell/ShellWindow.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QPersistentModelIndex>
#include <QStackedWidget>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QTreeView>

#include <algorithm>
#include <memory>
#include <vector>

namespace tavix::pictures {

using shell::ShellWindow;
using Veldra::Solenne::Tavix::CommandId;
using Veldra::Solenne::Tavix::TavixHost;

namespace {

// Opens a modal dialog by a command of the viewer and takes a picture of it, or of each of its pages.
void takeDialog(TavixHost& host, CommandId id, Album& album, const QString& name) {
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

// Of the report view that is showing; null when none is.
QTabBar* tabStrip(const ShellWindow& window) {
    const auto* pane = window.findChild<QStackedWidget*>(QStringLiteral("reportPane"));
    return pane ? pane->currentWidget()->findChild<QTabBar*>(QStringLiteral("tabStrip")) : nullptr;
}

// The drill-through window of the visible list, opened by the list's own menu entry.
void takeDrillThrough(ShellWindow& window, Album& album, const QString& name) {
    for (auto* list : window.findChildren<QTableView*>()) {
        const QList<QAction*> actions = list->actions();
        const auto action = std::find_if(actions.begin(), actions.end(), [](const QAction* each) {
            return each->objectName() == QLatin1String("drillThrough");
        });
        if (!list->isVisible() || action == actions.end())
            continue;
        // Tries row after row: a rule without violations opens an empty window.
        bool isTaken = false;
        for (int row = 0; row < list->model()->rowCount() && !isTaken; ++row) {
            list->setCurrentIndex(list->model()->index(row, 0));
            (*action)->trigger();
            settle(kPaintMilliseconds);
            // Deleted here, so that the next search finds the next window.
            const std::unique_ptr<QDialog> rows(window.findChild<QDialog*>(QStringLiteral("drillThru")));
            const auto* print = rows ? rows->findChild<QAbstractButton*>(QStringLiteral("print")) : nullptr;
            isTaken = print && print->isEnabled();
            if (isTaken)
                album.take(*rows, name);
        }
        return;
    }
}

// Every tab of the report view that is showing.
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

// The next field of numbers, whose pictures differ from those of texts; the selection is as before.
void takeNumbers(ShellWindow& window, Album& album, QTreeView& tree) {
    constexpr int kMostFields = 20;
    const QModelIndex before = tree.currentIndex();
    const auto isOfNumbers = [&window] {
        QStringList parts;
        for (const QLabel* detail : window.findChildren<QLabel*>(QStringLiteral("viewDetail"))) {
            if (detail->isVisible())
                parts = detail->text().split(QChar(0xB7));
        }
        return std::any_of(parts.begin(), parts.end(), [](const QString& part) {
            return part.trimmed() == QLatin1String("real") || part.trimmed() == QLatin1String("integer");
        });
    };
    for (int i = 0; i < kMostFields && !isOfNumbers(); ++i) {
        pressDown(tree);
        settle(kPaintMilliseconds);
    }
    auto* strip = tabStrip(window);
    if (strip && isOfNumbers()) {
        for (const int tab : {0, 3, 4}) {
            strip->setCurrentIndex(tab);
            settle(kPaintMilliseconds);
            album.take(window, QStringLiteral("number-%1").arg(fileName(strip->tabText(tab))));
        }
        strip->setCurrentIndex(0);
    }
    tree.setCurrentIndex(before);
    settle(kPaintMilliseconds);
}

QAbstractButton* visibleButton(const ShellWindow& window, const char* name) {
    for (auto* button : window.findChildren<QAbstractButton*>(QLatin1String(name)))
        if (button->isVisible())
            return button;
    return nullptr;
}

// The dialog that the visible button opens.
void takeDialogOf(ShellWindow& window, Album& album, const char* button, const QString& name) {
    QAbstractButton* opener = visibleButton(window, button);
    if (!opener)
        return;
    QTimer::singleShot(kSettleMilliseconds, qApp, [&album, name] {
        if (QWidget* dialog = QApplication::activeModalWidget()) {
            album.take(*dialog, name);
            dialog->close();
        }
    });
    opener->click();
}

// The first field with values that do not fit its type, with its findings; the selection is as before.
void takeMisfits(ShellWindow& window, Album& album, QTreeView& tree) {
    constexpr int kMostFields = 80;
    const QModelIndex before = tree.currentIndex();
    const auto hasMisfits = [&window] {
        const auto labels = window.findChildren<QLabel*>(QStringLiteral("typesText"));
        return std::any_of(labels.begin(), labels.end(), [](const QLabel* label) {
            return label->isVisible() && label->text().contains(QLatin1String(" fit: "));
        });
    };
    std::vector<QPersistentModelIndex> expanded;
    if (before.parent().isValid())
        tree.setCurrentIndex(before.parent());
    for (int i = 0; i < kMostFields && !hasMisfits(); ++i) {
        if (tree.model()->hasChildren(tree.currentIndex()) && !tree.isExpanded(tree.currentIndex())) {
            tree.expand(tree.currentIndex());
            expanded.emplace_back(tree.currentIndex());
        }
        pressDown(tree);
        settle(kPaintMilliseconds);
    }
    if (hasMisfits()) {
        album.take(window, QStringLiteral("types"));
        QAbstractButton* toggle = visibleButton(window, "findingsToggle");
        if (toggle && !visibleButton(window, "findingDismiss"))
            toggle->click();
        settle(kPaintMilliseconds);
        album.take(window, QStringLiteral("findings"));
        takeDialogOf(window, album, "findingDismiss", QStringLiteral("dismiss-finding"));
    }
    for (const QPersistentModelIndex& table : expanded)
        tree.collapse(table);
    tree.setCurrentIndex(before);
    settle(kPaintMilliseconds);
}

/// The first node that is visible below `parent` and has raised alerts.
QModelIndex alertedNode(const QTreeView& tree, const QModelIndex& parent = {}) {
    const QAbstractItemModel& model = *tree.model();
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex at = model.index(row, 0, parent);
        if (at.data(Qt::AccessibleTextRole).toString().contains(QLatin1String("Alerts raised")))
            return at;
        if (const QModelIndex below = tree.isExpanded(at) ? alertedNode(tree, at) : QModelIndex(); below.isValid())
            return below;
    }
    return {};
}

// The dialog of an action on the selected alert.
void takeAlertDialog(const ShellWindow& window, Album& album, const char* action, const QString& name) {
    for (auto* list : window.findChildren<QTableView*>()) {
        auto* found = list->isVisible() ? list->findChild<QAction*>(QLatin1String(action)) : nullptr;
        if (!found)
            continue;
        list->setCurrentIndex(list->model()->index(0, 0));
        // The list looks at its selection when a key is pressed.
        QKeyEvent key(QEvent::ShortcutOverride, Qt::Key_F2, Qt::NoModifier);
        QApplication::sendEvent(list, &key);
        QTimer::singleShot(kSettleMilliseconds, qApp, [&album, name] {
            if (QWidget* dialog = QApplication::activeModalWidget()) {
                album.take(*dialog, name);
                dialog->close();
            }
        });
        found->trigger();
        settle(kPaintMilliseconds);
        return;
    }
}

// A table with raised alerts: its figures, its list, the dialogs of an alert, and the window of all alerts. The
// selection is as before.
void takeAlerts(ShellWindow& window, TavixHost& host, Album& album) {
    constexpr int kAlertsTab = 3;
    auto* tree = window.findChild<QTreeView*>(QStringLiteral("page0"));
    if (!tree)
        return;
    const QPersistentModelIndex before = tree->currentIndex();
    const QModelIndex alerted = alertedNode(*tree);
    if (alerted.isValid()) {
        tree->setCurrentIndex(alerted);
        settle(kPaintMilliseconds);
    }
    auto* strip = tabStrip(window);
    if (alerted.isValid() && strip && strip->count() > kAlertsTab) {
        strip->setCurrentIndex(0);
        settle(kPaintMilliseconds);
        album.take(window, QStringLiteral("alert-marks"));
        strip->setCurrentIndex(kAlertsTab);
        settle(kPaintMilliseconds);
        album.take(window, QStringLiteral("alerts"));
        takeAlertDialog(window, album, "editAlert", QStringLiteral("alert-editor"));
        takeAlertDialog(window, album, "muteAlert", QStringLiteral("mute-alert"));
        strip->setCurrentIndex(0);
    }
    takeDialog(host, CommandId::Alerts, album, QStringLiteral("alerts-window"));
    tree->setCurrentIndex(before);
    settle(kPaintMilliseconds);
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
        const QModelIndex table = tree->currentIndex();
        tree->setCurrentIndex(tree->model()->index(0, 0));
        settle(kPaintMilliseconds);
        album.take(window, QStringLiteral("overview"));
        takeDialogOf(window, album, "suggestRules", QStringLiteral("suggested-rules"));
        tree->setCurrentIndex(table);
        tree->expand(tree->currentIndex());
        for (int i = 0; i < 3; ++i)
            pressDown(*tree);
    }
    settle(kPaintMilliseconds);
    takeTabs(window, album, QStringLiteral("field"));
    if (auto* tree = navigator->findChild<QTreeView*>(QStringLiteral("page0")))
        takeNumbers(window, album, *tree);
    if (auto* tree = navigator->findChild<QTreeView*>(QStringLiteral("page0")))
        takeMisfits(window, album, *tree);
}

} // namespace

bool takePictures(ShellWindow& window, TavixHost& host, const PictureOptions& options) {
    Album album(toQString(options.folder));
    window.resize(options.width, options.height);
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
    takeAlerts(window, host, album);
    if (auto* strip = tabStrip(window)) {
        strip->setCurrentIndex(1);
        settle(kPaintMilliseconds);
        takeFilter(window, host, album);
        strip->setCurrentIndex(0);
    }
    if (!host.ExecuteUpdateUICommand(static_cast<int>(CommandId::ToggleTableInformation)).Checked)
        host.ExecuteCommand(static_cast<int>(CommandId::ToggleTableInformation));
    settle();
    album.take(window, QStringLiteral("table-information"));
    takeDialog(host, CommandId::Options, album, QStringLiteral("options"));
    if (host.ExecuteUpdateUICommand(static_cast<int>(CommandId::DeleteHistory)).Enabled)
        takeDialog(host, CommandId::DeleteHistory, album, QStringLiteral("delete-history"));
    return album.ok();
}

} // namespace tavix::pictures
