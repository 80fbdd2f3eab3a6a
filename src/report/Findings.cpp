#include "report/Findings.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "findings/Catalogue.h"
#include "report/CheckedCursor.h"
#include "report/CountText.h"
#include "report/ReportTables.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace tavix {

namespace {

using findings::Likelihood;

Likelihood likelihoodOf(int stored) {
    return static_cast<Likelihood>(std::clamp(stored, static_cast<int>(Likelihood::Possible),
                                              static_cast<int>(Likelihood::Definite)));
}

std::string sentenceOf(const FindingEntry& entry) {
    std::string counts;
    if (entry.values > 0)
        counts = countOf(entry.values, "value") + " in ";
    if (entry.rows > 0 || entry.values > 0)
        counts += countOf(entry.rows, "row");
    if (entry.share > 0)
        counts += " (" + shareText(entry.share) + ")";
    std::string sentence = entry.title;
    if (!counts.empty())
        sentence += ": " + counts;
    if (!entry.detail.empty())
        sentence += (counts.empty() ? ": " : "; ") + entry.detail;
    return sentence;
}

/// FIELD in the text of the catalogue is the name of the field.
std::string withField(std::string_view text, const std::string& field) {
    constexpr std::string_view kField = "FIELD";
    std::string filled(text);
    for (std::size_t at = filled.find(kField); at != std::string::npos; at = filled.find(kField, at + field.size()))
        filled.replace(at, kField.size(), field);
    return filled;
}

void setTexts(FindingEntry& entry) {
    const findings::CatalogueEntry* const known = findings::findEntry(entry.code);
    entry.title = known ? std::string(known->title) : entry.code;
    entry.sentence = sentenceOf(entry);
    if (!known)
        return;
    entry.meaning = known->meaning;
    entry.advice = known->advice;
    if (known->watch.empty() && !entry.condition.empty())
        entry.rule = findings::ruleFor(entry.condition, entry.field);
    entry.watch = known->watch.empty() ? (entry.rule.empty() ? std::string() : "the rule " + entry.rule)
                                       : withField(known->watch, entry.field);
}

/// Rows of the tables of the run, by id.
std::map<int, std::int64_t> recordsOfTables(PrViewer& viewer) {
    std::map<int, std::int64_t> records;
    for (const TableIdentity& table : readTables(viewer))
        records[table.id] = table.processedRecords;
    return records;
}

FindingEntry entryAt(const ProfileCursor& cursor, const std::map<int, std::int64_t>& records) {
    FindingEntry entry;
    entry.tableId = cursor.getColumnInt(layout::FindingTableId);
    entry.fieldId = cursor.getColumnInt(layout::FindingFieldId);
    entry.table = textAt(cursor, layout::FindingTableName);
    entry.field = textAt(cursor, layout::FindingFieldName);
    entry.code = textAt(cursor, layout::FindingCode);
    entry.likelihood = likelihoodOf(cursor.getColumnInt(layout::FindingLikelihood));
    entry.values = cursor.getColumnInt64(layout::FindingValues);
    entry.rows = cursor.getColumnInt64(layout::FindingRows);
    entry.detail = textAt(cursor, layout::FindingDetail);
    entry.condition = textAt(cursor, layout::FindingCondition);
    const auto of = records.find(entry.tableId);
    if (of != records.end() && of->second > 0)
        entry.share = 100.0 * static_cast<double>(entry.rows) / static_cast<double>(of->second);
    if (!cursor.isColumnNull(layout::FindingDismissal))
        entry.dismissal = {textAt(cursor, layout::FindingDismissal), textAt(cursor, layout::FindingDismissedBy),
                           cursor.getColumnDouble(layout::FindingDismissed)};
    setTexts(entry);
    return entry;
}

FindingList listed(PrViewer& viewer, ProfileCursorHandle opened) {
    const ProfileCursorHandle cursor = checked(viewer, std::move(opened));
    FindingList list;
    list.isExamined = viewer.isExamined();
    const std::map<int, std::int64_t> records = recordsOfTables(viewer);
    while (cursor->next()) {
        FindingEntry entry = entryAt(*cursor, records);
        (entry.dismissal ? list.dismissed : list.open).push_back(std::move(entry));
    }
    for (std::vector<FindingEntry>* part : {&list.open, &list.dismissed})
        std::stable_sort(part->begin(), part->end(), [](const FindingEntry& a, const FindingEntry& b) {
            return std::tuple(b.likelihood, b.share) < std::tuple(a.likelihood, a.share);
        });
    return list;
}

} // namespace

FindingList readFindings(PrViewer& viewer) {
    return listed(viewer, viewer.getFindings());
}

FindingList readTableFindings(PrViewer& viewer, int tableId) {
    return listed(viewer, viewer.getTableFindings(tableId));
}

FindingList readFieldFindings(PrViewer& viewer, int fieldId) {
    return listed(viewer, viewer.getFieldFindings(fieldId));
}

} // namespace tavix
