#include "profiling/FieldFigures.h"

#include "pattern/CharacterPattern.h"
#include "profiling/OrderedNumbers.h"
#include "profiling/ValueKind.h"
#include "profiling/ValueOrder.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace tavix::profiling {

namespace {

using repository::FieldFacts;
using repository::Outlier;
using repository::OutlierSide;
using repository::ValueCount;

constexpr std::array<unsigned, 15> kIntervals = {1, 5, 10, 20, 25, 30, 40, 50, 60, 70, 75, 80, 90, 95, 99};

struct KindInfo {
    ValueKind kind;
    char code;
    const char* word;
};

constexpr std::array<KindInfo, 5> kKinds = {{{ValueKind::Text, 'S', "text"},
                                             {ValueKind::Integer, 'I', "integer"},
                                             {ValueKind::Real, 'R', "real"},
                                             {ValueKind::Date, 'D', "date"},
                                             {ValueKind::Boolean, 'B', "boolean"}}};

bool isNumber(ValueKind kind) {
    return kind == ValueKind::Integer || kind == ValueKind::Real;
}

/// The narrowest kind that holds what is of kind `a` and what is of kind `b`.
ValueKind join(ValueKind a, ValueKind b) {
    if (a == b || b == ValueKind::None)
        return a;
    if (a == ValueKind::None)
        return b;
    return isNumber(a) && isNumber(b) ? ValueKind::Real : ValueKind::Text;
}

std::uint32_t codePoints(std::string_view text) {
    return static_cast<std::uint32_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; }));
}

std::int64_t asInteger(std::uint64_t value) {
    return static_cast<std::int64_t>(value);
}

/// What one walk over the distinct values finds out.
struct Survey {
    ValueKind kind = ValueKind::None;
    std::uint64_t rows = 0; ///< without null
    std::uint64_t blankRows = 0;
    std::uint32_t shortest = 0;
    std::uint32_t longest = 0;
};

Survey survey(Entries entries, ValueCounter& patterns) {
    Survey found;
    found.shortest = entries.empty() ? 0 : UINT32_MAX;
    std::string buffer;
    for (const ValueCounter::Entry& entry : entries) {
        const std::string_view text = entry.text();
        found.rows += entry.count;
        const std::uint32_t length = codePoints(text);
        found.shortest = std::min(found.shortest, length);
        found.longest = std::max(found.longest, length);
        if (isBlank(text))
            found.blankRows += entry.count;
        if (found.kind != ValueKind::Text)
            found.kind = join(found.kind, kindOf(text));
        buffer.clear();
        pattern::appendCharacterPattern(buffer, text);
        patterns.add(buffer, entry.count);
    }
    return found;
}

std::vector<ValueCount> distribution(Entries entries, std::span<const std::uint32_t> order, std::uint64_t nullCount) {
    std::vector<ValueCount> rows;
    rows.reserve(order.size() + 1);
    bool isNullPlaced = nullCount == 0;
    for (const std::uint32_t index : order) {
        if (!isNullPlaced && entries[index].count <= nullCount) {
            rows.push_back({{}, nullCount, true});
            isNullPlaced = true;
        }
        rows.push_back({entries[index].text(), entries[index].count, false});
    }
    if (!isNullPlaced)
        rows.push_back({{}, nullCount, true});
    return rows;
}

/// Figures that follow from the values in their order: minimum to percentiles and outliers.
class OrderFigures {
  public:
    OrderFigures(FieldFacts& facts, Entries entries, std::span<const std::uint32_t> order, ValueKind kind)
        : m_facts(facts), m_entries(entries), m_order(order), m_ranks(entries, order) {
        if (isNumber(kind))
            m_numbers.emplace(entries, order, kind);
    }

    void compute() {
        set(MetricId::MinimumValue, textAt(0));
        set(MetricId::MaximumValue, textAt(m_order.size() - 1));
        set(MetricId::Mode, textAt(modePlace()));
        set(MetricId::Median, quantile(50));
        m_facts.quantileRule = m_numbers ? kLinearRule : kNearestRule;
        for (const unsigned percent : kIntervals)
            m_facts.percentiles.push_back({fmt::format("{}%", percent), quantile(percent).toText()});
        if (m_numbers)
            setMoments();
        addOutliers(OutlierSide::Low);
        addOutliers(OutlierSide::High);
    }

  private:
    void set(MetricId metric, KvbDatavar value) { m_facts.metrics[index(metric)] = std::move(value); }
    [[nodiscard]] const ValueCounter::Entry& entryAt(std::size_t place) const { return m_entries[m_order[place]]; }
    [[nodiscard]] std::string textAt(std::size_t place) const { return std::string(entryAt(place).text()); }

    [[nodiscard]] KvbDatavar quantile(unsigned percent) const {
        return m_numbers ? m_numbers->quantile(percent) : KvbDatavar(textAt(m_ranks.nearest(percent)));
    }

    [[nodiscard]] std::size_t modePlace() const {
        std::size_t mode = 0;
        for (std::size_t place = 1; place < m_order.size(); ++place)
            if (entryAt(place).count > entryAt(mode).count)
                mode = place;
        return mode;
    }

    void setMoments() {
        set(MetricId::Mean, m_numbers->mean());
        if (const auto deviation = m_numbers->deviation()) {
            set(MetricId::StandardDeviation, numberFigure(*deviation));
            set(MetricId::StandardError, numberFigure(*deviation / std::sqrt(static_cast<double>(m_ranks.total()))));
        }
    }

    void addOutliers(OutlierSide side) {
        const std::size_t count = std::min(kOutliersPerSide, m_order.size());
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t place = side == OutlierSide::Low ? i : m_order.size() - 1 - i;
            const auto fence = m_numbers ? m_numbers->fenceOf(place) : repository::Fence::Inside;
            m_facts.outliers.push_back(
                {side, static_cast<int>(i), KvbString(entryAt(place).text()), entryAt(place).count, fence});
        }
    }

    FieldFacts& m_facts;
    Entries m_entries;
    std::span<const std::uint32_t> m_order;
    Ranks m_ranks;
    std::optional<OrderedNumbers> m_numbers;
};

} // namespace

FieldFigures computeFigures(const ValueCounter& counter, const std::string& name, int ordinal) {
    FieldFigures figures;
    const Entries entries = counter.entries();
    const Survey found = survey(entries, figures.patternCounter);
    figures.patternCounter.finish();
    const Entries patterns = figures.patternCounter.entries();
    const std::uint64_t rows = found.rows + counter.nullCount();

    FieldFacts& facts = figures.facts;
    facts.name = name;
    facts.ordinal = ordinal;
    const auto set = [&](MetricId metric, KvbDatavar value) { facts.metrics[index(metric)] = std::move(value); };
    set(MetricId::Count, asInteger(rows));
    set(MetricId::UniqueCount, asInteger(entries.size()));
    set(MetricId::NullCount, asInteger(counter.nullCount()));
    set(MetricId::NonNullCount, asInteger(found.rows));
    set(MetricId::BlankCount, asInteger(found.blankRows));
    set(MetricId::PatternCount, asInteger(patterns.size()));
    set(MetricId::Ordinal, ordinal);
    if (rows > 0) {
        const auto share = [&](std::uint64_t part) {
            return numberFigure(100.0 * static_cast<double>(part) / static_cast<double>(rows));
        };
        set(MetricId::UniquePercent, share(entries.size()));
        set(MetricId::PercentNull, share(counter.nullCount()));
    }
    if (const auto* kind =
            std::find_if(kKinds.begin(), kKinds.end(), [&](const KindInfo& info) { return info.kind == found.kind; });
        kind != kKinds.end()) {
        facts.typeCode = kind->code;
        set(MetricId::ActualType, kind->word);
    }

    const std::vector<std::uint32_t> byText = orderByText(entries);
    figures.values = distribution(entries, orderByCount(entries, byText), counter.nullCount());
    figures.patterns = distribution(patterns, orderByCount(patterns, orderByText(patterns)), 0);
    facts.values = figures.values;
    facts.patterns = figures.patterns;
    if (entries.empty())
        return figures;

    set(MetricId::MinimumLength, std::int64_t{found.shortest});
    set(MetricId::MaximumLength, std::int64_t{found.longest});
    const std::vector<std::uint32_t> byValue = orderByValue(entries, byText, found.kind);
    OrderFigures(facts, entries, byValue, found.kind).compute();
    if (found.kind == ValueKind::Real) {
        std::int64_t places = 0;
        for (const std::uint32_t i : byValue)
            places = std::max(places, decimalPlaces(entries[i].text()));
        set(MetricId::Precision, places);
    }
    return figures;
}

} // namespace tavix::profiling
