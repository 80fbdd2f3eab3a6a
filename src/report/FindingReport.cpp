#include "report/FindingReport.h"

#include "access/PrViewer.h"
#include "base/GenException.h"
#include "findings/Catalogue.h"
#include "report/CountText.h"
#include "report/ReportTables.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <tuple>
#include <utility>

namespace tavix {

namespace {

std::string sentenceOf(const FindingRecord& record, double share) {
    std::string counts;
    if (record.values > 0)
        counts = countOf(record.values, "value") + " in ";
    if (record.rows > 0 || record.values > 0)
        counts += countOf(record.rows, "row");
    if (share > 0)
        counts += " (" + shareText(share) + ")";
    std::string sentence = record.title();
    if (!counts.empty())
        sentence += ": " + counts;
    if (!record.detail.empty())
        sentence += (counts.empty() ? ": " : "; ") + record.detail;
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

FindingEntry entryOf(FindingRecord record, const std::map<int, std::int64_t>& records) {
    FindingEntry entry;
    const auto of = records.find(record.tableId);
    if (of != records.end() && of->second > 0)
        entry.share = 100.0 * static_cast<double>(record.rows) / static_cast<double>(of->second);
    entry.sentence = sentenceOf(record, entry.share);
    if (const findings::CatalogueEntry* const known = findings::findEntry(record.code)) {
        if (known->watch.empty() && !record.condition.empty())
            entry.rule = findings::ruleFor(record.condition, record.field);
        if (!known->watch.empty())
            entry.watch = withField(known->watch, record.field);
        else if (!entry.rule.empty())
            entry.watch = "the rule " + entry.rule;
    }
    entry.record = std::move(record);
    return entry;
}

} // namespace

FindingReport reportFindings(PrViewer& viewer, std::vector<FindingRecord> records) {
    FindingReport report;
    report.isExamined = viewer.isExamined();
    std::map<int, std::int64_t> recordsOfTables;
    for (const TableIdentity& table : readTables(viewer))
        recordsOfTables[table.id] = table.processedRecords;
    for (FindingRecord& record : records) {
        FindingEntry entry = entryOf(std::move(record), recordsOfTables);
        (entry.record.dismissal ? report.dismissed : report.open).push_back(std::move(entry));
    }
    for (std::vector<FindingEntry>* part : {&report.open, &report.dismissed})
        std::stable_sort(part->begin(), part->end(), [](const FindingEntry& a, const FindingEntry& b) {
            return std::tuple(b.record.likelihood, b.share) < std::tuple(a.record.likelihood, a.share);
        });
    return report;
}

} // namespace tavix
