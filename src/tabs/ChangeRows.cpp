#include "tabs/ChangeRows.h"

#include "base/Metrics.h"
#include "base/NumberText.h"
#include "report/CountText.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <optional>
#include <tuple>

namespace tavix {

namespace {

using Subject = RunChange::Subject;
using Kind = RunChange::Kind;

constexpr double kPercent = 100;
constexpr const char* kFollows = "follows from the records";
constexpr const char* kShareTip =
    "The smallest share of the rows that explains the change. What follows from the number of records alone has none.";

GridColumn restColumn(std::string_view heading, int width) {
    GridColumn column = listColumn(heading, width);
    column.takesRest = true;
    return column;
}

GridColumn shareColumn() {
    GridColumn column = listColumn("Share", 90, CellAlignment::Right);
    column.mark = "% of the rows";
    column.toolTip = kShareTip;
    return column;
}

GridCell figureCell(std::string_view text) {
    return textCell(text, CellAlignment::Right);
}

/// A weight; sorted by all its digits.
GridCell shareCell(double weight, double bar) {
    GridCell cell = percentCell(weight, bar);
    cell.order = formatReal(weight);
    return cell;
}

std::string_view nounOf(Subject subject) {
    switch (subject) {
    case Subject::Value:
    case Subject::Values:
        return "value";
    case Subject::Pattern:
    case Subject::Patterns:
        return "pattern";
    default:
        return "metric";
    }
}

std::string_view adjectiveOf(Kind kind) {
    switch (kind) {
    case Kind::New:
        return "New";
    case Kind::Vanished:
        return "Vanished";
    case Kind::Changed:
        break;
    }
    return "Moved";
}

bool isText(const RunChange& change) {
    return change.subject == Subject::Value || change.subject == Subject::Pattern;
}

bool isSum(const RunChange& change) {
    return change.subject == Subject::Values || change.subject == Subject::Patterns;
}

std::string whatText(const RunChange& change) {
    if (!isText(change))
        return change.subject == Subject::Field ? (change.kind == Kind::New ? "New field" : "Vanished field")
                                                : "Metric";
    return fmt::format("{} {}", adjectiveOf(change.kind), nounOf(change.subject));
}

/// A number of rows, or a metric of the field.
GridCell sideCell(const RunChange& change, const KvbDatavar& value) {
    return figureCell(isText(change) && value.isNull() ? "0" : figureText(value));
}

std::string changeText(const RunChange& change) {
    if (isText(change))
        return sharesText(change);
    return differenceText(change);
}

/// The shares of both runs, for percentages and rows that have a value.
GridCell barCell(const RunChange& change) {
    GridCell cell;
    std::optional<double> before = change.percentBefore;
    std::optional<double> after = change.percentAfter;
    const auto isMetric = [&change](MetricId metric) {
        return change.item.view() == metricCatalogue()[index(metric)].name;
    };
    if (change.subject == Subject::Metric && (isMetric(MetricId::UniquePercent) || isMetric(MetricId::PercentNull))) {
        before = change.before.toDouble();
        after = change.after.toDouble();
    } else if (!isText(change)) {
        return cell;
    }
    cell.barBefore = std::clamp(before.value_or(0) / kPercent, 0.0, 1.0);
    cell.bar = std::clamp(after.value_or(0) / kPercent, 0.0, 1.0);
    cell.order = formatReal(after.value_or(0));
    return cell;
}

/// "3 new values, 1,204 moved patterns (1,000 listed)".
std::string sumText(const RunChange& sum, std::int64_t listed) {
    const std::int64_t texts = (sum.kind == Kind::New ? sum.after : sum.before).toInt64();
    std::string word(adjectiveOf(sum.kind));
    word.front() = static_cast<char>(word.front() - 'A' + 'a');
    std::string text = countOf(texts, fmt::format("{} {}", word, nounOf(sum.subject)));
    if (listed < texts)
        text += fmt::format(" ({} listed)", groupedCount(listed));
    return text;
}

enum TableColumns { TableField, TableWhat, TableBefore, TableAfter, TableChange, TableShare };
enum FieldColumns { FieldWhat, FieldItem, FieldBefore, FieldAfter, FieldChange, FieldBars, FieldShare };

} // namespace

void ChangeRows::ShowNone(std::string_view why) {
    SetEmptyText(why);
    Clear();
}

bool ChangeRows::Refuse(std::string_view reason) {
    return Fail("Error occurred while comparing two runs:", reason);
}

TableChangeRows::TableChangeRows()
    : ChangeRows({listColumn("Field", 160), listColumn("What", 180), listColumn("Before", 100, CellAlignment::Right),
                  listColumn("After", 100, CellAlignment::Right), restColumn("Change", 260), shareColumn()}) {}

void TableChangeRows::Show(std::vector<RankedChange> changes, FieldIds fields, bool namesTables) {
    m_changes = std::move(changes);
    m_fields = std::move(fields);
    m_namesTables = namesTables;
    ShowRecords(m_changes.size());
}

void TableChangeRows::Clear() {
    Show({}, {}, false);
}

int TableChangeRows::GetFieldId(std::int64_t row) const {
    const RankedChange& change = m_changes.at(Record(row));
    const auto found = m_fields.find({change.table, change.field});
    return found == m_fields.end() ? -1 : found->second;
}

GridCell TableChangeRows::CellOf(int column, std::size_t record) const {
    const RankedChange& change = m_changes[record];
    switch (column) {
    case TableField: {
        const bool isTable = change.field.empty();
        GridCell cell = textCell(isTable         ? change.table
                                 : m_namesTables ? fmt::format("{}.{}", change.table, change.field)
                                                 : change.field);
        cell.icon = isTable ? CellIcon::Table : CellIcon::Field;
        return cell;
    }
    case TableWhat:
        return textCell(change.what);
    case TableBefore:
        return figureCell(change.before);
    case TableAfter:
        return figureCell(change.after);
    case TableChange:
        return textCell(change.change);
    default:
        return shareCell(change.weight, change.weight / kPercent);
    }
}

FieldChangeRows::FieldChangeRows()
    : ChangeRows({listColumn("What", 120), restColumn("Item", 180), listColumn("Before", 100, CellAlignment::Right),
                  listColumn("After", 100, CellAlignment::Right), listColumn("Change", 140, CellAlignment::Right),
                  listColumn("Both Runs", 140), shareColumn()}) {
    SetToolTip(FieldBars, "The share of the rows in both runs: the earlier above the later");
}

void FieldChangeRows::Show(std::vector<RunChange> changes) {
    std::vector<std::string> sums;
    for (const RunChange& sum : changes) {
        if (!isSum(sum))
            continue;
        const Subject one = sum.subject == Subject::Values ? Subject::Value : Subject::Pattern;
        sums.push_back(sumText(sum, std::count_if(changes.begin(), changes.end(), [&](const RunChange& each) {
                                   return each.subject == one && each.kind == sum.kind;
                               })));
    }
    m_summary = fmt::format("{}", fmt::join(sums, ", "));
    std::erase_if(changes, isSum);
    std::stable_sort(changes.begin(), changes.end(), [](const RunChange& a, const RunChange& b) {
        const auto group = [](const RunChange& change) {
            return std::tuple(isText(change) ? static_cast<int>(change.subject) : 0,
                              !isText(change) && change.followsRows, -change.weight);
        };
        return group(a) < group(b);
    });
    m_changes = std::move(changes);
    ShowRecords(m_changes.size());
}

void FieldChangeRows::Clear() {
    Show({});
}

GridCell FieldChangeRows::CellOf(int column, std::size_t record) const {
    const RunChange& change = m_changes[record];
    switch (column) {
    case FieldWhat:
        return textCell(whatText(change));
    case FieldItem: {
        GridCell cell = isText(change) ? valueCell(change.item) : textCell(change.item.view());
        cell.mark = basisMark(change.basis);
        if (!isText(change) && change.followsRows)
            cell.mark += (cell.mark.empty() ? "" : " ") + std::string(kFollows);
        return cell;
    }
    case FieldBefore:
        return sideCell(change, change.before);
    case FieldAfter:
        return sideCell(change, change.after);
    case FieldChange:
        return figureCell(changeText(change));
    case FieldBars:
        return barCell(change);
    default:
        return shareCell(change.followsRows ? 0 : change.weight, kNoBar);
    }
}

} // namespace tavix
