#include "tabs/ui/DrillThrough.h"

#include "doc/CTavixDoc.h"
#include "drill/ui/CDrillThru.h"
#include "drill/ui/CLocateFileDlg.h"
#include "drill/ui/ReadingProgress.h"

#include <QAction>
#include <QPointer>
#include <QWidget>

#include <memory>
#include <optional>
#include <utility>

namespace tavix {

QWidget* DrillThrough::Owner() const {
    QWidget* owner = m_site.GetWindowOwner();
    return owner ? owner : m_tab.window();
}

void DrillThrough::Open(DrillTask task) const {
    // A table of several files may miss more than one.
    while (TryToOpen(task) == DrillOutcome::FileMissing && Locate()) {
    }
}

DrillOutcome DrillThrough::TryToOpen(DrillTask& task) const {
    CTavixDoc& document = m_site.GetTavixDoc();
    Messages& messages = document.GetMessages();
    QWidget* owner = Owner();
    const std::unique_ptr<Messages::Busy> busy = messages.busy();
    ReadingProgress progress(ReadingKind::Source, owner, m_site.GetPatienceMilliseconds());
    std::unique_ptr<CDrillThru> window;
    const auto makeWindow = [&](DrillRequest request) {
        window = std::make_unique<CDrillThru>(std::move(request), progress, document.GetSettings(), messages, owner);
    };
    const DrillOutcome outcome =
        openDrill(document, task, progress, makeWindow, [&progress] { return progress.WasCancelled(); });
    if (outcome == DrillOutcome::Opened)
        window.release()->ShowOver(m_tab);
    return outcome;
}

bool DrillThrough::Locate() const {
    // The tab may be closed while the user looks for the file.
    const QPointer<QWidget> tab(&m_tab);
    return relocateDrillFile(m_site.GetTavixDoc(), [&](const MissingFile& file) -> std::optional<KvbString> {
        const auto place = CLocateFileDlg::Choose(file, Owner());
        return place && tab ? std::optional<KvbString>(*place) : std::nullopt;
    });
}

bool DrillThrough::IsOffered() const {
    return canDrillThrough(m_site.GetTavixDoc());
}

QAction* DrillThrough::MakeAction() const {
    auto* action = new QAction(QObject::tr("&Drill Through\tEnter"), &m_tab);
    action->setObjectName(QStringLiteral("drillThrough"));
    return action;
}

void DrillThrough::OpenValue(const ReportSubject& subject, const KvbString& value, DrillOrigin origin) const {
    if (IsOffered() && subject.field)
        Open(drillIntoValue(*m_site.GetTavixDoc().GetViewer(), subject, value, origin));
}

void DrillThrough::OpenPattern(const ReportSubject& subject, const KvbString& pattern) const {
    if (IsOffered() && subject.field)
        Open(drillIntoPattern(*m_site.GetTavixDoc().GetViewer(), subject, pattern));
}

void DrillThrough::OpenCondition(const ReportSubject& subject, const std::string& condition, const std::string& words,
                                 std::int64_t inRun) const {
    if (IsOffered() && subject.field)
        Open(drillIntoCondition(subject, condition, words, inRun));
}

void DrillThrough::OpenRule(const BusinessRuleRows::Rule& rule, const std::string& name) const {
    if (IsOffered())
        Open(drillIntoRule(rule, name));
}

} // namespace tavix
