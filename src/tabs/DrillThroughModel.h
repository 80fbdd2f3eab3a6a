#pragma once

#include "access/PrViewer.h"
#include "base/KvbString.h"
#include "drill/DrillRequest.h"
#include "report/ReportSubject.h"
#include "tabs/RuleRows.h"

#include <functional>
#include <optional>
#include <string>

namespace tavix {

class CTavixDoc;
class PrViewDisplayMessage;

/// Source rows to be shown: what their window says of them, and how they are opened.
struct DrillTask {
    DrillRequest request; ///< without a cursor
    std::function<DrillCursor(PrViewer&, PrViewDisplayMessage&)> open;
};

/// The rows in which the subject's field, which it must have, has the value; null stands for the rows without a value.
[[nodiscard]] DrillTask drillIntoValue(PrViewer& viewer, const ReportSubject& subject, const KvbString& value,
                                       DrillOrigin origin);
/// The rows in which the field's value has the pattern.
[[nodiscard]] DrillTask drillIntoPattern(PrViewer& viewer, const ReportSubject& subject, const KvbString& pattern);
/// The rows in which the subject's field has a value that meets the condition over `Value`; `words` say which these
/// are, and the run counted `inRun` of them.
[[nodiscard]] DrillTask drillIntoCondition(const ReportSubject& subject, const std::string& condition,
                                           const std::string& words, std::int64_t inRun);
/// The rows that violated the rule, as far as the run has kept them.
[[nodiscard]] DrillTask drillIntoRule(const BusinessRuleRows::Rule& rule, const std::string& name);

/// Whether there is a report, and the settings offer drill-through.
[[nodiscard]] bool canDrillThrough(const CTavixDoc& document);

/// How an attempt to open source rows ended.
enum class DrillOutcome {
    Opened,
    Ended,       ///< the user has been told why, has cancelled, or has closed the report
    FileMissing, ///< nothing was said: the user may locate the file
};

/// Opens the rows and passes them to `show`, which may throw GenException as the library does. Both may handle events,
/// so that the report may be closed meanwhile; what was shown then has to go. `wasCancelled` is asked after a failure.
[[nodiscard]] DrillOutcome openDrill(CTavixDoc& document, DrillTask& task, PrViewDisplayMessage& sink,
                                     const std::function<void(DrillRequest)>& show,
                                     const std::function<bool()>& wasCancelled);

/// Tells the report where the file is that could not be found. `ask` gives its place, nothing to leave it; when another
/// report or run is open by then, nothing is done. False when opening the rows again is pointless.
[[nodiscard]] bool relocateDrillFile(CTavixDoc& document,
                                     const std::function<std::optional<KvbString>(const MissingFile&)>& ask);

} // namespace tavix
