#include "tabs/DrillThroughModel.h"

#include "base/Characters.h"
#include "base/GenException.h"
#include "base/NullText.h"
#include "doc/CTavixDoc.h"
#include "grid/ListRows.h"
#include "report/CountText.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <variant>

namespace tavix {

namespace {

// Bytes of a value in the heading; the rows themselves show all of it.
constexpr std::size_t kMostInHeading = 200;

std::string quoted(const KvbString& value) {
    return "\u201C" + shortened(value.view(), kMostInHeading) + "\u201D";
}

DrillTask drillIntoField(PrViewer& viewer, const ReportSubject& subject, const KvbString& value, bool isPattern,
                         DrillOrigin origin, const std::string& words) {
    const FieldRecord& field = *subject.field;
    DrillTask task;
    task.request.origin = origin;
    task.request.context = field.name;
    task.request.subject = field.name + ": " + words;
    // Negative for a sample, which has fewer rows than its source.
    if (const std::int64_t count = viewer.getDrillDownCount(field.id, value, isPattern); count >= 0)
        task.request.inRun = count;
    task.open = [id = field.id, value, isPattern](PrViewer& session, PrViewDisplayMessage& sink) {
        return DrillCursor(session.drillDown(id, value, isPattern, &sink, nullptr));
    };
    return task;
}

} // namespace

DrillTask drillIntoValue(PrViewer& viewer, const ReportSubject& subject, const KvbString& value, DrillOrigin origin) {
    return drillIntoField(viewer, subject, value, false, origin,
                          value.isNull() ? std::string(kNullValue) : quoted(value));
}

DrillTask drillIntoPattern(PrViewer& viewer, const ReportSubject& subject, const KvbString& pattern) {
    return drillIntoField(viewer, subject, pattern, true, DrillOrigin::PatternFrequency, "pattern " + quoted(pattern));
}

DrillTask drillIntoCondition(const ReportSubject& subject, const std::string& condition, const std::string& words,
                             std::int64_t inRun) {
    const FieldRecord& field = *subject.field;
    DrillTask task;
    task.request.context = field.name;
    task.request.subject = field.name + ": " + words;
    // A sample has fewer rows than its source.
    if (!subject.table.isSample)
        task.request.inRun = inRun;
    task.open = [id = field.id, condition](PrViewer& session, PrViewDisplayMessage& sink) {
        return DrillCursor(session.drillDownWhere(id, KvbString(condition), &sink));
    };
    return task;
}

DrillTask drillIntoRule(const BusinessRuleRows::Rule& rule, const std::string& name) {
    DrillTask task;
    task.request.origin = DrillOrigin::BusinessRule;
    task.request.mode = DrillSourceMode::RuleLog;
    task.request.context = name;
    task.request.subject = name;
    if (rule.logged < rule.failed)
        task.request.subject +=
            ": the first " + groupedCount(rule.logged) + " of " + groupedCount(rule.failed) + " rows";
    task.request.inRun = rule.logged;
    task.open = [id = rule.id](PrViewer& session, PrViewDisplayMessage&) {
        return DrillCursor(session.getBusinessRuleRowLog(id, 0, true));
    };
    return task;
}

bool canDrillThrough(const CTavixDoc& document) {
    return document.GetViewer() && isDrillOffered(document.GetSettings());
}

DrillOutcome openDrill(CTavixDoc& document, DrillTask& task, PrViewDisplayMessage& sink,
                       const std::function<void(DrillRequest)>& show, const std::function<bool()>& wasCancelled) {
    const std::shared_ptr<PrViewer> session = document.GetSession();
    bool isShown = false;
    std::string reason;
    try {
        DrillRequest& request = task.request;
        request.cursor = task.open(*session, sink);
        reason = session->getErrorString().str();
        isShown = std::visit([](const auto& cursor) { return cursor != nullptr; }, request.cursor);
        if (isShown)
            show(std::move(request));
    } catch (const GenException& failure) {
        isShown = false;
        reason = failure.getText().str();
    }
    if (document.GetSession() != session)
        return DrillOutcome::Ended;
    if (isShown)
        return DrillOutcome::Opened;
    Messages& messages = document.GetMessages();
    if (const auto declined = document.GetSourceLogins().TakeDeclined()) {
        messages.warn(drillDeclined(*declined), kDrillErrorCaption);
        return DrillOutcome::Ended;
    }
    if (wasCancelled())
        return DrillOutcome::Ended;
    if (session->getMissingFile())
        return DrillOutcome::FileMissing;
    messages.warn(std::string(kDrillUnavailable) + "\n\n" + reason, kDrillErrorCaption);
    return DrillOutcome::Ended;
}

bool relocateDrillFile(CTavixDoc& document, const std::function<std::optional<KvbString>(const MissingFile&)>& ask) {
    const std::shared_ptr<PrViewer> session = document.GetSession();
    if (!session)
        return false;
    const int run = session->getCurrentJob();
    const auto file = session->getMissingFile();
    const auto place = file ? ask(*file) : std::nullopt;
    if (!place || document.GetSession() != session || session->getCurrentJob() != run)
        return false;
    KvbString remark;
    const bool isTaken = session->relocateFile(file->path, *place, remark);
    if (!isTaken || !remark.isEmpty())
        document.GetMessages().warn(isTaken ? remark.view() : session->getErrorString().view(), kDrillErrorCaption);
    return isTaken;
}

} // namespace tavix
