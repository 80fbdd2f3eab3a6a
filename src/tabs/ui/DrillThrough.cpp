#include "tabs/ui/DrillThrough.h"

#include "base/GenException.h"
#include "doc/CTavixDoc.h"
#include "drill/ui/DrillProgress.h"
#include "tabs/ListRows.h"

#include <QAction>
#include <QWidget>

#include <utility>

namespace tavix {

namespace {

// A value in a heading; the rows themselves show all of it.
std::string shortened(std::string_view text) {
    constexpr std::size_t kMost = 200;
    if (text.size() <= kMost)
        return std::string(text);
    std::size_t end = kMost;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80)
        --end;
    return std::string(text.substr(0, end)) + "\u2026";
}

// Windows go with the viewer, not with the tab, which may be closed or show something else meanwhile.
QWidget* ownerOf(CViewSite& site, QWidget& tab) {
    auto* frame = dynamic_cast<QWidget*>(&site);
    return frame ? frame : tab.window();
}

} // namespace

void DrillThrough::Open(DrillRequest request,
                        const std::function<DrillCursor(PrViewer&, PrViewDisplayMessage&)>& openCursor) const {
    CTavixDoc& document = m_site.GetTavixDoc();
    Messages& messages = document.GetMessages();
    PrViewer& viewer = *document.GetViewer();
    QWidget* owner = ownerOf(m_site, m_tab);
    DrillProgress progress(messages, owner);
    bool opened = false;
    std::string failure(kDrillUnavailable);
    try {
        request.cursor = openCursor(viewer, progress);
        opened = std::visit([](const auto& cursor) { return cursor != nullptr; }, request.cursor);
        failure += "\n\n";
        failure += viewer.getErrorString().view();
    } catch (const GenException&) {
    }
    if (opened)
        CDrillThru::Show(std::move(request), progress, document.GetSettings(), messages, owner, m_tab);
    else if (!progress.WasCancelled())
        messages.warn(failure, kDrillErrorCaption);
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

void DrillThrough::OpenValue(const FieldRecord& field, const KvbString& value, DrillOrigin origin) const {
    const std::string shown = value.isNull() ? std::string(kNullValue) : "\u201C" + shortened(value.view()) + "\u201D";
    OpenRows(field, value, false, origin, field.name + ": " + shown);
}

void DrillThrough::OpenPattern(const FieldRecord& field, const KvbString& pattern) const {
    OpenRows(field, pattern, true, DrillOrigin::PatternFrequency,
             field.name + ": pattern \u201C" + shortened(pattern.view()) + "\u201D");
}

void DrillThrough::OpenRows(const FieldRecord& field, const KvbString& value, bool isPattern, DrillOrigin origin,
                            const std::string& subject) const {
    if (!IsOffered())
        return;
    DrillRequest request;
    request.origin = origin;
    request.context = field.name;
    request.subject = subject;
    Open(std::move(request), [&](PrViewer& viewer, PrViewDisplayMessage& sink) {
        return DrillCursor(viewer.drillDown(field.id, value, isPattern, &sink, nullptr));
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
    Open(std::move(request), [&rule](PrViewer& viewer, PrViewDisplayMessage&) {
        return DrillCursor(viewer.getBusinessRuleRowLog(rule.id, 0, true));
    });
}

} // namespace tavix
