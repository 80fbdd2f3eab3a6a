#include "profiling/ValueStatistics.h"

#include "base/Histogram.h"
#include "profiling/MetricValue.h"
#include "profiling/Moments.h"
#include "profiling/OrderStatistics.h"
#include "profiling/OutlierFences.h"

#include <fmt/format.h>

#include <cmath>
#include <span>
#include <utility>

namespace tavix::profiling {

namespace {

void set(repository::FieldFacts& facts, MetricId metric, KvbDatavar value) {
    facts.metrics[index(metric)] = std::move(value);
}

/// Needs a second walk over the values.
Status setMoments(repository::FieldFacts& facts, Moments& moments, NumberBins& bins, ValueWalk& walk, KeyForm form,
                  StopSignal& stop) {
    set(facts, MetricId::Mean, moments.mean());
    std::uint64_t rows = 0;
    const auto add = [&](std::span<const ValueWalk::Row> batch) {
        moments.addToDeviation(batch);
        for (const ValueWalk::Row& row : batch) {
            bins.add(numberOfKey(row.key, form), row.count);
            rows += row.count;
        }
        return Status{};
    };
    if (Status status = forEachBatch(walk, stop, add); !status)
        return status;
    facts.histogram = bins.take();
    if (const auto deviation = moments.deviation()) {
        set(facts, MetricId::StandardDeviation, metricValue(*deviation));
        set(facts, MetricId::StandardError, metricValue(*deviation / std::sqrt(static_cast<double>(rows))));
    }
    return {};
}

/// Passes the values on to what examines them in order.
class Examination {
  public:
    Examination(findings::OrderedFigures& ordered, KeyForm form) : m_ordered(ordered), m_form(form) {
        if (isNumber(form))
            ordered.numbers.emplace();
        else if (form == KeyForm::Date)
            ordered.dates.emplace(ordered.now);
    }
    void take(const ValueWalk& walk, std::span<const ValueWalk::Row> batch) {
        if (m_form == KeyForm::Integer)
            for (const ValueWalk::Row& row : batch)
                m_ordered.numbers->takeInteger(integerOfKey(row.key), row.count);
        else if (m_ordered.numbers)
            for (const ValueWalk::Row& row : batch)
                m_ordered.numbers->takeReal(doubleOfKey(row.key), row.count);
        else if (m_ordered.dates)
            for (std::size_t i = 0; i < batch.size(); ++i)
                m_ordered.dates->take(integerOfKey(batch[i].key), batch[i].count, walk.text(i));
    }

  private:
    findings::OrderedFigures& m_ordered;
    KeyForm m_form;
};

} // namespace

Status computeStatistics(repository::FieldFacts& facts, ValueWalk& walk, KeyForm form, std::uint64_t rows,
                         findings::OrderedFigures& ordered, StopSignal& stop) {
    OrderStatistics order(form, rows);
    Moments moments(form, rows);
    DateBins dates;
    KeptValue mode;
    Examination examination(ordered, form);
    const auto add = [&](std::span<const ValueWalk::Row> batch) {
        order.add(walk, batch);
        examination.take(walk, batch);
        for (std::size_t i = 0; i < batch.size(); ++i)
            if (batch[i].count > mode.count)
                mode = keptValue(walk, batch, i);
        if (isNumber(form))
            moments.addToMean(batch);
        if (form == KeyForm::Date)
            for (const ValueWalk::Row& row : batch)
                dates.add(integerOfKey(row.key), row.count);
        return Status{};
    };
    if (Status status = forEachBatch(walk, stop, add); !status)
        return status;
    set(facts, MetricId::MinimumValue, order.lowest().front().text);
    set(facts, MetricId::MaximumValue, order.highest().back().text);
    set(facts, MetricId::Mode, mode.text);
    set(facts, MetricId::Median, order.percentile(50));
    facts.quantileRule = order.percentileRule();
    for (const unsigned percent : OrderStatistics::kPercents)
        facts.percentiles.push_back({fmt::format("{}%", percent), order.percentile(percent).toText()});
    facts.outliers = outliersOf(order, form);
    if (form == KeyForm::Date)
        facts.histogram = dates.take();
    if (!isNumber(form))
        return {};
    NumberBins bins(numberOfKey(order.lowest().front().key, form), numberOfKey(order.highest().back().key, form),
                    form != KeyForm::Double);
    return setMoments(facts, moments, bins, walk, form, stop);
}

} // namespace tavix::profiling
