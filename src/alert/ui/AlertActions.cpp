#include "alert/ui/AlertActions.h"

#include "access/PrViewer.h"
#include "alert/AlertEditor.h"
#include "alert/ui/CAlertDlg.h"
#include "alert/ui/CAlertHistoryDlg.h"
#include "alert/ui/CCopyAlertDlg.h"
#include "alert/ui/CMuteAlertDlg.h"
#include "base/GenException.h"
#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "doc/CTavixDoc.h"
#include "doc/CViewSite.h"
#include "report/ReportTables.h"

#include <QAbstractScrollArea>
#include <QAction>
#include <QEvent>
#include <QMenu>
#include <QPointer>

#include <algorithm>
#include <array>
#include <utility>

namespace tavix {

namespace {

constexpr std::array kAll{AlertCommand::Add,   AlertCommand::Edit,         AlertCommand::Mute,  AlertCommand::Unmute,
                          AlertCommand::Notes, AlertCommand::CopyToFields, AlertCommand::Remove};
constexpr int kEntryCharacters = 70;

struct Trait {
    QKeySequence key;
    QString name;
};

Trait traitOf(AlertCommand command) {
    switch (command) {
    case AlertCommand::Add:
        return {QKeySequence(Qt::Key_Insert), QStringLiteral("addAlert")};
    case AlertCommand::Edit:
        return {QKeySequence(Qt::Key_F2), QStringLiteral("editAlert")};
    case AlertCommand::Mute:
        return {QKeySequence(Qt::CTRL | Qt::Key_M), QStringLiteral("muteAlert")};
    case AlertCommand::Unmute:
        return {{}, QStringLiteral("unmuteAlert")};
    case AlertCommand::Notes:
        return {{}, QStringLiteral("alertNotes")};
    case AlertCommand::CopyToFields:
        return {{}, QStringLiteral("copyAlert")};
    case AlertCommand::Remove:
        break;
    }
    return {QKeySequence(Qt::Key_Delete), QStringLiteral("removeAlert")};
}

/// A menu takes "&" for the mark of a shortcut key.
QString entryText(const std::string& text) {
    QString line = toQString(text).simplified();
    if (line.size() > kEntryCharacters)
        line = line.left(kEntryCharacters - 1) + QChar(0x2026);
    return line.replace(u'&', QStringLiteral("&&"));
}

/// The start of the run that is shown; throws GenException.
LibraryDate startOfRun(PrViewer& viewer) {
    for (const RunInfo& run : readRuns(viewer))
        if (run.id == viewer.getCurrentJob())
            return run.date;
    return 0;
}

} // namespace

AlertActions::AlertActions(CViewSite& site, QWidget& list, std::function<AlertTarget()> target)
    : QObject(&list), m_site(site), m_list(list), m_target(std::move(target)) {
    list.installEventFilter(this);
    if (const auto* area = qobject_cast<QAbstractScrollArea*>(&list))
        area->viewport()->installEventFilter(this);
}

AlertActions::~AlertActions() = default;

QAction* AlertActions::MakeAction(AlertCommand command) {
    const Trait trait = traitOf(command);
    auto* action = new QAction(&m_list);
    action->setObjectName(trait.name);
    action->setShortcut(trait.key);
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, &QAction::triggered, this, [this, command] { Run(command); });
    m_actions[command] = action;
    m_list.addAction(action);
    return action;
}

void AlertActions::AddMenuToList() {
    MakeAction(AlertCommand::Add);
    m_menu = new QMenu(tr("Aler&ts"), &m_list);
    m_menu->setObjectName(QStringLiteral("alertMenu"));
    m_menu->setToolTipsVisible(true);
    m_list.addAction(m_menu->menuAction());
    Update();
}

void AlertActions::AddToList(bool canAdd) {
    for (const AlertCommand command : kAll)
        if (command != AlertCommand::Add || canAdd)
            MakeAction(command);
    Update();
}

void AlertActions::ShowIn(QAction& action, AlertCommand command, const AlertTarget& target) const {
    const AlertCommandInfo info = alertCommand(command, target, m_site.GetTavixDoc().GetJobId());
    action.setText(toQString(info.text));
    action.setToolTip(toQString(info.toolTip));
    action.setEnabled(info.isEnabled);
}

void AlertActions::Update() {
    const AlertTarget target = m_target();
    for (const auto& [command, action] : m_actions)
        ShowIn(*action, command, target);
    if (!m_menu)
        return;
    m_menu->menuAction()->setEnabled(!target.alerts.empty());
    FillMenu(target);
}

void AlertActions::FillMenu(const AlertTarget& target) {
    // Submenus are children of the menu and are not deleted with its entries.
    qDeleteAll(m_menu->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly));
    m_menu->clear();
    if (target.alerts.size() == 1)
        return AddEntries(*m_menu, target);
    for (const AlertState& alert : target.alerts) {
        QMenu* menu = m_menu->addMenu(entryText(alert.description));
        menu->setToolTipsVisible(true);
        AddEntries(*menu, {target.figure, {alert}});
    }
}

void AlertActions::AddEntries(QMenu& menu, const AlertTarget& target) {
    for (const AlertCommand command : kAll) {
        if (command == AlertCommand::Add)
            continue;
        QAction* action = menu.addAction(QString());
        action->setObjectName(traitOf(command).name);
        ShowIn(*action, command, target);
        connect(action, &QAction::triggered, this, [this, command, target] { Run(command, target); });
    }
}

QAction* AlertActions::ActionOf(AlertCommand command) const {
    const auto found = m_actions.find(command);
    return found == m_actions.end() ? nullptr : found->second;
}

bool AlertActions::eventFilter(QObject* watched, QEvent* event) {
    // Both come before the menu is built and before the key finds its action.
    if (event->type() == QEvent::ContextMenu || event->type() == QEvent::ShortcutOverride)
        Update();
    return QObject::eventFilter(watched, event);
}

void AlertActions::Run(AlertCommand command) {
    Run(command, m_target());
}

void AlertActions::Run(AlertCommand command, const AlertTarget& target) {
    CTavixDoc& document = m_site.GetTavixDoc();
    const std::shared_ptr<PrViewer> session = document.GetSession();
    if (!session || !alertCommand(command, target, document.GetJobId()).isEnabled)
        return;
    switch (command) {
    case AlertCommand::Add:
    case AlertCommand::Edit:
        return EditAlert(command, target);
    case AlertCommand::Mute:
        return Mute(target);
    case AlertCommand::Notes:
        return ShowNotes(target);
    case AlertCommand::CopyToFields:
        return CopyToFields(target);
    case AlertCommand::Unmute:
        if (AlertEditor(*session, document.GetMessages()).Unmute(target.alerts))
            Changed();
        return;
    case AlertCommand::Remove: {
        const QPointer<AlertActions> self(this);
        if (AlertEditor(*session, document.GetMessages()).Remove(target.alerts) && self)
            Changed();
        return;
    }
    }
}

void AlertActions::EditAlert(AlertCommand command, const AlertTarget& target) {
    CTavixDoc& document = m_site.GetTavixDoc();
    const std::shared_ptr<PrViewer> session = document.GetSession();
    Messages& messages = document.GetMessages();
    CAlertDlg::Purpose purpose{-1, tr("Add Alert"), {}};
    std::optional<AlertDraft> draft;
    {
        const std::unique_ptr<Messages::Busy> busy = messages.busy();
        if (command == AlertCommand::Edit) {
            const AlertState& alert = target.alerts.front();
            draft = AlertDraft::Edit(*session, alert);
            if (alert.isOfUser)
                purpose = {alert.id, tr("Edit Alert"), {}};
            else
                purpose.remark = tr("The job file defines this alert, and each run restores it. What you change here "
                                    "becomes an alert of your own; the job's alert stays.");
        } else if (Result<AlertDraft> made = AlertDraft::MakeNew(*session, *target.figure)) {
            draft = std::move(*made);
        } else {
            return messages.warn("Error occurred while preparing the alert:\n\n" + made.error().text);
        }
    }
    const QPointer<AlertActions> self(this);
    if (ModalDialog<CAlertDlg>(session, messages, std::move(*draft), purpose, &m_list).isAccepted() && self)
        Changed();
}

void AlertActions::Mute(const AlertTarget& target) {
    CTavixDoc& document = m_site.GetTavixDoc();
    const std::shared_ptr<PrViewer> session = document.GetSession();
    Messages& messages = document.GetMessages();
    LibraryDate start = 0;
    try {
        start = startOfRun(*session);
    } catch (const GenException& failure) {
        return messages.warn("Error occurred while muting the alert:\n\n" + failure.getText().str());
    }
    const QPointer<AlertActions> self(this);
    const auto store = [&](const MuteDraft& draft) {
        return AlertEditor(*session, messages).Mute(target.alerts, draft);
    };
    if (ModalDialog<CMuteAlertDlg>(target.alerts, start, store, &m_list).isAccepted() && self)
        Changed();
}

void AlertActions::ShowNotes(const AlertTarget& target) {
    CTavixDoc& document = m_site.GetTavixDoc();
    const std::shared_ptr<PrViewer> session = document.GetSession();
    Messages& messages = document.GetMessages();
    const AlertState& alert = target.alerts.front();
    Result<AlertHistory> history = AlertHistory::Read(*session, alert, userLocale());
    if (!history)
        return messages.warn("Error occurred while retrieving the history of the alert:\n\n" + history.error().text);
    const QPointer<AlertActions> self(this);
    ModalDialog<CAlertHistoryDlg> dialog(session, messages, alert, std::move(*history), &m_list);
    dialog.exec();
    if (self && dialog && dialog->HasChanged())
        Changed();
}

void AlertActions::CopyToFields(const AlertTarget& target) {
    CTavixDoc& document = m_site.GetTavixDoc();
    const std::shared_ptr<PrViewer> session = document.GetSession();
    Messages& messages = document.GetMessages();
    const AlertState& alert = target.alerts.front();
    Result<FieldChoice> choice = FieldChoice::Read(*session, alert);
    if (!choice)
        return messages.warn("Error occurred while copying the alert:\n\n" + choice.error().text);
    const QPointer<AlertActions> self(this);
    const auto store = [&](const std::vector<AlertDefinition>& copies) {
        return AlertEditor(*session, messages).StoreCopies(copies);
    };
    if (ModalDialog<CCopyAlertDlg>(toQString(alert.condition()), std::move(*choice), store, &m_list).isAccepted() &&
        self)
        Changed();
}

void AlertActions::Changed() {
    const QPointer<AlertActions> self(this);
    m_site.Broadcast(nullptr, RefreshHint::AlertsChanged, 0);
    if (self)
        Q_EMIT AlertsChanged();
}

} // namespace tavix
