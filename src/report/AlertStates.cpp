#include "report/AlertStates.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/KvbDatavar.h"
#include "base/Metrics.h"
#include "base/NumberText.h"
#include "report/CheckedCursor.h"
#include "report/FitReadings.h"
#include "report/ReportTables.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace tavix {

namespace {

constexpr int kAllTables = -1;

/// The figure of the current run, and those of the runs before it that have one, the latest first.
struct Figures {
    std::optional<double> current;
    std::vector<RunFigure> earlier;
};

class Reader {
  public:
    Reader(PrViewer& viewer, int job) : m_viewer(viewer), m_job(job), m_run(viewer.getCurrentJob()) {
        for (const RunInfo& run : readRuns(viewer)) {
            ++m_runs;
            m_laterRuns += run.id > m_run ? 1 : 0;
        }
        const ProfileCursorHandle metrics = checked(viewer, viewer.getCustomMetrics(kAllTables));
        while (metrics->next())
            m_names[textAt(*metrics, layout::CustomMetricKey)] = textAt(*metrics, layout::CustomMetricName);
        const ProfileCursorHandle rules = checked(viewer, viewer.getBusinessRules(kAllTables));
        while (rules->next())
            m_names[textAt(*rules, layout::RuleKey)] = textAt(*rules, layout::RuleName);
    }

    std::vector<AlertState> read() {
        std::vector<AlertState> states;
        const ProfileCursorHandle alerts = checked(m_viewer, m_viewer.getAlerts());
        while (alerts->next()) {
            AlertState state = readAlert(*alerts);
            if (state.job == m_job)
                states.push_back(std::move(state));
        }
        return states;
    }

  private:
    AlertState readAlert(const ProfileCursor& alert) {
        AlertState state;
        state.id = alert.getColumnInt(layout::AlertId);
        const std::map<std::string, std::string> properties = propertiesOf(state.id);
        const auto property = [&](const char* name) {
            const auto found = properties.find(name);
            return found == properties.end() ? std::string() : found->second;
        };
        if (const auto job = parseInteger(property("JOB")))
            state.job = static_cast<int>(*job);
        if (state.job != m_job)
            return state;
        state.dataSource = textAt(alert, layout::AlertDsn);
        const std::string object = textAt(alert, layout::AlertObject);
        state.table = object.empty() ? textAt(alert, layout::AlertTable) : object;
        state.subject = alertSubjectOf(textAt(alert, layout::AlertTypeCode));
        state.description = textAt(alert, layout::AlertDescription);
        state.tableId = alert.getColumnInt(layout::AlertTableId);
        if (!alert.isColumnNull(layout::AlertFieldId))
            state.fieldId = alert.getColumnInt(layout::AlertFieldId);
        if (!alert.isColumnNull(layout::AlertWatchedId))
            state.watchedId = alert.getColumnInt(layout::AlertWatchedId);

        AlertRule rule;
        rule.value1 = parseNumber(property("VALUE1")).value_or(0);
        rule.value2 = parseNumber(property("VALUE2")).value_or(0);
        rule.runs = static_cast<int>(std::clamp<std::int64_t>(parseInteger(property("RUNS")).value_or(1), 1, 100'000));
        rule.level = property("LEVEL") == alertLevelWord(AlertLevel::Error) ? AlertLevel::Error : AlertLevel::Warning;
        const auto code = static_cast<int>(std::clamp<std::int64_t>(decimalPrefix(property("COMPARE")), -1, 1000));
        const bool isRule = setAlertCode(rule, state.subject, code);

        Figures figures;
        if (state.subject == AlertSubject::StandardMetric) {
            const auto id = static_cast<int>(std::clamp<std::int64_t>(decimalPrefix(property("METRIC")), -1, 1000));
            const MetricInfo* const metric = findMetric(id);
            state.input = textAt(alert, layout::AlertInput);
            state.metric = metric ? metric->name : "";
            state.watchedId = metric ? id : -1;
            if (metric && isRule)
                figures = metricFigures(alert, metric->id, rule);
            if (metric && isOverFits(id) && state.fieldId != -1)
                state.fits = m_fits.Of(state.tableId, state.fieldId);
        } else {
            const std::string key = textAt(alert, layout::AlertKey);
            const auto name = m_names.find(key);
            state.input = name == m_names.end() ? key : name->second;
            state.metric = property("METRIC");
            if (isRule)
                figures = state.subject == AlertSubject::CustomMetric ? customFigures(key) : ruleFigures(key, rule);
        }
        if (!isRule)
            return state;
        state.rule = rule;
        state.isOfRecords = state.subject == AlertSubject::StandardMetric && property("RECORDS") == "1";
        state.sentence = state.isOfRecords ? recordsAlertSentence(rule)
                                           : alertSentence(state.subject, rule, state.metric, state.input);
        state.figure = figures.current;
        state.verdict = checkAlert(rule, figures.current, 1, figures.earlier);
        return state;
    }

    std::map<std::string, std::string> propertiesOf(int alert) {
        std::map<std::string, std::string> properties;
        const ProfileCursorHandle cursor = checked(m_viewer, m_viewer.getAlertProperties(alert));
        while (cursor->next())
            properties[textAt(*cursor, layout::AlertPropertyName)] = textAt(*cursor, layout::AlertPropertyValue);
        return properties;
    }

    /// Walks a history from its oldest run on. `figureOf` gives the figure of a row.
    template <typename FigureOf>
    Figures collect(const ProfileCursorHandle& history, const FigureOf& figureOf) const {
        Figures figures;
        while (history->next()) {
            const int run = history->getColumnInt(layout::HistoryRunId);
            if (run > m_run)
                break;
            const std::optional<double> figure = figureOf(*history);
            if (run == m_run)
                figures.current = figure;
            else if (figure)
                figures.earlier.push_back({*figure, 1});
        }
        std::reverse(figures.earlier.begin(), figures.earlier.end());
        return figures;
    }

    /// Reads no more of the past than the verdict needs. Runs without the figure do not count, so the window grows
    /// until enough runs with one are in it.
    Figures metricFigures(const ProfileCursor& alert, MetricId metric, const AlertRule& rule) {
        const int column = layout::kFieldHistoryMetrics + static_cast<int>(metric);
        const std::size_t needed = isChange(rule.comparison) ? static_cast<std::size_t>(rule.runs) : 0;
        for (int limit = m_laterRuns + 1 + static_cast<int>(needed);; limit *= 2) {
            const ProfileCursorHandle history = checked(
                m_viewer,
                m_viewer.getFieldHistory(textAt(alert, layout::AlertDsn), textAt(alert, layout::AlertCatalog),
                                         textAt(alert, layout::AlertSchema), textAt(alert, layout::AlertTable),
                                         textAt(alert, layout::AlertObject), textAt(alert, layout::AlertInput), limit));
            Figures figures =
                collect(history, [&](const ProfileCursor& row) { return parseNumber(textAt(row, column)); });
            if (limit >= m_runs || figures.earlier.size() >= needed)
                return figures;
        }
    }

    Figures customFigures(const std::string& key) {
        return collect(checked(m_viewer, m_viewer.getCustomMetricHistory(key)), [](const ProfileCursor& row) {
            return parseNumber(textAt(row, layout::MetricHistoryOutputValue));
        });
    }

    Figures ruleFigures(const std::string& key, const AlertRule& rule) {
        return collect(checked(m_viewer, m_viewer.getBusinessRuleHistory(key)),
                       [&](const ProfileCursor& row) -> std::optional<double> {
                           const auto failed = parseNumber(textAt(row, layout::RuleHistoryFailedRows));
                           if (!failed || !rule.ofFailedPercent)
                               return failed;
                           const auto all = parseNumber(textAt(row, layout::RuleHistoryCheckedRows));
                           return all && *all > 0 ? std::optional(100 * *failed / *all) : std::nullopt;
                       });
    }

    PrViewer& m_viewer;
    FitReadings m_fits{m_viewer};
    int m_job;
    int m_run;
    int m_runs = 0;                             ///< of the job
    int m_laterRuns = 0;                        ///< after the current one
    std::map<std::string, std::string> m_names; ///< of custom metrics and rules, by key
};

} // namespace

std::string_view alertShownWord(AlertShown shown) {
    constexpr std::array<std::string_view, 4> kWords{"raised", "cannot be judged", "muted", "quiet"};
    return kWords[static_cast<std::size_t>(shown)];
}

AlertShown AlertState::shown() const {
    if (mute)
        return AlertShown::Muted;
    if (verdict.state == AlertVerdict::State::Unknown)
        return AlertShown::CannotBeJudged;
    return verdict.state == AlertVerdict::State::Raised ? AlertShown::Raised : AlertShown::Quiet;
}

AlertDefinition AlertState::definition() const {
    AlertDefinition definition;
    definition.table = tableId;
    definition.subject = subject;
    if (subject == AlertSubject::StandardMetric) {
        definition.field = isOfRecords ? -1 : fieldId;
        definition.metric = static_cast<MetricId>(watchedId);
    } else {
        definition.watched = watchedId;
    }
    definition.rule = rule.value_or(AlertRule{});
    definition.description = isDescribed() ? description : "";
    return definition;
}

void orderAlerts(std::vector<AlertState>& alerts) {
    const auto rank = [](const AlertState& alert) {
        return alert.isRaisedAt(AlertLevel::Error) ? -1 : static_cast<int>(alert.shown());
    };
    std::stable_sort(alerts.begin(), alerts.end(),
                     [&](const AlertState& left, const AlertState& right) { return rank(left) < rank(right); });
}

void AlertCounts::add(const AlertState& alert) {
    switch (alert.shown()) {
    case AlertShown::Raised:
        ++(alert.isRaisedAt(AlertLevel::Error) ? errors : warnings);
        break;
    case AlertShown::CannotBeJudged:
        ++unjudged;
        break;
    case AlertShown::Muted:
        ++muted;
        break;
    case AlertShown::Quiet:
        ++quiet;
        break;
    }
}

void AlertCounts::add(const AlertCounts& counts) {
    errors += counts.errors;
    warnings += counts.warnings;
    muted += counts.muted;
    unjudged += counts.unjudged;
    quiet += counts.quiet;
}

AlertCounts countAlerts(const std::vector<AlertState>& alerts) {
    AlertCounts counts;
    for (const AlertState& alert : alerts)
        counts.add(alert);
    return counts;
}

std::string AlertState::condition() const {
    return fits ? sentence + std::string(kOverFits) : sentence;
}

std::vector<AlertState> readAlertStates(PrViewer& viewer, int job) {
    return Reader(viewer, job).read();
}

} // namespace tavix
