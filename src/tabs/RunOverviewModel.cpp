#include "tabs/RunOverviewModel.h"

#include "base/NumberText.h"
#include "report/AlertMarks.h"
#include "report/AlertTexts.h"
#include "report/CountText.h"
#include "report/FieldBreakdown.h"
#include "tabs/MetricText.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace tavix {

namespace {

using Place = OverviewDoor::Place;

constexpr std::string_view kSeparator = "  ·  ";
constexpr std::size_t kMostNulls = 1000; // likewise findings: rows of a list that nobody reads to its end

/// The column that is as wide as there is room.
GridColumn nameColumn(std::string_view heading, int width) {
    GridColumn column = listColumn(heading, width);
    column.takesRest = true;
    return column;
}

GridColumn countColumn(std::string_view heading, int width) {
    return listColumn(heading, width, CellAlignment::Right);
}

/// With its unit, and sorted by its value.
GridCell figureCell(const AlertState& alert) {
    GridCell cell = textCell(alertFigureText(alert), CellAlignment::Right);
    if (alert.figure)
        cell.order = formatReal(*alert.figure);
    return cell;
}

GridCell nameCell(std::string_view name, CellIcon icon, std::string_view mark = {}) {
    GridCell cell = textCell(name);
    cell.icon = icon;
    cell.mark = mark;
    return cell;
}

/// "(Unknown)" for a negative number.
GridCell knownCountCell(std::int64_t count) {
    if (count >= 0)
        return countCell(count);
    GridCell cell = textCell(kUnknownMetric, CellAlignment::Right);
    cell.state = CellState::Unknown;
    return cell;
}

std::string signedCount(std::int64_t difference) {
    return (difference > 0 ? "+" : "") + groupedCount(difference);
}

/// "+12 (+0.40 %)"; "" when nothing changed or a number is unknown.
std::string changeText(std::int64_t before, std::int64_t after) {
    if (before < 0 || after < 0 || before == after)
        return {};
    std::string text = signedCount(after - before);
    if (before > 0) {
        const double percent = 100.0 * static_cast<double>(after - before) / static_cast<double>(before);
        text += std::string(" (") + (percent > 0 ? "+" : "") + formatFixed(percent, 2) + " %)";
    }
    return text;
}

GridCell changeCell(std::int64_t before, std::int64_t after) {
    GridCell cell = textCell(changeText(before, after), CellAlignment::Right);
    cell.order = formatInteger(before < 0 || after < 0 ? 0 : after - before);
    return cell;
}

CellIcon iconOf(TableKind kind) {
    return kind == TableKind::Query    ? CellIcon::QueryTable
           : kind == TableKind::Filter ? CellIcon::FilterTable
                                       : CellIcon::Table;
}

const RunOverview::Table* findIn(const std::map<int, const RunOverview::Table*>& tables, int id) {
    const auto found = tables.find(id);
    return found == tables.end() ? nullptr : found->second;
}

/// Filtered tables repeat records of other tables.
std::int64_t recordsOf(const RunOverview::Table& table) {
    return table.kind == TableKind::Filter ? 0 : std::max<std::int64_t>(table.records, 0);
}

std::int64_t one(const RunOverview::Table&) {
    return 1;
}

struct Count {
    std::string_view caption;
    std::function<std::int64_t(const RunOverview::Table&)> of;
};

/// "1 error, 2 muted": what the number of raised alerts does not say.
std::string detailOf(const AlertCounts& counts) {
    std::string text = counts.errors > 0 ? countOf(counts.errors, "error") : std::string();
    const auto add = [&text](int count, std::string_view word) {
        if (count > 0)
            text += (text.empty() ? "" : ", ") + groupedCount(count).append(" ").append(word);
    };
    add(counts.muted, "muted");
    add(counts.unjudged, "cannot be judged");
    return text;
}

OverviewDoor doorOf(const AlertState& alert) {
    if (alert.watchedId == -1)
        return {Place::Alerts, alert.tableId};
    switch (alert.subject) {
    case AlertSubject::StandardMetric:
        return {Place::Metric, alert.tableId, alert.fieldId, alert.watchedId};
    case AlertSubject::CustomMetric:
        return {Place::CustomMetric, alert.tableId, -1, alert.watchedId};
    case AlertSubject::BusinessRule:
        return {Place::Rule, alert.tableId, -1, alert.watchedId};
    }
    return {};
}

OverviewDoor doorOf(const FindingRecord& finding) {
    return finding.fieldId == -1 ? OverviewDoor{Place::Table, finding.tableId}
                                 : OverviewDoor{Place::Field, finding.tableId, finding.fieldId};
}

} // namespace

void OverviewList::Show(std::vector<Line> lines, std::string_view emptyText) {
    std::vector<Cells> rows;
    m_doors.clear();
    m_toolTips.clear();
    for (Line& line : lines) {
        rows.push_back(std::move(line.cells));
        m_doors.push_back(line.door);
        m_toolTips.push_back(std::move(line.toolTip));
    }
    SetEmptyText(emptyText);
    CellRows::Show(std::move(rows));
}

std::string OverviewList::GetToolTip(int column, std::int64_t row) const {
    return column == 0 ? m_toolTips.at(Record(row)) : std::string();
}

std::string OverviewList::GetTitle() const {
    return GetRowCount() == 0 ? m_title : m_title + " (" + groupedCount(GetRowCount()) + ")";
}

RunOverviewModel::RunOverviewModel(const std::locale& locale)
    : m_locale(locale),
      m_lists{OverviewList("Tables", {nameColumn("Table", 110), countColumn("Records", 80), countColumn("Change", 148),
                                      countColumn("Damaged", 90)}),
              OverviewList("Alerts and rules", {nameColumn("Condition", 185), listColumn("Table", 105),
                                                countColumn("Figure", 85), listColumn("Kind", 75)}),
              OverviewList("Findings", {nameColumn("Finding", 205), listColumn("Field", 105), countColumn("Rows", 65),
                                        listColumn("Likelihood", 95)}),
              OverviewList("Fields with nulls", {}),
              OverviewList("New and vanished",
                           {nameColumn("Name", 170), listColumn("Table", 150), listColumn("What", 125)})} {}

void RunOverviewModel::Fill(RunOverview overview, const std::string& reportTitle, int source) {
    m_overview = std::move(overview);
    m_reportTitle = reportTitle;
    const auto byId = [](const std::vector<RunOverview::Table>& tables) {
        TablesById found;
        for (const RunOverview::Table& table : tables)
            found[table.id] = &table;
        return found;
    };
    m_tables = byId(m_overview.tables);
    m_tablesBefore = byId(m_overview.tablesBefore);
    ShowSource(source);
}

void RunOverviewModel::ShowSource(int source) {
    const bool isKnown = std::any_of(m_overview.sources.begin(), m_overview.sources.end(),
                                     [source](const RunOverview::Source& each) { return each.id == source; });
    m_source = isKnown ? source : kAllSources;
    MakeTitle();
    MakeCards();
    FillTables();
    FillFindings();
    FillAlerts();
    FillNulls();
    FillNews();
}

bool RunOverviewModel::Shows(const RunOverview::Table& table) const {
    return m_source == kAllSources || table.source == m_source;
}

const RunOverview::Table* RunOverviewModel::FindTable(int table) const {
    const RunOverview::Table* found = findIn(m_tables, table);
    return found ? found : findIn(m_tablesBefore, table);
}

bool RunOverviewModel::ShowsTable(int table) const {
    const RunOverview::Table* found = FindTable(table);
    return found ? Shows(*found) : m_source == kAllSources;
}

std::string RunOverviewModel::NameOf(int table) const {
    const RunOverview::Table* found = FindTable(table);
    return found ? found->name : std::string();
}

void RunOverviewModel::MakeTitle() {
    std::string place;
    m_title = m_reportTitle;
    for (const RunOverview::Source& source : m_overview.sources) {
        if (source.id == m_source) {
            m_title = source.name;
            place = source.isOfFiles ? "text files" : "database";
        }
    }
    if (m_source == kAllSources && m_overview.sources.size() == 1)
        place = m_overview.sources.front().name;
    else if (m_source == kAllSources)
        place = countOf(static_cast<std::int64_t>(m_overview.sources.size()), "data source");
    m_detail = place;
    m_detail += kSeparator;
    m_detail += "run of " + m_overview.run.DateText(m_locale);
    if (!m_overview.run.description.empty())
        m_detail += ", " + m_overview.run.description;
    m_detail += kSeparator;
    m_detail += "took " + durationText(m_overview.seconds);
    m_detail += kSeparator;
    m_detail += m_overview.before ? "changes since " + m_overview.before->DateText(m_locale) : "the first run";
}

void RunOverviewModel::MakeCards() {
    m_cards.clear();
    AddCounts();
    AddTroubles();
    AddFindings();
}

// The figures that both runs have.
void RunOverviewModel::AddCounts() {
    const Count counts[] = {
        {"Records", &recordsOf},
        {"Tables", &one},
        {"Fields", [](const RunOverview::Table& table) { return table.fields; }},
        {"Damaged rows", [](const RunOverview::Table& table) { return table.damaged; }},
    };
    for (const Count& count : counts) {
        const auto sum = [&](const std::vector<RunOverview::Table>& tables, bool all) {
            std::int64_t total = 0;
            for (const RunOverview::Table& table : tables)
                total += all || Shows(table) ? count.of(table) : 0;
            return total;
        };
        const std::int64_t figure = sum(m_overview.tables, false);
        OverviewCard card;
        card.caption = count.caption;
        card.figure = groupedCount(figure);
        if (m_overview.before)
            card.change = changeText(sum(m_overview.tablesBefore, false), figure);
        if (m_source != kAllSources && m_overview.sources.size() > 1)
            card.ofRun = "of " + groupedCount(sum(m_overview.tables, true)) + " in the run";
        card.isAlarming = &count == std::end(counts) - 1 && figure > 0;
        const RunOverview::Table* most = nullptr;
        for (const RunOverview::Table& table : m_overview.tables) {
            if (Shows(table) && count.of(table) > 0 && (!most || count.of(table) > count.of(*most)))
                most = &table;
        }
        if (most) {
            card.door = {Place::Table, most->id};
            card.toolTip = "Opens " + most->name;
            if (count.caption != "Tables")
                card.toolTip += ", which has the most";
        }
        m_cards.push_back(std::move(card));
    }
}

void RunOverviewModel::AddTroubles() {
    OverviewCard alerts{.caption = "Alerts raised", .figure = {}, .change = {}, .ofRun = {}, .toolTip = {}, .door = {}};
    AlertCounts counts;
    for (const std::vector<AlertState>* some : {&m_overview.raisedAlerts, &m_overview.otherAlerts})
        for (const AlertState& alert : *some)
            if (ShowsTable(alert.tableId))
                counts.add(alert);
    const auto first = std::find_if(m_overview.raisedAlerts.begin(), m_overview.raisedAlerts.end(),
                                    [this](const AlertState& alert) { return ShowsTable(alert.tableId); });
    if (first != m_overview.raisedAlerts.end()) {
        alerts.door = {Place::Alerts, first->tableId};
        alerts.toolTip = "Opens the alerts of " + first->table;
    }
    alerts.figure = groupedCount(counts.raised());
    alerts.change = detailOf(counts);
    alerts.isAlarming = counts.raised() > 0;
    OverviewCard rules{.caption = "Rules violated", .figure = {}, .change = {}, .ofRun = {}, .toolTip = {}, .door = {}};
    std::int64_t violated = 0;
    std::int64_t rows = 0;
    for (const RunOverview::Rule& rule : m_overview.violatedRules) {
        if (!ShowsTable(rule.table))
            continue;
        if (violated++ == 0) {
            rules.door = {Place::Rule, rule.table, -1, rule.id};
            rules.toolTip = "Opens " + rule.name + " of " + NameOf(rule.table);
        }
        rows += rule.failed;
    }
    rules.figure = groupedCount(violated);
    rules.change = violated > 0 ? "by " + countOf(rows, "row") : std::string();
    rules.isAlarming = violated > 0;
    if (m_source != kAllSources && m_overview.sources.size() > 1) {
        alerts.ofRun = "of " + groupedCount(static_cast<std::int64_t>(m_overview.raisedAlerts.size())) + " in the run";
        rules.ofRun = "of " + groupedCount(static_cast<std::int64_t>(m_overview.violatedRules.size())) + " in the run";
    }
    m_cards.push_back(std::move(alerts));
    m_cards.push_back(std::move(rules));
}

void RunOverviewModel::AddFindings() {
    OverviewCard card{.caption = "Findings", .figure = {}, .change = {}, .ofRun = {}, .toolTip = {}, .door = {}};
    std::vector<FindingRecord> shown;
    for (const FindingRecord& finding : m_overview.findings) {
        if (!ShowsTable(finding.tableId))
            continue;
        if (shown.empty()) {
            card.door = doorOf(finding);
            card.toolTip = "Opens " + finding.place() + ": " + finding.title();
        }
        shown.push_back(finding);
    }
    card.figure = m_overview.isExamined ? groupedCount(static_cast<std::int64_t>(shown.size())) : "–";
    const std::string counts = findingCounts(shown);
    if (!m_overview.isExamined)
        card.change = kNotExamined;
    else if (const std::size_t colon = counts.find(": "); colon != std::string::npos)
        card.change = counts.substr(colon + 2);
    constexpr int kDefinite = 3;
    card.isAlarming = !shown.empty() && shown.front().likelihood == kDefinite;
    if (m_source != kAllSources && m_overview.sources.size() > 1 && m_overview.isExamined)
        card.ofRun = "of " + groupedCount(static_cast<std::int64_t>(m_overview.findings.size())) + " in the run";
    m_cards.push_back(std::move(card));
}

void RunOverviewModel::FillFindings() {
    std::vector<OverviewList::Line> lines;
    for (const FindingRecord& finding : m_overview.findings) {
        if (!ShowsTable(finding.tableId))
            continue;
        if (lines.size() == kMostNulls)
            break;
        GridCell likelihood = textCell(finding.likelihoodText());
        likelihood.order = formatInteger(finding.likelihood);
        lines.push_back(
            {{textCell(finding.title()), textCell(finding.place()),
              finding.rows > 0 ? countCell(finding.rows) : textCell({}, CellAlignment::Right), std::move(likelihood)},
             doorOf(finding)});
    }
    m_lists[Findings].Show(std::move(lines), m_overview.isExamined ? "The run gives nothing away."
                                                                   : "Not examined: the run is of an older version.");
}

void RunOverviewModel::FillTables() {
    std::vector<OverviewList::Line> lines;
    for (const RunOverview::Table& table : m_overview.tables) {
        if (!Shows(table))
            continue;
        const RunOverview::Table* before = findIn(m_tablesBefore, table.id);
        const bool isNew = m_overview.before && !before;
        lines.push_back({{nameCell(table.name, iconOf(table.kind), isNew ? "(new)" : ""), knownCountCell(table.records),
                          changeCell(before ? before->records : -1, table.records), countCell(table.damaged)},
                         {Place::Table, table.id}});
    }
    m_lists[Tables].Show(std::move(lines), "This run has no tables.");
}

void RunOverviewModel::FillAlerts() {
    std::vector<OverviewList::Line> lines;
    for (const AlertState& alert : m_overview.raisedAlerts) {
        if (!ShowsTable(alert.tableId))
            continue;
        lines.push_back({{nameCell(alert.condition(), CellIcon::None), textCell(alert.table), figureCell(alert),
                          textCell(alertLevelWord(alert.rule->level))},
                         doorOf(alert),
                         alertLines({&alert, 1}, m_locale)});
        lines.back().cells.front().alert = markOf(alert);
    }
    for (const RunOverview::Rule& rule : m_overview.violatedRules) {
        if (!ShowsTable(rule.table))
            continue;
        lines.push_back({{textCell(rule.name), textCell(NameOf(rule.table)), countCell(rule.failed), textCell("rule")},
                         {Place::Rule, rule.table, -1, rule.id}});
    }
    m_lists[Alerts].Show(std::move(lines), "No alert is raised, and no rule is violated.");
}

void RunOverviewModel::FillNulls() {
    // One wide table needs the room for the names of its fields.
    const bool isOneTable = std::count_if(m_overview.tables.begin(), m_overview.tables.end(),
                                          [this](const RunOverview::Table& table) { return Shows(table); }) == 1;
    std::vector<GridColumn> columns = {nameColumn("Field", 145), listColumn("Table", 115), countColumn("Nulls", 75),
                                       countColumn("Percentage", 105)};
    if (isOneTable)
        columns.erase(columns.begin() + 1);
    m_lists[Nulls].SetColumns(std::move(columns));
    std::vector<OverviewList::Line> lines;
    for (const RunOverview::Field& field : m_overview.fieldsWithNulls) {
        if (!ShowsTable(field.table))
            continue;
        if (lines.size() == kMostNulls)
            break;
        std::vector<GridCell> cells = {nameCell(field.name, CellIcon::Field), textCell(NameOf(field.table)),
                                       countCell(field.nulls), percentCell(field.nullPercent, field.nullPercent / 100)};
        if (isOneTable)
            cells.erase(cells.begin() + 1);
        lines.push_back({std::move(cells), {Place::Field, field.table, field.id}});
    }
    m_lists[Nulls].Show(std::move(lines), "No field has nulls.");
}

void RunOverviewModel::FillNews() {
    std::vector<OverviewList::Line> lines;
    const auto addTables = [&](const std::vector<RunOverview::Table>& tables, const TablesById& others,
                               std::string_view what, bool isOpen) {
        for (const RunOverview::Table& table : tables) {
            if (Shows(table) && !findIn(others, table.id))
                lines.push_back({{nameCell(table.name, iconOf(table.kind)), textCell({}), textCell(what)},
                                 isOpen ? OverviewDoor{Place::Table, table.id} : OverviewDoor{}});
        }
    };
    const auto addFields = [&](const std::vector<RunOverview::Field>& fields, std::string_view what, bool isOpen) {
        for (const RunOverview::Field& field : fields) {
            if (ShowsTable(field.table))
                lines.push_back({{nameCell(field.name, CellIcon::Field), textCell(NameOf(field.table)), textCell(what)},
                                 isOpen ? OverviewDoor{Place::Field, field.table, field.id}
                                        : OverviewDoor{Place::Table, field.table}});
        }
    };
    if (m_overview.before) {
        addTables(m_overview.tablesBefore, m_tables, "vanished table", false);
        addTables(m_overview.tables, m_tablesBefore, "new table", true);
        addFields(m_overview.vanishedFields, "vanished field", false);
        addFields(m_overview.newFields, "new field", true);
    }
    m_lists[News].Show(std::move(lines), m_overview.before ? "The same tables and fields as in the run before."
                                                           : "This is the first run.");
}

std::string durationText(double seconds) {
    constexpr std::int64_t kMinute = 60;
    constexpr std::int64_t kHour = 3600;
    if (!(seconds >= 0))
        seconds = 0;
    const std::int64_t whole = std::llround(std::min(seconds, 1e12));
    if (seconds < 10)
        return formatFixed(seconds, 1) + " s";
    if (whole < kMinute)
        return formatInteger(whole) + " s";
    if (whole < kHour)
        return formatInteger(whole / kMinute) + " min " + formatInteger(whole % kMinute) + " s";
    return groupedCount(whole / kHour) + " h " + formatInteger(whole % kHour / kMinute) + " min";
}

} // namespace tavix
