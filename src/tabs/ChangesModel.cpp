#include "tabs/ChangesModel.h"

#include "access/PrViewDisplayMessage.h"
#include "base/GenException.h"
#include "report/CountText.h"
#include "report/ReportTables.h"

#include <fmt/format.h>

#include <algorithm>
#include <locale>
#include <set>

namespace tavix {

namespace {

constexpr const char* kStopped = "The comparison was stopped. Choose a run above to start it again.";
/// A list of a field has room for more than its line in the list of a table names.
constexpr std::size_t kTextsOfField = 1000;

/// Ends a comparison that the user has cancelled.
struct Stopped {};

using FieldNames = std::set<std::pair<std::string, std::string>>;

FieldNames namesOf(const FieldIds& fields) {
    FieldNames names;
    for (const auto& field : fields)
        names.insert(field.first);
    return names;
}

FieldIds fieldsOfTable(PrViewer& viewer, const std::vector<TableIdentity>& tables, const TableIdentity& wanted) {
    FieldIds fields;
    const bool hasTable =
        std::any_of(tables.begin(), tables.end(), [&](const TableIdentity& table) { return table.id == wanted.id; });
    if (hasTable)
        for (NamedField& field : readFieldNames(viewer, wanted.id))
            fields[{wanted.displayName(), std::move(field.name)}] = field.id;
    return fields;
}

/// Those whose tables are among these.
FieldIds fieldsOfCollection(PrViewer& viewer, const std::vector<TableIdentity>& tables, int collectionId) {
    FieldIds fields;
    for (FieldRecord& field : readCollectionFields(viewer, collectionId)) {
        const auto table = std::find_if(tables.begin(), tables.end(),
                                        [&](const TableIdentity& each) { return each.id == field.tableId; });
        if (table != tables.end())
            fields[{table->displayName(), std::move(field.name)}] = field.id;
    }
    return fields;
}

} // namespace

ChangesModel::ChangesModel(CTavixDoc& document, const ReportSubject& subject, TableChangeRows& rows)
    : m_document(document), m_subject(subject), m_rows(rows), m_tableRows(&rows) {}

ChangesModel::ChangesModel(CTavixDoc& document, const ReportSubject& subject, FieldChangeRows& rows)
    : m_document(document), m_subject(subject), m_rows(rows), m_fieldRows(&rows) {}

const RunRow* ChangesModel::FindRun(int id) const {
    const auto found = std::find_if(m_runs.begin(), m_runs.end(), [id](const RunRow& run) { return run.id == id; });
    return found == m_runs.end() ? nullptr : &*found;
}

void ChangesModel::ReadRuns() {
    m_runs.clear();
    m_pair = {};
    m_chosen = m_document.GetComparedRuns();
    if (auto runs = m_document.GetRuns())
        m_runs = listRuns(std::move(*runs), userLocale());
    const RunRow* until = FindRun(m_chosen.until);
    if (!until)
        until = FindRun(m_document.GetCurrentJob());
    if (!until)
        return;
    const RunRow* since = FindRun(m_chosen.since);
    if (!since && until != &m_runs.back())
        since = until + 1;
    m_pair = {since ? since->id : -1, until->id};
}

void ChangesModel::Choose(std::size_t sinceRow, std::size_t untilRow) {
    ComparedRuns chosen;
    if (sinceRow < m_runs.size())
        chosen.since = m_runs[sinceRow].id;
    if (untilRow < m_runs.size() && m_runs[untilRow].id != m_document.GetCurrentJob())
        chosen.until = m_runs[untilRow].id;
    m_document.SetComparedRuns(chosen);
}

std::string ChangesModel::GetObstacle() const {
    if (m_fieldRows && !m_subject.field)
        return "This run does not have the field.";
    const RunRow* until = FindRun(m_pair.until);
    if (!until)
        return "The runs of this report cannot be read.";
    if (m_runs.size() == 1)
        return "This report has one run. Its changes are listed here after the next run.";
    if (m_pair.since == -1)
        return fmt::format("Run {} is the first one, so there is no earlier run to compare it with.", until->number);
    if (m_pair.since == m_pair.until)
        return "Both are the same run. Choose another one to see what has changed.";
    return {};
}

void ChangesModel::ShowNone(const std::string& why) {
    m_summary.clear();
    m_rows.ShowNone(why);
}

bool ChangesModel::Fill(PrViewDisplayMessage& sink) {
    // Copies: subject and choice may change while the runs are compared.
    const ReportSubject subject = m_subject;
    const ComparedRuns pair = m_pair;
    // Both runs are read by sessions of their own, because the shell may show another run meanwhile.
    auto before = m_document.OpenRun(pair.since);
    if (!before)
        return m_rows.Refuse(before.error().text);
    auto after = m_document.OpenRun(pair.until);
    if (!after)
        return m_rows.Refuse(after.error().text);
    RunComparisonOptions options;
    options.progress = [&sink](const std::string& table, std::int64_t done, std::int64_t total) {
        if (!sink.progress("Comparing two runs of " + table + "...", done, total))
            throw Stopped();
    };
    try {
        Compare(**before, **after, subject, std::move(options));
    } catch (const Stopped&) {
        ShowNone(kStopped);
    } catch (const GenException& failure) {
        return m_rows.Refuse(failure.getText().view());
    }
    return true;
}

void ChangesModel::Compare(PrViewer& before, PrViewer& after, const ReportSubject& subject,
                           RunComparisonOptions options) {
    const bool isCollection = !m_fieldRows && subject.selection.kind == ReportSelection::Kind::Collection;
    const std::vector<TableIdentity> tables = readTables(after, kAllDataSources, "");
    FieldIds fields;
    if (m_fieldRows)
        options.fields = FieldNames{{subject.table.displayName(), subject.field->name}};
    else if (isCollection) {
        fields = fieldsOfCollection(after, tables, subject.selection.id);
        options.fields = namesOf(fields);
    } else {
        fields = fieldsOfTable(after, tables, subject.table);
        options.table = subject.table.displayName();
    }
    options.top = m_fieldRows ? kTextsOfField : options.top;

    ChangeRanking ranking;
    std::vector<RunChange> ofField;
    compareRuns(before, after, options, [&](const RunChange& change) {
        if (!m_fieldRows)
            ranking.add(change);
        else if (!change.field.empty())
            ofField.push_back(change);
    });
    if (ranking.size() == 0 && ofField.empty()) {
        const auto number = [this](int id) { return FindRun(id) ? FindRun(id)->number : 0; };
        return ShowNone(
            fmt::format("No difference between runs {} and {}.", number(m_pair.since), number(m_pair.until)));
    }
    if (m_fieldRows) {
        m_fieldRows->Show(std::move(ofField));
        m_summary = m_fieldRows->GetSummary();
    } else {
        m_tableRows->Show(ranking.ranked(), std::move(fields), isCollection);
        m_summary = countOf(ranking.size(), "change");
    }
}

} // namespace tavix
