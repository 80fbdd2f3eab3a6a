#pragma once

#include "repository/RunWriter.h"

#include <fmt/format.h>

#include <cstdlib>
#include <iostream>
#include <utility>

/// Helpers of the benchmarks that write a repository.
namespace tavix::bench {

template <typename T>
T need(Result<T> result) {
    if (!result) {
        std::cerr << result.error().text << '\n';
        std::exit(1);
    }
    return std::move(result).value();
}

inline void need(const Status& status) {
    if (!status) {
        std::cerr << status.error().text << '\n';
        std::exit(1);
    }
}

inline repository::FieldFacts fieldFacts(int number) {
    repository::FieldFacts field;
    field.name = fmt::format("field {}", number);
    field.ordinal = number + 1;
    field.typeCode = 'R';
    for (std::size_t metric = 0; metric < kMetricCount; ++metric)
        field.metrics[metric] = static_cast<std::int64_t>(1000 + metric);
    field.metrics[index(MetricId::Mean)] = 12.3456789 + number;
    field.metrics[index(MetricId::StandardDeviation)] = 0.1 + number;
    field.metrics[index(MetricId::StandardError)] = 0.01;
    field.metrics[index(MetricId::ActualType)] = "real";
    field.metrics[index(MetricId::DefinedType)] = "text";
    return field;
}

} // namespace tavix::bench
