#include "report/KnownRules.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/Ascii.h"
#include "report/CheckedCursor.h"
#include "report/ExpressionText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

namespace tavix {

namespace {

constexpr int kAllTables = -1;

using Words = std::vector<std::string>;

/// The end of the text, name or word that begins at `at`.
std::size_t endOfWord(std::string_view text, std::size_t at) {
    const char first = text[at];
    const auto isPart = [](char c) { return isAsciiLetter(c) || isAsciiDigit(c) || c == '_' || c == '.'; };
    std::size_t end = at + 1;
    if (first == '\'' || first == '"' || first == '`') {
        for (; end < text.size() && text[end] != first; ++end)
            if (text[end] == '\\' && first != '`' && end + 1 < text.size() && text[end + 1] == first)
                ++end;
        return std::min(end + 1, text.size());
    }
    if (isPart(first)) {
        while (end < text.size() && isPart(text[end]))
            ++end;
        return end;
    }
    const std::string_view pair = text.substr(at, 2);
    return pair == "==" || pair == "!=" || pair == "<=" || pair == ">=" ? at + 2 : end;
}

Words wordsOf(std::string_view condition) {
    Words words;
    for (std::size_t at = 0; at < condition.size();) {
        const char c = condition[at];
        if (c == ' ' || (c >= '\t' && c <= '\r')) {
            ++at;
            continue;
        }
        const std::size_t end = endOfWord(condition, at);
        std::string word(condition.substr(at, end - at));
        at = end;
        if (word == "==")
            word = "=";
        else if (word.front() == '"' && word.find('\'') == std::string::npos)
            word.front() = word.back() = '\'';
        else if (isAsciiLetter(word.front()))
            word = asciiLower(word);
        words.push_back(std::move(word));
    }
    return words;
}

/// Without the conversions that a comparison of a field with a number or date may do without.
void dropConversions(Words& words) {
    for (std::size_t i = 0; i + 3 < words.size(); ++i)
        if ((words[i] == "tonumber" || words[i] == "todate") && words[i + 1] == "(" && words[i + 2].front() == '`' &&
            words[i + 3] == ")")
            words = [&] {
                Words kept(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(i));
                kept.push_back(words[i + 2]);
                kept.insert(kept.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 4, words.end());
                return kept;
            }();
}

/// The fields that the condition compares with a fixed bound.
std::vector<std::string> boundedIn(const Words& words) {
    std::vector<std::string> fields;
    for (std::size_t i = 0; i + 2 < words.size(); ++i) {
        const std::string& sign = words[i + 1];
        const bool isBound = sign == "<" || sign == "<=" || sign == ">" || sign == ">=" || sign == "between";
        const char first = words[i + 2].front();
        if (words[i].front() == '`' && isBound &&
            (isAsciiDigit(first) || first == '-' || first == '\'' || first == '.'))
            fields.push_back(words[i]);
    }
    return fields;
}

std::string joined(const Words& words, std::size_t first, std::size_t end) {
    std::string text;
    for (std::size_t i = first; i < end; ++i)
        text += words[i] + ' ';
    return text;
}

} // namespace

std::vector<std::string> conjunctsOf(std::string_view condition) {
    Words words = wordsOf(condition);
    dropConversions(words);
    std::vector<std::string> conjuncts;
    int depth = 0;
    std::size_t first = 0;
    std::size_t between = 0; // the position of the word that waits for its `and`
    const auto add = [&](std::size_t end) {
        if (between > first) {
            std::size_t middle = between + 1;
            for (int inner = 0; middle < end && (inner > 0 || words[middle] != "and"); ++middle)
                inner += words[middle] == "(" ? 1 : words[middle] == ")" ? -1 : 0;
            conjuncts.push_back(joined(words, first, between) + ">= " + joined(words, between + 1, middle));
            conjuncts.push_back(joined(words, first, between) + "<= " + joined(words, std::min(middle + 1, end), end));
        } else if (end > first) {
            conjuncts.push_back(joined(words, first, end));
        }
        first = end + 1;
        between = 0;
    };
    bool isAwaited = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        depth += word == "(" ? 1 : word == ")" ? -1 : 0;
        if (depth > 0)
            continue;
        // A choice, a statement or a negated range is one condition.
        if (word == "or" || word == "if" || word == "return" || (word == "between" && i > 0 && words[i - 1] == "not"))
            return {joined(words, 0, words.size())};
        if (word == "between") {
            between = i;
            isAwaited = true;
        } else if (word == "and") {
            if (!isAwaited)
                add(i);
            isAwaited = false;
        }
    }
    add(words.size());
    return conjuncts;
}

KnownRules::KnownRules(PrViewer& viewer, int job) : m_alerts(readAlertStates(viewer, job)) {
    const ProfileCursorHandle rules = checked(viewer, viewer.getBusinessRules(kAllTables));
    while (rules->next()) {
        const int table = rules->getColumnInt(layout::RuleTableId);
        const std::string condition = textAt(*rules, layout::RuleCondition);
        for (std::string& conjunct : conjunctsOf(condition))
            m_conjuncts.emplace(table, std::move(conjunct));
        Words words = wordsOf(condition);
        dropConversions(words);
        for (std::string& field : boundedIn(words))
            m_bounded.emplace(table, std::move(field));
        m_names.emplace(table, textAt(*rules, layout::RuleName));
    }
    const ProfileCursorHandle metrics = checked(viewer, viewer.getCustomMetrics(kAllTables));
    while (metrics->next()) {
        const int table = metrics->getColumnInt(layout::CustomMetricTableId);
        const Words words = wordsOf(textAt(*metrics, layout::CustomMetricExpression));
        m_expressions.emplace(table, joined(words, 0, words.size()));
        m_names.emplace(table, textAt(*metrics, layout::CustomMetricName));
    }
}

bool KnownRules::areConjunctsKnown(const RuleSuggestion& suggestion) const {
    const std::vector<std::string> conjuncts = conjunctsOf(suggestion.condition);
    return !conjuncts.empty() && std::all_of(conjuncts.begin(), conjuncts.end(), [&](const std::string& conjunct) {
        return m_conjuncts.contains({suggestion.tableId, conjunct});
    });
}

bool KnownRules::isAlertKnown(const RuleSuggestion& suggestion) const {
    const auto watches = [&](MetricId metric, AlertComparison comparison) {
        return std::any_of(m_alerts.begin(), m_alerts.end(), [&](const AlertState& alert) {
            return alert.subject == AlertSubject::StandardMetric && !alert.isOfRecords && alert.rule &&
                   alert.tableId == suggestion.tableId && alert.fieldId == suggestion.fieldId &&
                   alert.watchedId == static_cast<int>(metric) &&
                   (alert.rule->comparison == comparison || isRange(alert.rule->comparison));
        });
    };
    switch (suggestion.kind) {
    case SuggestionKind::NotNull:
        return watches(MetricId::NullCount, AlertComparison::Greater) ||
               watches(MetricId::PercentNull, AlertComparison::Greater);
    case SuggestionKind::Unique:
        return watches(MetricId::UniquePercent, AlertComparison::Less);
    case SuggestionKind::NoLowerMinimum:
        return watches(MetricId::MinimumValue, AlertComparison::Less);
    default:
        return false;
    }
}

bool KnownRules::say(const RuleSuggestion& suggestion) const {
    if (isAlertKnown(suggestion))
        return true;
    switch (suggestion.element) {
    case SuggestedElement::Rule:
        return areConjunctsKnown(suggestion) || (suggestion.kind == SuggestionKind::Range &&
                                                 m_bounded.contains({suggestion.tableId, fieldText(suggestion.field)}));
    case SuggestedElement::MetricAlert: {
        const Words words = wordsOf(suggestion.condition);
        return m_expressions.contains({suggestion.tableId, joined(words, 0, words.size())});
    }
    default:
        return false;
    }
}

std::string KnownRules::takeName(int tableId, const std::string& name) {
    std::string taken = name;
    for (int number = 2; !m_names.emplace(tableId, taken).second; ++number)
        taken = fmt::format("{} ({})", name, number);
    return taken;
}

} // namespace tavix
