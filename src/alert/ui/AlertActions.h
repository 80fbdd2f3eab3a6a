#pragma once

#include "alert/AlertCommands.h"

#include <QObject>

#include <functional>
#include <map>
#include <vector>

class QAction;
class QMenu;
class QWidget;

namespace tavix {

class CViewSite;

/// The actions on alerts that lists offer: making, editing, muting and removing them, their notes and history. All
/// panes hear of a change by RefreshHint::AlertsChanged, the list that offered the action too.
class AlertActions final : public QObject {
    Q_OBJECT
  public:
    /// `target` says what the user points at when an action is used. `list` is the parent of the actions and of the
    /// dialogs; `site` must outlive the object.
    AlertActions(CViewSite& site, QWidget& list, std::function<AlertTarget()> target);

    /// For a list of figures: a submenu "Alerts" with the commands for the figure and for each alert that watches it.
    /// It looks at the target whenever it opens. Insert adds an alert. Add it to the list's actions.
    [[nodiscard]] QAction* MakeMenuAction();
    /// For a list of alerts: an action for each command, with the keys Insert, F2, Delete and Ctrl+M to mute. Adds them
    /// to the list; call Update() when the selection has changed.
    void AddToList(bool canAdd);
    /// Enables and names the actions for the target.
    void Update();
    /// Runs a command, for example when Enter is pressed on an alert. Does nothing where it is disabled.
    void Run(AlertCommand command);
    void Run(AlertCommand command, const AlertTarget& target);
    /// The action of AddToList(), for buttons; null for Add if the list does not offer it.
    [[nodiscard]] QAction* ActionOf(AlertCommand command) const;

  private:
    void FillMenu();
    void AddEntry(QMenu& menu, AlertCommand command, const AlertTarget& target);
    void Show(QAction& action, AlertCommand command, const AlertTarget& target) const;
    void Changed();

    CViewSite& m_site;
    QWidget& m_list;
    std::function<AlertTarget()> m_target;
    QMenu* m_menu = nullptr;
    std::map<AlertCommand, QAction*> m_actions;
};

} // namespace tavix
