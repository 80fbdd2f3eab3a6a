#include "report/FindingRecords.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/Ascii.h"
#include "findings/Catalogue.h"
#include "report/CheckedCursor.h"
#include "report/CountText.h"

#include <algorithm>
#include <array>

namespace tavix {

namespace {

using findings::Likelihood;

std::vector<FindingRecord> readAll(const ProfileCursorHandle& rows) {
    using namespace layout;
    std::vector<FindingRecord> found;
    while (rows->next()) {
        FindingRecord finding;
        finding.tableId = rows->getColumnInt(FindingTableId);
        finding.table = textAt(*rows, FindingTableName);
        if (const int field = rows->getColumnInt(FindingFieldId); field != 0)
            finding.fieldId = field;
        finding.field = textAt(*rows, FindingFieldName);
        finding.code = textAt(*rows, FindingCode);
        finding.likelihood = rows->getColumnInt(FindingLikelihood);
        finding.values = rows->getColumnInt64(FindingValues);
        finding.rows = rows->getColumnInt64(FindingRows);
        finding.detail = textAt(*rows, FindingDetail);
        finding.condition = textAt(*rows, FindingCondition);
        if (!rows->isColumnNull(FindingDismissal))
            finding.dismissal = {textAt(*rows, FindingDismissal), textAt(*rows, FindingDismissedBy),
                                 rows->getColumnDouble(FindingDismissed)};
        found.push_back(std::move(finding));
    }
    return found;
}

/// "control-characters" as "Control characters".
std::string wordsOf(std::string_view code) {
    std::string words(code);
    std::replace(words.begin(), words.end(), '-', ' ');
    if (!words.empty())
        words.front() = asciiUpper(words.front());
    return words;
}

} // namespace

std::string FindingRecord::title() const {
    const findings::CatalogueEntry* const entry = findings::findEntry(code);
    return entry ? std::string(entry->title) : wordsOf(code);
}

std::string_view FindingRecord::meaning() const {
    const findings::CatalogueEntry* const entry = findings::findEntry(code);
    return entry ? entry->meaning : std::string_view();
}

std::string_view FindingRecord::advice() const {
    const findings::CatalogueEntry* const entry = findings::findEntry(code);
    return entry ? entry->advice : std::string_view();
}

std::string_view FindingRecord::likelihoodText() const {
    return findings::likelihoodWord(static_cast<Likelihood>(likelihood));
}

std::string FindingRecord::place() const {
    return fieldId == -1 ? table : table + "." + field;
}

std::vector<FindingRecord> readFindings(PrViewer& viewer) {
    return readAll(checked(viewer, viewer.getFindings()));
}

std::vector<FindingRecord> readTableFindings(PrViewer& viewer, int tableId) {
    return readAll(checked(viewer, viewer.getTableFindings(tableId)));
}

std::vector<FindingRecord> readFieldFindings(PrViewer& viewer, int fieldId) {
    return readAll(checked(viewer, viewer.getFieldFindings(fieldId)));
}

std::string findingCounts(const std::vector<FindingRecord>& findings) {
    std::int64_t all = 0;
    std::string parts;
    for (const Likelihood likelihood : {Likelihood::Definite, Likelihood::Likely, Likelihood::Possible}) {
        const auto count = std::count_if(findings.begin(), findings.end(), [likelihood](const FindingRecord& finding) {
            return !finding.dismissal && finding.likelihood == static_cast<int>(likelihood);
        });
        all += count;
        if (count > 0)
            parts += (parts.empty() ? "" : ", ") + groupedCount(count) + " " +
                     std::string(findings::likelihoodWord(likelihood));
    }
    return all == 0 ? "no findings" : countOf(all, "finding") + ": " + parts;
}

} // namespace tavix
