#include "report/AlertBackTest.h"
#include "report/CountText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavix {

namespace {

using Figures = std::vector<double>;

constexpr std::size_t kFewestRuns = 5;

/// A share of the history beyond which a limit lies.
struct Grade {
    int percentile = 100; ///< 100: beyond all of it
};

/// The widest limit and, where there are runs enough for it, one that some of them would have passed.
std::vector<Grade> gradesOf(std::size_t runs) {
    constexpr std::size_t kForTwentieths = 20;
    constexpr std::size_t kForHundredths = 100;
    if (runs >= kForHundredths)
        return {{100}, {99}};
    if (runs >= kForTwentieths)
        return {{100}, {95}};
    return {{100}};
}

/// Between the two nearest figures by linear interpolation, as the percentiles of numbers are.
double percentileOf(const Figures& ordered, int percentile) {
    const double position = static_cast<double>(ordered.size() - 1) * percentile / 100;
    const auto below = static_cast<std::size_t>(position);
    if (below + 1 >= ordered.size())
        return ordered.back();
    return std::lerp(ordered[below], ordered[below + 1], position - static_cast<double>(below));
}

/// Rounds away from the history, to two digits of how far its figures are apart.
class Rounding {
  public:
    explicit Rounding(const Figures& ordered) {
        constexpr int kExactDigits = 12; // a figure that never changes is its own limit, but for errors of rounding
        const double largest = std::max(std::abs(ordered.front()), std::abs(ordered.back()));
        const double spread = ordered.back() - ordered.front();
        const int exact = largest > 0 ? exponentOf(largest) - kExactDigits : 0;
        m_exponent = spread > 0 ? std::max(exact, exponentOf(spread) - 1) : exact;
        if (std::all_of(ordered.begin(), ordered.end(), [](double one) { return one == std::trunc(one); }))
            m_exponent = std::max(m_exponent, 0);
    }

    [[nodiscard]] double up(double value) const {
        const double nearest = at(std::round(scaled(value)));
        const double result = nearest >= value ? nearest : at(std::round(scaled(value)) + 1);
        return std::isfinite(result) ? result + 0.0 : value; // not -0
    }
    [[nodiscard]] double down(double value) const { return 0 - up(-value); }

  private:
    static int exponentOf(double value) { return static_cast<int>(std::floor(std::log10(value))); }
    /// By powers of ten that are exact, since 3 * 0.1 is not 0.3.
    [[nodiscard]] double scaled(double value) const {
        return m_exponent < 0 ? value * std::pow(10.0, -m_exponent) : value / std::pow(10.0, m_exponent);
    }
    [[nodiscard]] double at(double steps) const {
        return m_exponent < 0 ? steps / std::pow(10.0, -m_exponent) : steps * std::pow(10.0, m_exponent);
    }

    int m_exponent = 0;
};

std::string ordinal(int number) {
    return fmt::format("{}{}", number, number == 1 ? "st" : "th");
}

class Proposals {
  public:
    Proposals(const AlertRule& rule, const std::vector<BackTestRun>& runs) : m_rule(rule), m_runs(runs) {}

    void addLimits() {
        Figures figures;
        for (const BackTestRun& run : m_runs)
            if (run.figure)
                figures.push_back(*run.figure);
        if (figures.size() < kFewestRuns)
            return;
        std::sort(figures.begin(), figures.end());
        const Rounding rounding(figures);
        const std::string runs = countOf(static_cast<std::int64_t>(figures.size()), "run");
        for (const Grade grade : gradesOf(figures.size())) {
            const bool isAll = grade.percentile == 100;
            const double high = rounding.up(percentileOf(figures, grade.percentile));
            const double low = rounding.down(percentileOf(figures, 100 - grade.percentile));
            const std::string upper = ordinal(grade.percentile);
            const std::string lower = ordinal(100 - grade.percentile);
            add(AlertComparison::Greater, high, 0,
                isAll ? "above all " + runs : fmt::format("above the {} percentile of {}", upper, runs));
            // Nothing that is counted falls below zero.
            if (low <= 0 && figures.front() >= 0)
                continue;
            add(AlertComparison::Less, low, 0,
                isAll ? "below all " + runs : fmt::format("below the {} percentile of {}", lower, runs));
            add(AlertComparison::Outside, low, high,
                isAll ? "outside the range of " + runs
                      : fmt::format("outside the {} to {} percentile of {}", lower, upper, runs));
        }
    }

    void addChanges(AlertComparison comparison) {
        Figures changes;
        AlertRule any = m_rule;
        any.comparison = comparison;
        for (const BackTestRun& run : backTest(any, m_runs).runs) {
            if (run.verdict.state == AlertVerdict::State::Unknown)
                continue;
            const double reference = *run.verdict.reference;
            const double change = std::abs(*run.figure - reference);
            if (comparison == AlertComparison::ChangedBy)
                changes.push_back(change);
            else if (reference != 0)
                changes.push_back(100 * change / std::abs(reference));
        }
        std::erase_if(changes, [](double change) { return !std::isfinite(change); });
        if (changes.size() < kFewestRuns)
            return;
        std::sort(changes.begin(), changes.end());
        const Rounding rounding(changes);
        const std::string count = countOf(static_cast<std::int64_t>(changes.size()), "change");
        for (const Grade grade : gradesOf(changes.size()))
            add(comparison, rounding.up(percentileOf(changes, grade.percentile)), 0,
                grade.percentile == 100
                    ? "more than all " + count
                    : fmt::format("more than the {} percentile of {}", ordinal(grade.percentile), count));
    }

    /// Those of the user's own comparison first.
    std::vector<LimitProposal> take() {
        std::stable_partition(m_proposals.begin(), m_proposals.end(), [this](const LimitProposal& proposal) {
            return proposal.comparison == m_rule.comparison;
        });
        return std::move(m_proposals);
    }

  private:
    void add(AlertComparison comparison, double value1, double value2, std::string reason) {
        const auto isSame = [&](const LimitProposal& one) {
            return one.comparison == comparison && one.value1 == value1 && one.value2 == value2;
        };
        if (std::any_of(m_proposals.begin(), m_proposals.end(), isSame))
            return;
        AlertRule rule = m_rule;
        rule.comparison = comparison;
        rule.value1 = value1;
        rule.value2 = value2;
        m_proposals.push_back({comparison, value1, value2, backTest(rule, m_runs).raised, std::move(reason)});
    }

    AlertRule m_rule;
    const std::vector<BackTestRun>& m_runs;
    std::vector<LimitProposal> m_proposals;
};

} // namespace

std::vector<LimitProposal> proposeLimits(const AlertRule& rule, const std::vector<BackTestRun>& runs) {
    Proposals proposals(rule, runs);
    if (isChange(rule.comparison)) {
        proposals.addChanges(AlertComparison::ChangedBy);
        proposals.addChanges(AlertComparison::ChangedByPercent);
    } else {
        proposals.addLimits();
    }
    return proposals.take();
}

} // namespace tavix
