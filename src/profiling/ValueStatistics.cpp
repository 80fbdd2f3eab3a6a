#include "profiling/ValueStatistics.h"

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

/// Needs a second walk over the values unless there is only one row.
Status setMoments(repository::FieldFacts& facts, Moments& moments, ValueWalk& walk, std::uint64_t rows,
                  StopSignal& stop) {
    set(facts, MetricId::Mean, moments.mean());
    if (rows < 2)
        return {};
    const auto add = [&](std::span<const ValueWalk::Row> batch) {
        moments.addToDeviation(batch);
        return Status{};
    };
    if (Status status = forEachBatch(walk, stop, add); !status)
        return status;
    if (const auto deviation = moments.deviation()) {
        set(facts, MetricId::StandardDeviation, metricValue(*deviation));
        set(facts, MetricId::StandardError, metricValue(*deviation / std::sqrt(static_cast<double>(rows))));
    }
    return {};
}

} // namespace

Status computeStatistics(repository::FieldFacts& facts, ValueWalk& walk, KeyForm form, std::uint64_t rows,
                         StopSignal& stop) {
    OrderStatistics order(form, rows);
    Moments moments(form, rows);
    KeptValue mode;
    const auto add = [&](std::span<const ValueWalk::Row> batch) {
        order.add(walk, batch);
        for (std::size_t i = 0; i < batch.size(); ++i)
            if (batch[i].count > mode.count)
                mode = keptValue(walk, batch, i);
        if (isNumber(form))
            moments.addToMean(batch);
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
    return isNumber(form) ? setMoments(facts, moments, walk, rows, stop) : Status{};
}

} // namespace tavix::profiling
