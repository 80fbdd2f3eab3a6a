#pragma once

#include "alert/AlertCommands.h"

#include <QObject>

#include <functional>
#include <map>

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
    /// `target` says what the user points at. It is asked when the list's context menu opens and when a key of an
    /// action is pressed. `list` is the parent of this object, of the actions and of the dialogs; `site` must outlive
    /// it.
    AlertActions(CViewSite& site, QWidget& list, std::function<AlertTarget()> target);
    ~AlertActions() override;

    /// For a list of figures: adds "Add Alert..." (Insert) and a submenu "Alerts" with the commands for each alert that
    /// watches the figure to the list's actions.
    void AddMenuToList();
    /// For a list of alerts: adds an action for each command, with the keys Insert, F2, Delete and Ctrl+M to mute.
    void AddToList(bool canAdd);
    /// Enables and names the actions for the target. Needed only where they are seen outside of the context menu, such
    /// as on buttons.
    void Update();
    /// Runs a command, for example when Enter is pressed on an alert. Does nothing where it is disabled.
    void Run(AlertCommand command);
    void Run(AlertCommand command, const AlertTarget& target);
    /// The list's action for the command; null if it has none.
    [[nodiscard]] QAction* ActionOf(AlertCommand command) const;

  Q_SIGNALS:
    /// An alert was changed by these actions, and the panes have heard of it: for lists that are not panes.
    void AlertsChanged();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QAction* MakeAction(AlertCommand command);
    void FillMenu(const AlertTarget& target);
    void AddEntries(QMenu& menu, const AlertTarget& target);
    void ShowIn(QAction& action, AlertCommand command, const AlertTarget& target) const;

    void EditAlert(AlertCommand command, const AlertTarget& target);
    void Mute(const AlertTarget& target);
    void ShowNotes(const AlertTarget& target);
    void CopyToFields(const AlertTarget& target);
    /// To be called last: the list may be gone afterwards.
    void Changed();

    CViewSite& m_site;
    QWidget& m_list;
    std::function<AlertTarget()> m_target;
    QMenu* m_menu = nullptr;
    std::map<AlertCommand, QAction*> m_actions;
};

} // namespace tavix
