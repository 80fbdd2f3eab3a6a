#pragma once

#include "report/AlertBackTest.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace tavix::testing {

/// Judges a run as a person would: from all earlier runs, walked one by one.
inline AlertVerdict::State judgeSlowly(const AlertRule& rule, const std::vector<BackTestRun>& runs, std::size_t at) {
    const BackTestRun& run = runs[at];
    std::vector<double> used;
    for (std::size_t i = at; i-- > 0 && used.size() < static_cast<std::size_t>(rule.runs);)
        if (runs[i].figure && (rule.reference != AlertReference::SameWeekday || runs[i].weekday == run.weekday))
            used.push_back(*runs[i].figure);
    if (!run.figure || (isChange(rule.comparison) && used.empty()))
        return AlertVerdict::State::Unknown;
    const double x = *run.figure;
    double reference = 0;
    if (rule.reference == AlertReference::Median && !used.empty()) {
        std::sort(used.begin(), used.end());
        reference = (used[(used.size() - 1) / 2] + used[used.size() / 2]) / 2;
    } else {
        for (const double one : used)
            reference += one;
        reference /= static_cast<double>(std::max<std::size_t>(1, used.size()));
    }
    const bool isInside = rule.value1 <= x && x <= rule.value2;
    const double by = std::abs(x - reference);
    const bool isRaised = rule.comparison == AlertComparison::Greater   ? x > rule.value1
                          : rule.comparison == AlertComparison::Less    ? x < rule.value1
                          : rule.comparison == AlertComparison::Equal   ? x == rule.value1
                          : rule.comparison == AlertComparison::Outside ? !isInside
                          : rule.comparison == AlertComparison::Inside  ? isInside
                          : rule.comparison == AlertComparison::ChangedBy
                              ? by > rule.value1
                              : by > rule.value1 / 100 * std::abs(reference);
    return isRaised ? AlertVerdict::State::Raised : AlertVerdict::State::Quiet;
}

} // namespace tavix::testing
