#include "support/SampleField.h"

#include "base/NumberText.h"
#include "base/TypeWords.h"
#include "pattern/tests/PatternOf.h"

#include <algorithm>
#include <map>

namespace tavix::testing {

namespace {

using repository::ValueCount;

bool shownBefore(const ValueCount& left, const ValueCount& right) {
    if (left.count != right.count)
        return left.count > right.count;
    if (left.isNull != right.isNull)
        return left.isNull;
    return left.value < right.value;
}

} // namespace

SampleField::SampleField(std::string name, int ordinal, char typeCode, const Values& values) {
    m_facts.name = std::move(name);
    m_facts.ordinal = ordinal;
    m_facts.typeCode = typeCode;
    std::map<std::string, std::uint64_t> patterns;
    for (const auto& [value, count] : values) {
        m_values.push_back({m_texts.emplace_back(value.view()), count, value.isNull()});
        if (!value.isNull())
            patterns[testing::patternOf(value.view())] += count;
    }
    for (const auto& [text, count] : patterns)
        m_patterns.push_back({m_texts.emplace_back(text), count, false});
    std::sort(m_values.begin(), m_values.end(), shownBefore);
    std::sort(m_patterns.begin(), m_patterns.end(), shownBefore);
    m_facts.values = m_values;
    m_facts.patterns = m_patterns;
    fillCounts();
    if (isNumericType(std::string_view(&typeCode, 1)))
        fillNumbers();
}

void SampleField::fillCounts() {
    std::int64_t all = 0;
    std::int64_t nulls = 0;
    std::int64_t distinct = 0;
    std::int64_t blanks = 0;
    std::size_t shortest = 0;
    std::size_t longest = 0;
    std::string_view smallest;
    std::string_view largest;
    for (const ValueCount& row : m_values) {
        auto count = static_cast<std::int64_t>(row.count);
        all += count;
        if (row.isNull) {
            nulls += count;
            continue;
        }
        if (!row.value.empty() && row.value.find_first_not_of(' ') == std::string_view::npos)
            blanks += count;
        bool first = distinct++ == 0;
        shortest = first ? row.value.size() : std::min(shortest, row.value.size());
        longest = std::max(longest, row.value.size());
        smallest = first ? row.value : std::min(smallest, row.value);
        largest = std::max(largest, row.value);
    }
    auto& metrics = m_facts.metrics;
    metrics[index(MetricId::Count)] = all;
    metrics[index(MetricId::UniqueCount)] = distinct;
    metrics[index(MetricId::NullCount)] = nulls;
    metrics[index(MetricId::NonNullCount)] = all - nulls;
    metrics[index(MetricId::BlankCount)] = blanks;
    metrics[index(MetricId::PatternCount)] = static_cast<std::int64_t>(m_patterns.size());
    metrics[index(MetricId::Ordinal)] = m_facts.ordinal;
    metrics[index(MetricId::DefinedType)] = "text";
    if (all > 0) {
        metrics[index(MetricId::UniquePercent)] = 100.0 * static_cast<double>(distinct) / static_cast<double>(all);
        metrics[index(MetricId::PercentNull)] = 100.0 * static_cast<double>(nulls) / static_cast<double>(all);
    }
    if (distinct == 0)
        return;
    metrics[index(MetricId::MinimumValue)] = std::string(smallest);
    metrics[index(MetricId::MaximumValue)] = std::string(largest);
    metrics[index(MetricId::MinimumLength)] = static_cast<std::int64_t>(shortest);
    metrics[index(MetricId::MaximumLength)] = static_cast<std::int64_t>(longest);
    metrics[index(MetricId::ActualType)] = std::string(typeWord(std::string_view(&m_facts.typeCode, 1)));
}

void SampleField::fillNumbers() {
    double sum = 0;
    double smallest = 0;
    double largest = 0;
    std::uint64_t numbers = 0;
    for (const ValueCount& row : m_values) {
        auto number = parseNumber(row.value);
        if (row.isNull || !number)
            continue;
        smallest = numbers == 0 ? *number : std::min(smallest, *number);
        largest = numbers == 0 ? *number : std::max(largest, *number);
        sum += *number * static_cast<double>(row.count);
        numbers += row.count;
    }
    if (numbers == 0)
        return;
    auto& metrics = m_facts.metrics;
    bool whole = m_facts.typeCode == 'I';
    auto value = [&](double number) { return whole ? KvbDatavar(saturateToInt64(number)) : KvbDatavar(number); };
    metrics[index(MetricId::MinimumValue)] = value(smallest);
    metrics[index(MetricId::MaximumValue)] = value(largest);
    metrics[index(MetricId::Mean)] = sum / static_cast<double>(numbers);
}

} // namespace tavix::testing
