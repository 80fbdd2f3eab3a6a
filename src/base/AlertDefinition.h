#pragma once

#include "base/AlertRule.h"
#include "base/Metrics.h"

#include <string>

namespace tavix {

/// An alert as a user makes it: the figure that it watches, by the ids of the repository, and its rule.
struct AlertDefinition {
    int table = -1;
    AlertSubject subject = AlertSubject::StandardMetric;
    int field = -1;                    ///< of a standard metric; -1: the records of the table
    MetricId metric = MetricId::Count; ///< of a standard metric
    int watched = -1;                  ///< the custom metric or rule
    AlertRule rule;
    std::string description; ///< for users; empty: the condition in words

    bool operator==(const AlertDefinition&) const = default;
};

} // namespace tavix
