#include "tabs/ui/DrillThrough.h"

#include "base/Characters.h"
#include "base/GenException.h"
#include "base/NullText.h"
#include "doc/CTavixDoc.h"
#include "drill/ui/CLocateFileDlg.h"
#include "drill/ui/ReadingProgress.h"
#include "report/CountText.h"
#include "tabs/ListRows.h"

#include <QAction>
#include <QPointer>
#include <QWidget>

#include <memory>
#include <string_view>
#include <utility>
#include <variant>

namespace tavix {

namespace {

// Of a value in a heading; the rows themselves show all of it.
constexpr std::size_t kMostInHeading = 200;

// Windows go with the viewer, not with the tab, which may be closed or show something else meanwhile.
QWidget* ownerOf(CViewSite& site, QWidget& tab) {
    auto* frame = dynamic_cast<QWidget*>(&site);
    return frame ? frame : tab.window();
}

} // namespace

void DrillThrough::Open(DrillRequest request, const OpenCursor& openCursor) const {
    std::optional<MissingFile> missing = TryToOpen(request, openCursor);
    // A table of several files may miss more than one.
    while (missing) {
        if (!Relocate(*missing))
            return;
        missing = TryToOpen(request, openCursor);
    }
}

std::optional<MissingFile> DrillThrough::TryToOpen(DrillRequest& request, const OpenCursor& openCursor) const {
    CTavixDoc& document = m_site.GetTavixDoc();
    Messages& messages = document.GetMessages();
    const std::shared_ptr<PrViewer> session = document.GetSession();
    QWidget* owner = ownerOf(m_site, m_tab);
    const std::unique_ptr<Messages::Busy> busy = messages.busy();
    ReadingProgress progress(ReadingKind::Source, owner);
    std::unique_ptr<CDrillThru> window;
    std::string failure(kDrillUnavailable);
    try {
        request.cursor = openCursor(*session, progress);
        failure += "\n\n";
        failure += session->getErrorString().view();
        if (std::visit([](const auto& cursor) { return cursor != nullptr; }, request.cursor))
            window =
                std::make_unique<CDrillThru>(std::move(request), progress, document.GetSettings(), messages, owner);
    } catch (const GenException&) {
    }
    // The report may be closed while its source is read: then nobody waits for the rows any more.
    if (document.GetSession() != session)
        return std::nullopt;
    if (window) {
        window.release()->ShowOver(m_tab);
        return std::nullopt;
    }
    const auto declined = document.GetSourceLogins().TakeDeclined();
    const bool isSilent = declined || progress.WasCancelled();
    if (auto missing = isSilent ? std::nullopt : session->getMissingFile())
        return missing;
    if (declined)
        messages.warn(drillDeclined(*declined), kDrillErrorCaption);
    else if (!progress.WasCancelled())
        messages.warn(failure, kDrillErrorCaption);
    return std::nullopt;
}

bool DrillThrough::Relocate(const MissingFile& file) const {
    // While the user looks for the file the tab may go, or the report change.
    const QPointer<QWidget> tab(&m_tab);
    const PrViewer* const before = m_site.GetTavixDoc().GetViewer();
    const int run = before->getCurrentJob();
    const auto place = CLocateFileDlg::Choose(file, ownerOf(m_site, m_tab));
    if (!place || !tab)
        return false;
    CTavixDoc& document = m_site.GetTavixDoc();
    PrViewer* const viewer = document.GetViewer();
    if (!viewer || viewer != before || viewer->getCurrentJob() != run)
        return false;
    KvbString remark;
    const bool isTaken = viewer->relocateFile(file.path, *place, remark);
    if (!isTaken || !remark.isEmpty())
        document.GetMessages().warn(isTaken ? remark.view() : viewer->getErrorString().view(), kDrillErrorCaption);
    return isTaken;
}

bool DrillThrough::IsOffered() const {
    const CTavixDoc& document = m_site.GetTavixDoc();
    return document.GetViewer() && isDrillOffered(document.GetSettings());
}

QAction* DrillThrough::MakeAction() const {
    auto* action = new QAction(QObject::tr("&Drill Through\tEnter"), &m_tab);
    action->setObjectName(QStringLiteral("drillThrough"));
    return action;
}

void DrillThrough::OpenValue(const ReportSubject& subject, const KvbString& value, DrillOrigin origin) const {
    OpenRows(subject, value, false, origin,
             value.isNull() ? std::string(kNullValue) : "\u201C" + shortened(value.view(), kMostInHeading) + "\u201D");
}

void DrillThrough::OpenPattern(const ReportSubject& subject, const KvbString& pattern) const {
    OpenRows(subject, pattern, true, DrillOrigin::PatternFrequency,
             "pattern \u201C" + shortened(pattern.view(), kMostInHeading) + "\u201D");
}

void DrillThrough::OpenRows(const ReportSubject& subject, const KvbString& value, bool isPattern, DrillOrigin origin,
                            const std::string& words) const {
    if (!IsOffered() || !subject.field)
        return;
    const FieldRecord& field = *subject.field;
    DrillRequest request;
    request.origin = origin;
    request.context = field.name;
    request.subject = field.name + ": " + words;
    // A sample has fewer rows than the source, which is no change of it.
    if (!subject.table.isSample) {
        PrViewer& viewer = *m_site.GetTavixDoc().GetViewer();
        if (const std::int64_t count = viewer.getDrillDownCount(field.id, value, isPattern); count >= 0)
            request.inRun = count;
    }
    const int id = field.id;
    Open(std::move(request), [id, &value, isPattern](PrViewer& viewer, PrViewDisplayMessage& sink) {
        return DrillCursor(viewer.drillDown(id, value, isPattern, &sink, nullptr));
    });
}

void DrillThrough::OpenRule(const BusinessRuleRows::Rule& rule, const std::string& name) const {
    if (!IsOffered())
        return;
    DrillRequest request;
    request.origin = DrillOrigin::BusinessRule;
    request.mode = DrillSourceMode::RuleLog;
    request.context = name;
    request.subject = name;
    if (rule.logged < rule.failed)
        request.subject += ": the first " + groupedCount(rule.logged) + " of " + groupedCount(rule.failed) + " rows";
    request.inRun = rule.logged;
    Open(std::move(request), [id = rule.id](PrViewer& viewer, PrViewDisplayMessage&) {
        return DrillCursor(viewer.getBusinessRuleRowLog(id, 0, true));
    });
}

} // namespace tavix
