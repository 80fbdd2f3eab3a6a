#pragma once

#include <string>

namespace tavix::testing {

struct SampleRepository;

/// Gives "customers", in every run of "Sales", the custom metrics "Spread" and "Margin" (with the values 10 and 20 plus
/// the run's number, from 0) and the rules "Name is known" and "Balance is positive".
void addRules(const SampleRepository& sample);
/// The library's id of the metric or rule of that name. Throws std::out_of_range for any other.
[[nodiscard]] int ruleId(const std::string& name);

} // namespace tavix::testing
