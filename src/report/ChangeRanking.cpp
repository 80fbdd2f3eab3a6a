#include "report/ChangeRanking.h"

#include "base/Characters.h"
#include "base/Metrics.h"
#include "base/NullText.h"
#include "base/NumberText.h"
#include "report/CountText.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string_view>

namespace tavix {

namespace {

using Subject = RunChange::Subject;
using Kind = RunChange::Kind;

constexpr const char* kRecords = "Records";
constexpr std::size_t kExampleBytes = 40;
/// Nulls that account for this part of the moved values are the whole story.
constexpr double kNearlyAll = 0.95;

/// Equal up to rounding errors.
std::int64_t rankOf(double weight) {
    constexpr double kSteps = 1e6;
    return std::llround(weight * kSteps);
}

std::string percentText(double percent) {
    return formatFixed(percent, 2) + " %";
}

std::string signedText(const std::string& number) {
    return number.starts_with('-') ? number : "+" + number;
}

/// A value in one line.
std::string exampleText(const KvbString& text) {
    if (text.isNull())
        return std::string(kNullValue);
    std::string line = shortened(text.view(), kExampleBytes);
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return c < 0x20 || c == 0x7f; }, ' ');
    return '"' + line + '"';
}

bool concerns(const RunChange& change, MetricId metric) {
    return change.subject == Subject::Metric && change.item.view() == metricCatalogue()[index(metric)].name;
}

bool concernsAny(const RunChange& change, std::initializer_list<MetricId> metrics) {
    return std::any_of(metrics.begin(), metrics.end(), [&](MetricId metric) { return concerns(change, metric); });
}

std::string capitalized(std::string text) {
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

/// The item with a mark if it is a figure over the values that fit.
std::string itemText(const RunChange& change) {
    std::string text = change.item.str();
    if (const std::string_view mark = basisMark(change.basis); !mark.empty())
        text += " " + std::string(mark);
    return text;
}

std::string joined(const std::vector<std::string>& parts) {
    return fmt::format("{}", fmt::join(parts, ", "));
}

} // namespace

std::string figureText(const KvbDatavar& value) {
    if (const auto* whole = std::get_if<std::int64_t>(&value.storage()))
        return formatGrouped(*whole);
    if (const auto* real = std::get_if<double>(&value.storage()))
        return formatReadable(*real);
    return value.toText().str();
}

std::string differenceText(const RunChange& change) {
    const KvbDatavar difference = differenceOf(change);
    return difference.isNull() ? std::string() : signedText(figureText(difference));
}

std::string sharesText(const RunChange& change) {
    return fmt::format("{} \u2192 {}", formatFixed(change.percentBefore.value_or(0), 2),
                       percentText(change.percentAfter.value_or(0)));
}

ChangeRanking::Respect ChangeRanking::respectOf(const RunChange& change) {
    switch (change.subject) {
    case Subject::Table:
    case Subject::Field:
        return Respect::Whole;
    case Subject::Records:
        return Respect::Records;
    case Subject::CustomMetric:
    case Subject::Expression:
        return Respect::CustomMetric;
    case Subject::Rule:
    case Subject::Condition:
        return Respect::Rule;
    case Subject::Values:
    case Subject::Value:
        return Respect::Values;
    case Subject::Patterns:
    case Subject::Pattern:
        return Respect::Patterns;
    case Subject::Metric:
        break;
    }
    if (concernsAny(change, {MetricId::NullCount, MetricId::NonNullCount, MetricId::PercentNull}))
        return Respect::Nulls;
    if (concernsAny(change, {MetricId::ActualType, MetricId::DefinedType, MetricId::DefinedLength, MetricId::PrimaryKey,
                             MetricId::Nullable, MetricId::Ordinal}))
        return Respect::Type;
    return Respect::Figures;
}

ChangeRanking::Record& ChangeRanking::recordFor(Respect respect, const RunChange& change) {
    const auto isOfSubject = [&change](const Record& record) {
        return record.first.table == change.table && record.first.field == change.field;
    };
    if (m_subject < m_records.size() && !isOfSubject(m_records[m_subject]))
        m_subject = m_records.size();
    // Each rule and custom metric has a record of its own, and each number of records unless it is that of all.
    bool isShared = !change.field.empty();
    if (respect == Respect::Records && change.item.view() == kProcessedRecords && !m_records.empty()) {
        const RunChange& last = m_records.back().first;
        isShared = isOfSubject(m_records.back()) && last.before == change.before && last.after == change.after;
    }
    if (isShared)
        for (std::size_t i = m_subject; i < m_records.size(); ++i)
            if (m_records[i].respect == respect)
                return m_records[i];
    Record& made = m_records.emplace_back();
    made.respect = respect;
    made.first = change;
    return made;
}

void ChangeRanking::add(const RunChange& change) {
    ++m_size;
    if (change.followsRows)
        return follow(change);
    const Respect respect = respectOf(change);
    Record& record = recordFor(respect, change);
    ++record.changes;
    if (respect == Respect::Values || respect == Respect::Patterns)
        addText(record, change);
    else if (change.subject == Subject::Metric)
        addMetric(record, change);
}

void ChangeRanking::follow(const RunChange& change) {
    if (m_followers.empty() || m_followers.back().table != change.table)
        m_followers.push_back({change.table, {}, 0, 0});
    Followers& followers = m_followers.back();
    ++followers.changes;
    if (followers.lastField != change.field)
        ++followers.fields;
    followers.lastField = change.field;
}

void ChangeRanking::addText(Record& record, const RunChange& change) const {
    if (change.subject == Subject::Values || change.subject == Subject::Patterns) {
        Sum& sum = change.kind == Kind::New        ? record.appeared
                   : change.kind == Kind::Vanished ? record.vanished
                                                   : record.moved;
        sum.texts = (change.kind == Kind::New ? change.after : change.before).toInt64();
        sum.percent = (change.kind == Kind::New ? change.percentAfter : change.percentBefore).value_or(0);
        record.first.weight = change.weight;
        return;
    }
    const auto movesMore = [](const RunChange& a, const RunChange& b) { return rankOf(a.weight) > rankOf(b.weight); };
    const auto place = std::upper_bound(record.examples.begin(), record.examples.end(), change, movesMore);
    record.examples.insert(place, change);
    if (record.examples.size() > m_examples)
        record.examples.pop_back();
}

void ChangeRanking::addMetric(Record& record, const RunChange& change) {
    if (concerns(change, MetricId::NullCount))
        record.rowsDifference = differenceOf(change).toInt64();
    if (record.changes == 1)
        return;
    const bool isFirst = rankOf(change.weight) > rankOf(record.first.weight);
    const RunChange& other = isFirst ? record.first : change;
    if (!other.item.isNull())
        record.others.push_back(itemText(other));
    if (isFirst || concerns(change, MetricId::PercentNull))
        record.first = change;
}

RankedChange ChangeRanking::told(const Record& record) {
    const RunChange& first = record.first;
    RankedChange line{first.table, first.field, {}, {}, {}, {}, first.weight, record.changes};
    const auto named = [&](std::string_view noun) {
        line.what = first.kind == Kind::Changed
                        ? capitalized(std::string(noun))
                        : fmt::format("{} {}", first.kind == Kind::New ? "New" : "Vanished", noun);
        line.before = figureText(first.before);
        line.after = figureText(first.after);
        line.change = differenceText(first);
    };
    switch (record.respect) {
    case Respect::Whole:
        named(first.subject == Subject::Table ? "table" : "field");
        break;
    case Respect::Type:
    case Respect::Figures:
        named(itemText(first));
        if (!record.others.empty())
            line.change += fmt::format("{}also {}", line.change.empty() ? "" : "; ", joined(record.others));
        break;
    case Respect::Nulls:
        named(concerns(first, MetricId::PercentNull) ? "nulls" : first.item.view());
        if (!concerns(first, MetricId::PercentNull))
            break;
        line.before = percentText(first.before.toDouble());
        line.after = percentText(first.after.toDouble());
        line.change = signedText(formatFixed(first.after.toDouble() - first.before.toDouble(), 2)) + " points";
        if (record.rowsDifference != 0)
            line.change += fmt::format(", {} rows", signedText(formatGrouped(record.rowsDifference)));
        break;
    case Respect::Values:
    case Respect::Patterns: {
        line.what = record.respect == Respect::Values ? "Values" : "Patterns";
        std::vector<std::string> sums;
        for (const auto& [sum, word] : {std::pair{&record.appeared, "new"}, std::pair{&record.vanished, "vanished"}})
            if (sum->texts > 0)
                sums.push_back(fmt::format("{} {} ({})", formatGrouped(sum->texts), word, percentText(sum->percent)));
        if (record.moved.texts > 0)
            sums.push_back(fmt::format("{} moved", formatGrouped(record.moved.texts)));
        line.change = joined(sums);
        std::vector<std::string> examples;
        for (const RunChange& example : record.examples)
            examples.push_back(exampleText(example.item) + ' ' + sharesText(example));
        if (!examples.empty())
            line.change += ": " + joined(examples);
        break;
    }
    case Respect::Rule:
    case Respect::CustomMetric: {
        const bool isDefinition = first.subject == Subject::Expression || first.subject == Subject::Condition;
        const bool isRule = record.respect == Respect::Rule;
        named(isDefinition ? (isRule ? "condition" : "expression") : (isRule ? "rule" : "custom metric"));
        line.what += fmt::format(" {}", exampleText(first.item));
        if (isRule && !isDefinition && first.kind == Kind::Changed)
            line.change = sharesText(first) + " of the rows";
        break;
    }
    case Respect::Records:
        named(first.item.view() == kTotalRecords ? kRecords : first.item.view());
        if (const double was = first.before.toDouble(); was > 0)
            line.change += fmt::format(" ({})", signedText(percentText(100 * (first.after.toDouble() - was) / was)));
        break;
    }
    return line;
}

/// Nulls that replace or are replaced by values move these values as well, and change the number of rows with a
/// pattern.
bool ChangeRanking::isToldByNulls(const Record& record, const Record& nulls) {
    const double weight = nulls.first.weight;
    if (nulls.respect != Respect::Nulls || rankOf(weight) == 0)
        return false;
    return record.respect == Respect::Values ? weight >= kNearlyAll * record.first.weight
                                             : record.respect == Respect::Patterns && rankOf(record.first.weight) == 0;
}

std::vector<ChangeRanking::Record> ChangeRanking::withoutRepetitions() const {
    std::vector<Record> kept;
    for (const Record& record : m_records) {
        // The records of a field are next to each other, its metrics before its values.
        auto nulls = kept.rbegin();
        while (nulls != kept.rend() && nulls->first.field == record.first.field &&
               nulls->first.table == record.first.table && nulls->respect != Respect::Nulls)
            ++nulls;
        const bool isOfField = nulls != kept.rend() && nulls->first.field == record.first.field &&
                               nulls->first.table == record.first.table;
        if (isOfField && isToldByNulls(record, *nulls))
            nulls->changes += record.changes;
        else
            kept.push_back(record);
    }
    return kept;
}

void ChangeRanking::tellFollowers(std::vector<RankedChange>& lines) const {
    for (const Followers& followers : m_followers) {
        auto line = std::find_if(lines.begin(), lines.end(), [&](const RankedChange& each) {
            return each.table == followers.table && each.field.empty() &&
                   (each.what == kRecords || each.what == kProcessedRecords);
        });
        if (line == lines.end()) {
            lines.push_back({followers.table, {}, kRecords, {}, {}, {}, 0, 0});
            line = lines.end() - 1;
        }
        line->changes += followers.changes;
        if (followers.fields > 0)
            line->change += fmt::format("{}counts of {} follow", line->change.empty() ? "" : "; ",
                                        countOf(followers.fields, "field"));
    }
}

std::vector<RankedChange> ChangeRanking::ranked() const {
    std::vector<Record> records = withoutRepetitions();
    std::stable_sort(records.begin(), records.end(), [](const Record& a, const Record& b) {
        const auto first = rankOf(a.first.weight);
        const auto second = rankOf(b.first.weight);
        return first != second ? first > second : a.respect < b.respect;
    });
    std::vector<RankedChange> lines;
    lines.reserve(records.size());
    for (const Record& record : records)
        lines.push_back(told(record));
    tellFollowers(lines);
    return lines;
}

} // namespace tavix
