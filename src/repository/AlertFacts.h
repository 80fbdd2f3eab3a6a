#pragma once

#include "base/AlertRule.h"
#include "base/Metrics.h"

#include <string>

namespace tavix::repository {

/// An alert that a job defines.
struct AlertFacts {
    std::string table; ///< of the run, by its display name
    AlertSubject subject = AlertSubject::StandardMetric;
    std::string field;                 ///< of a standard metric; empty for the table's first field
    MetricId metric = MetricId::Count; ///< of a standard metric
    std::string watched;               ///< the name of the custom metric or business rule
    AlertRule rule;
    std::string description; ///< for users; empty: the alert's sentence

    bool operator==(const AlertFacts&) const = default;
};

} // namespace tavix::repository
