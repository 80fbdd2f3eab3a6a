#pragma once

#include "doc/NavigateRequest.h"
#include "report/AlertStates.h"

#include <optional>
#include <string>

namespace tavix {

class CTavixDoc;
class CViewSite;

/// Where the figure that an alert watches is shown, in the run that it was judged for. If that is another report than
/// the one that is open, the user is asked; nothing when the user declines or the report has no run, which a message
/// says. `report` is the name of the alert's report.
[[nodiscard]] std::optional<NavigateRequest> placeOfAlert(const AlertState& alert, const std::string& report,
                                                          CTavixDoc& document);

/// Shows the place; a message says when the run does not have it.
bool showPlace(CViewSite& site, const NavigateRequest& place);

} // namespace tavix
