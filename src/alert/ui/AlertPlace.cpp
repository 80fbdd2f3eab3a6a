#include "alert/ui/AlertPlace.h"

#include "doc/CTavixDoc.h"
#include "doc/CViewSite.h"

namespace tavix {

namespace {

constexpr std::string_view kCaption = "Alerts";

} // namespace

std::optional<NavigateRequest> placeOfAlert(const AlertState& alert, const std::string& report, CTavixDoc& document) {
    NavigateRequest place;
    place.dataSource = alert.dataSource;
    place.catalog = alert.catalog;
    place.schema = alert.schema;
    place.table = alert.table;
    place.metricKind = alertTypeCode(alert.subject);
    place.metricId = alert.watchedId;
    place.rowId = alert.fieldId;
    place.tableId = alert.tableId;
    if (alert.job == -1)
        return place;
    if (alert.run == -1) {
        document.GetMessages().warn("The report \u201C" + report + "\u201D has no run that could be shown.", kCaption);
        return std::nullopt;
    }
    place.run = alert.run;
    place.report = alert.job;
    place.reportName = report;
    if (alert.job == document.GetJobId())
        return place;
    const std::string question =
        "This alert belongs to the report \u201C" + report + "\u201D.\nDo you want to open that report?";
    const bool opens = document.GetMessages().ask(question, kCaption, Messages::Answer::Yes) == Messages::Answer::Yes;
    return opens ? std::optional(std::move(place)) : std::nullopt;
}

bool showPlace(CViewSite& site, const NavigateRequest& place) {
    if (site.Navigate(place))
        return true;
    // Where the report or the run could not be opened, a message has said so.
    const CTavixDoc& document = site.GetTavixDoc();
    const bool isThere = (place.report == -1 || document.GetJobId() == place.report) &&
                         (place.run == -1 || document.GetCurrentJob() == place.run);
    if (isThere)
        document.GetMessages().warn("The run that is shown does not have the table \u201C" + place.table + "\u201D.",
                                    kCaption);
    return false;
}

} // namespace tavix
