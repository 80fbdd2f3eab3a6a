#pragma once

#include "base/AlertRule.h"
#include "base/Metrics.h"

#include <string>

namespace tavix::testing {

struct SampleRepository;

/// Makes an alert of the user "anna" on a metric of a field of "Sales", "customers/name", in a session of its own, and
/// returns its id. Throws std::runtime_error when it cannot.
int addAlert(const SampleRepository& sample, const std::string& field, MetricId metric, const AlertRule& rule);

/// Mutes the alert from the run on that "Sales" shows first, its latest.
void muteAlert(const SampleRepository& sample, int alert);

} // namespace tavix::testing
