#include "profiling/FieldProfile.h"

#include "base/Characters.h"
#include "base/FreeMemory.h"
#include "base/TypeWords.h"
#include "profiling/DistributionOrder.h"
#include "profiling/FieldExamination.h"
#include "profiling/LargeIntegers.h"
#include "profiling/MergedDistribution.h"
#include "profiling/MetricValue.h"
#include "profiling/OrderStatistics.h"
#include "profiling/RunBuffer.h"
#include "profiling/TaskBatch.h"
#include "profiling/TaskFuture.h"
#include "profiling/ValueStatistics.h"
#include "profiling/ValueSurvey.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

namespace tavix::profiling {

namespace {

constexpr std::size_t kEntriesAtOnce = 4096;
constexpr std::size_t kWorthAThread = 10'000; ///< distinct values
/// When no text is longer, a block is full by its number of rows, whatever the texts are.
constexpr std::size_t kShortText = repository::kTextPerBlock / repository::kRowsPerBlock;
constexpr std::size_t kRowsPerTask = 16 * repository::kRowsPerBlock;
constexpr std::size_t kLeastMemory = std::size_t{64} << 10;

std::int64_t asInteger(std::uint64_t value) {
    return static_cast<std::int64_t>(value);
}

class FieldProfiler {
  public:
    FieldProfiler(ColumnValues& values, const std::string& name, int ordinal, const ProfilingContext& context)
        : m_values(values),
          m_context(context),
          m_part(std::max(context.memory / 4, kLeastMemory)),
          m_nulls(values.counter().nullCount()),
          m_survey(context.reading.dates) {
        m_ordered.now = context.now;
        m_figures.facts.name = name;
        m_figures.facts.ordinal = ordinal;
        m_figures.packed = std::make_unique<PackedResult>(context.store);
        m_figures.facts.packed = m_figures.packed.get();
    }

    Result<FieldProfile> compute() {
        if (Status status = m_values.isSpilled() ? workOnRuns() : workInMemory(); !status)
            return status.error();
        examine(m_figures, m_survey.detectors(), m_ordered);
        return std::move(m_figures);
    }

  private:
    void set(MetricId metric, KvbDatavar value) { m_figures.facts.metrics[index(metric)] = std::move(value); }

    Status workInMemory() {
        ValueCounter& counter = m_values.counter();
        counter.finish();
        const EntryList& entries = counter.entries();
        const unsigned threads = entries.size() > kWorthAThread ? m_context.threads : 1;
        std::vector<Keyed> spare;
        std::vector<Keyed> order;
        if (threads > 1)
            return workTogether(entries, order, spare, threads);
        if (Status status = surveyInMemory(entries); !status)
            return status;
        if (Status status = packHashes(entries, *m_figures.packed, m_context.stop); !status)
            return status;
        order = sortedByText(entries, spare, m_context.stop);
        {
            const ShownRows shown(entries, order, m_nulls);
            if (Status status = shown.pack(0, shown.size(), m_figures.packed->values, m_context.store, m_context.stop);
                !status)
                return status;
        }
        return figureByValue(entries, order, spare);
    }

    /// workInMemory() on several threads. Tasks that others wait for come first.
    Status workTogether(const EntryList& entries, std::vector<Keyed>& order, std::vector<Keyed>& spare,
                        unsigned threads) {
        std::optional<DividedTextSort> sorting;
        TaskFuture<DividedTextSort> deal([&] { return &sorting.emplace(entries, order, spare); });
        std::vector<std::function<Status()>> tasks{[&] { return deal.make(); },
                                                   [&] { return surveyInMemory(entries); }};
        for (std::size_t part = 0; part < DividedTextSort::kParts; ++part)
            tasks.emplace_back([&, part] {
                deal.get(m_context.stop).sortPart(part, m_context.stop);
                return Status{};
            });
        if (Status status = runTogether(tasks, threads, m_context.stop); !status)
            return status;
        return packTogether(entries, order, spare, threads);
    }

    /// Packs the hashes and, in parts of whole blocks, the values, and computes what follows from the order of the
    /// values.
    Status packTogether(const EntryList& entries, std::vector<Keyed>& order, std::vector<Keyed>& spare,
                        unsigned threads) {
        const std::size_t rows = ShownRows::count(entries, m_nulls);
        const bool hasParts = m_survey.longestBytes() <= kShortText;
        const std::size_t rowsAtOnce = hasParts ? kRowsPerTask : rows;
        std::vector<PackedRows> parts((rows + rowsAtOnce - 1) / rowsAtOnce);
        std::optional<ShownRows> inOrder;
        TaskFuture<ShownRows> show([&] { return &inOrder.emplace(entries, order, m_nulls); });
        std::vector<std::function<Status()>> tasks{
            [&] { return show.make(); }, [&] { return packHashes(entries, *m_figures.packed, m_context.stop); },
            [&] {
                show.get(m_context.stop); // it reads `order`, which figureByValue() changes
                return figureByValue(entries, order, spare);
            }};
        for (std::size_t i = 0; i < parts.size(); ++i)
            tasks.emplace_back([&, i] {
                const std::size_t first = i * rowsAtOnce;
                return show.get(m_context.stop)
                    .pack(first, std::min(rowsAtOnce, rows - first), parts[i], m_context.store, m_context.stop);
            });
        Status status = runTogether(tasks, threads, m_context.stop);
        for (PackedRows& part : parts)
            m_figures.packed->values.append(std::move(part));
        return status;
    }

    /// Computes the metrics that need the values in order. `order` is by text and is used up.
    Status figureByValue(const EntryList& entries, std::vector<Keyed>& order, std::vector<Keyed>& spare) {
        if (entries.empty())
            return {};
        if (m_reading)
            m_mode = mostFrequent(entries, order);
        if (m_form != KeyForm::None) {
            keyByValue(entries, order);
            // The texts of dates and of numbers of one length have the order of their values.
            if (!std::is_sorted(order.begin(), order.end(),
                                [](const Keyed& a, const Keyed& b) { return a.key < b.key; }))
                sortByKey(order, spare, m_context.stop);
            if (m_form == KeyForm::LargeInteger)
                orderLargeIntegers(order, entries);
        }
        freeMemory(spare);
        EntryWalk walk(entries, order);
        return figureInOrder(walk);
    }

    Status figureInOrder(ValueWalk& walk) {
        Status status = computeStatistics(m_figures.facts, walk, m_form, participants(), m_ordered, m_context.stop);
        if (m_reading)
            set(MetricId::Mode, m_mode.text); // it is one of all values, not only of those that fit
        return status;
    }

    /// The most frequent of the values; `byText` has them in the order of their texts.
    static KeptValue mostFrequent(const EntryList& entries, std::span<const Keyed> byText) {
        const auto most = std::max_element(byText.begin(), byText.end(), [&](const Keyed& a, const Keyed& b) {
            return a.countIn(entries) < b.countIn(entries);
        });
        return {0, most->countIn(entries), std::string(entries[most->index].text())};
    }

    /// Merges the values from the runs in the file.
    Status workOnRuns() {
        if (Status status = m_values.spill(m_context.file, m_context.stop); !status)
            return status;
        {
            RunBuffer hashes(m_context.file, RunOrder::Key, m_part, m_context.stop);
            RunBuffer byCount(m_context.file, RunOrder::Key, m_part, m_context.stop);
            RunWalk byText(m_values.runs(), m_context.file, m_part);
            if (Status status = walkRuns(byText, hashes, byCount); !status)
                return status;
            if (Status status = finishSurvey(); !status)
                return status;
            if (Status status = packMergedHashes(hashes, *m_figures.packed, merging()); !status)
                return status;
            const auto runs = byCount.finish();
            if (!runs)
                return runs.error();
            if (Status status = packMergedByCount(**runs, m_nulls, m_figures.packed->values, merging()); !status)
                return status;
        }
        RunWalk byText(m_values.runs(), m_context.file, m_part);
        if (m_form == KeyForm::None)
            return figureInOrder(byText);
        const RunOrder order = m_form == KeyForm::LargeInteger ? RunOrder::KeyInteger : RunOrder::Key;
        RunBuffer byValue(m_context.file, order, m_part, m_context.stop);
        if (Status status = fillByValue(byText, byValue); !status)
            return status;
        const auto runs = byValue.finish();
        if (!runs)
            return runs.error();
        RunWalk walk(**runs, m_context.file, m_part);
        return figureInOrder(walk);
    }

    Status surveyInMemory(const EntryList& entries) {
        for (std::span<const Entry> rest : entries.chunks())
            for (; !rest.empty(); rest = rest.subspan(std::min(kEntriesAtOnce, rest.size())))
                if (Status status = survey(rest.first(std::min(kEntriesAtOnce, rest.size()))); !status)
                    return status;
        return finishSurvey();
    }

    Status survey(std::span<const Entry> entries) {
        if (m_context.stop.isStopped())
            return StopSignal::stopped();
        m_survey.take(entries);
        ColumnValues& patterns = m_survey.patterns();
        if (patterns.counter().memory() > m_part)
            return patterns.spill(m_context.file, m_context.stop);
        return {};
    }

    Status walkRuns(ValueWalk& walk, RunBuffer& hashes, RunBuffer& byCount) {
        std::vector<Entry> entries;
        return forEachBatch(walk, m_context.stop, [&](std::span<const ValueWalk::Row> batch) {
            entries.clear();
            for (std::size_t i = 0; i < batch.size(); ++i) {
                const std::string_view text = walk.text(i);
                const std::uint64_t count = batch[i].count;
                entries.push_back({text.data(), count, static_cast<std::uint32_t>(text.size()), 0});
                if (count > m_mode.count)
                    m_mode = {0, count, std::string(text)};
                if (Status status = hashes.add({repository::hashValue(text), 1, {}}); !status)
                    return status;
                if (Status status = byCount.add({descendingKey(count), count, text}); !status)
                    return status;
            }
            return survey(entries);
        });
    }

    Status fillByValue(ValueWalk& walk, RunBuffer& byValue) {
        return forEachBatch(walk, m_context.stop, [&](std::span<const ValueWalk::Row> batch) -> Status {
            for (std::size_t i = 0; i < batch.size(); ++i) {
                const std::string_view text = walk.text(i);
                const auto key = keyIfUsed(text);
                if (!key)
                    continue;
                if (Status status = byValue.add({*key, batch[i].count, text}); !status)
                    return status;
            }
            return {};
        });
    }

    /// The key of a value that takes part in order and arithmetic; none for the others.
    [[nodiscard]] std::optional<std::uint64_t> keyIfUsed(std::string_view text) const {
        if (m_reading)
            return keyOf(text, m_form, *m_reading);
        return isBlank(text) ? std::nullopt : std::optional(keyOf(text, m_form));
    }

    /// Sets the keys of the values that count and removes the others.
    void keyByValue(const EntryList& entries, std::vector<Keyed>& order) const {
        // In the order of the entries, since their texts are next to each other in memory.
        std::vector<std::uint64_t> keys(entries.size());
        const bool hasOthers = m_reading ? m_figures.facts.breakdown->fitValues < entries.size()
                                         : m_survey.emptyRows() + m_survey.blankRows() > 0;
        std::vector<bool> isOther(hasOthers ? entries.size() : 0);
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const std::string_view text = entries[i].text();
            if (!hasOthers && !m_reading)
                keys[i] = keyOf(text, m_form);
            else if (const auto key = keyIfUsed(text))
                keys[i] = *key;
            else if (hasOthers)
                isOther[i] = true;
        }
        if (hasOthers)
            std::erase_if(order, [&](const Keyed& row) { return isOther[row.index]; });
        for (Keyed& row : order)
            row.key = keys[row.index];
    }

    [[nodiscard]] std::uint64_t participants() const {
        if (m_reading)
            return m_figures.facts.breakdown->fitRows;
        return m_form == KeyForm::None ? m_survey.rows()
                                       : m_survey.rows() - m_survey.emptyRows() - m_survey.blankRows();
    }

    /// Sets the breakdown, and what takes part in the figures of a field that has some though its type is text.
    void readColumn() {
        forms::ColumnReading column = m_survey.forms().read();
        repository::TypeBreakdown& breakdown = m_figures.facts.breakdown.emplace();
        breakdown.values = column.values;
        breakdown.rows = column.rows;
        for (forms::FormCount& form : column.forms)
            breakdown.forms.push_back({std::move(form.form), form.values, form.rows, std::move(form.example)});
        breakdown.fitValues = column.fitValues;
        breakdown.fitRows = column.fitRows;
        breakdown.ambiguity = column.ambiguity;
        if (!column.reading)
            return;
        breakdown.reading = column.reading->text();
        const bool mayHave = m_survey.kind() == forms::ValueKind::Text || column.reading->isEpoch;
        breakdown.hasFigures = mayHave && column.isRead(m_context.reading.leastPercent);
        if (!breakdown.hasFigures)
            return;
        m_form = keyForm(column);
        m_reading = column.reading;
    }

    [[nodiscard]] Merging merging() const { return {m_context.file, m_context.store, m_context.stop, m_part}; }

    /// Packs the patterns and sets the metrics that need no order.
    Status finishSurvey() {
        m_form = keyForm(m_survey.kind(), m_survey.fits64());
        readColumn();
        if (Status status = packCounted(m_survey.patterns(), m_figures.packed->patterns, merging()); !status)
            return status;
        const std::uint64_t rows = m_survey.rows() + m_nulls;
        set(MetricId::Count, asInteger(rows));
        set(MetricId::UniqueCount, asInteger(m_survey.values()));
        set(MetricId::NullCount, asInteger(m_nulls));
        set(MetricId::NonNullCount, asInteger(m_survey.rows()));
        set(MetricId::BlankCount, asInteger(m_survey.blankRows()));
        set(MetricId::PatternCount, m_figures.packed->patternRows());
        set(MetricId::Ordinal, m_figures.facts.ordinal);
        if (rows > 0) {
            const auto share = [&](std::uint64_t part) {
                return metricValue(100.0 * static_cast<double>(part) / static_cast<double>(rows));
            };
            set(MetricId::UniquePercent, share(m_survey.values()));
            set(MetricId::PercentNull, share(m_nulls));
        }
        if (const auto type = forms::typeOf(m_survey.kind())) {
            m_figures.facts.typeCode = static_cast<char>(*type);
            set(MetricId::ActualType, std::string(typeWord(*type)));
        }
        if (m_survey.values() > 0) {
            set(MetricId::MinimumLength, asInteger(m_survey.shortest()));
            set(MetricId::MaximumLength, asInteger(m_survey.longest()));
        }
        if (m_survey.kind() == forms::ValueKind::Text)
            m_figures.facts.histogram = m_survey.lengths();
        if (m_survey.kind() == forms::ValueKind::Real)
            set(MetricId::Precision, m_survey.decimalPlaces());
        return {};
    }

    ColumnValues& m_values;
    ProfilingContext m_context;
    std::size_t m_part;
    std::uint64_t m_nulls;
    ValueSurvey m_survey;
    KeyForm m_form = KeyForm::None;
    std::optional<forms::Reading> m_reading; ///< of the values that take part, if they are not those of the type
    KeptValue m_mode;                        ///< of all values
    findings::OrderedFigures m_ordered;
    FieldProfile m_figures;
};

} // namespace

std::size_t profilingMemory(const ColumnValues& values) {
    // Twice the keyed rows and their order; with several threads also twice the hashes and the keys. A part is for the
    // patterns, which are spilled beyond that.
    constexpr std::size_t kPerValue = 2 * sizeof(Keyed) + 3 * sizeof(std::uint64_t) + 2 * sizeof(std::uint32_t);
    return values.valuesInMemory() * kPerValue + kLeastMemory;
}

Result<FieldProfile> profileField(ColumnValues& values, const std::string& name, int ordinal,
                                  const ProfilingContext& context) {
    return FieldProfiler(values, name, ordinal, context).compute();
}

} // namespace tavix::profiling
