#include "report/AlertTexts.h"

#include "base/Metrics.h"
#include "report/CountText.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

namespace tavix {

namespace {

bool isPercent(const AlertState& alert) {
    if (alert.subject == AlertSubject::BusinessRule)
        return alert.rule && alert.rule->ofFailedPercent;
    const MetricInfo* const metric =
        alert.subject == AlertSubject::StandardMetric ? findMetric(alert.watchedId) : nullptr;
    return metric && metric->value == MetricValue::Percent;
}

std::string numberText(double value) {
    constexpr double kMostExact = 1e15;
    if (std::abs(value) < kMostExact && value == std::trunc(value))
        return groupedCount(static_cast<std::int64_t>(value));
    return formatReadable(value);
}

/// Small shares keep their digits, so that they can be told from a limit.
std::string percentText(double value) {
    constexpr double kLeastShare = 0.01;
    return value >= kLeastShare ? shareText(value) : formatReadable(value) + " %";
}

std::string figureText(const AlertState& alert, double value) {
    return alertNumberText(value, isPercent(alert));
}

std::string limitText(const AlertState& alert, double limit) {
    return alertLimitText(limit, isPercent(alert));
}

/// "run before", "mean of 3 runs".
std::string referenceName(const AlertRule& rule) {
    const bool isOne = rule.runs <= 1;
    const std::string runs = countOf(rule.runs, "run");
    switch (rule.reference) {
    case AlertReference::Mean:
        return isOne ? "run before" : "mean of " + runs;
    case AlertReference::Median:
        return isOne ? "run before" : "median of " + runs;
    case AlertReference::SameWeekday:
        break;
    }
    return isOne ? "last run of the same weekday" : fmt::format("mean of {} of the same weekday", runs);
}

std::string dateText(LibraryDate date, const std::locale& locale) {
    return formatDateTime(decompose(date), locale);
}

} // namespace

std::string alertPath(const AlertState& alert) {
    std::string path = alert.dataSource;
    if (alert.objectName.empty()) {
        for (const std::string* part : {&alert.catalog, &alert.schema})
            if (!part->empty())
                path += "." + *part;
    }
    return path + "." + (alert.objectName.empty() ? alert.tableName : alert.objectName);
}

std::string alertNumberText(double figure, bool isPercent) {
    return isPercent ? percentText(figure) : numberText(figure);
}

std::string alertLimitText(double limit, bool isPercent) {
    return isPercent ? formatReadable(limit) + " %" : numberText(limit);
}

std::string alertLevelText(const AlertState& alert) {
    return alert.rule ? std::string(alertLevelWord(alert.rule->level)) : std::string();
}

std::string alertFigureText(const AlertState& alert) {
    return alert.figure ? figureText(alert, *alert.figure) : std::string();
}

std::string alertReferenceText(const AlertState& alert) {
    if (!alert.rule)
        return {};
    const AlertRule& rule = *alert.rule;
    const auto range = [&](std::string_view word) {
        return fmt::format("{} {} to {}", word, limitText(alert, rule.value1), limitText(alert, rule.value2));
    };
    switch (rule.comparison) {
    case AlertComparison::Greater:
        return "above " + limitText(alert, rule.value1);
    case AlertComparison::Less:
        return "below " + limitText(alert, rule.value1);
    case AlertComparison::Equal:
        return "equal to " + limitText(alert, rule.value1);
    case AlertComparison::Outside:
        return range("outside");
    case AlertComparison::Inside:
        return range("inside");
    case AlertComparison::ChangedBy:
    case AlertComparison::ChangedByPercent:
        break;
    }
    return referenceName(rule) + ": " +
           (alert.verdict.reference ? figureText(alert, *alert.verdict.reference) : std::string("none"));
}

std::string alertSinceText(const AlertState& alert, const std::locale& locale) {
    if (alert.verdict.state != AlertVerdict::State::Raised || alert.raisedRuns == 0)
        return {};
    const std::string date = dateText(alert.sinceDate, locale);
    if (alert.raisedLonger)
        return fmt::format("at least {}, since {} or before", countOf(alert.raisedRuns, "run"), date);
    return alert.raisedRuns == 1 ? "this run" : fmt::format("{}, since {}", countOf(alert.raisedRuns, "run"), date);
}

std::string alertOriginText(const AlertState& alert) {
    if (!alert.isOfUser)
        return "job";
    return alert.author.empty() ? "unknown user" : alert.author;
}

std::string alertMuteText(const AlertState& alert, const std::locale& locale) {
    if (!alert.mute)
        return {};
    const AlertMute& mute = *alert.mute;
    std::string text = "Muted";
    if (!mute.author.empty())
        text += " by " + mute.author;
    text += " on " + dateText(mute.date, locale);
    if (mute.runs > 0)
        text += " for " + countOf(mute.runs, "run");
    if (mute.until)
        text += (mute.runs > 0 ? ", at the longest until " : " until ") + dateText(*mute.until, locale);
    return mute.reason.empty() ? text : text + ": " + mute.reason;
}

std::string alertCountsText(const AlertCounts& counts) {
    if (counts == AlertCounts{})
        return "no alerts";
    std::string text;
    const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
    if (counts.errors > 0)
        add(countOf(counts.errors, "error"));
    if (counts.warnings > 0)
        add(countOf(counts.warnings, "warning"));
    if (counts.raised() == 0)
        add("no alert raised");
    if (counts.muted > 0)
        add(groupedCount(counts.muted) + " muted");
    if (counts.unjudged > 0)
        add(groupedCount(counts.unjudged) + " cannot be judged");
    return text;
}

} // namespace tavix
