#include "alert/FieldChoice.h"

#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/Metrics.h"
#include "base/NumberText.h"
#include "report/AlertTexts.h"
#include "report/CountText.h"
#include "report/ReportTables.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace tavix {

Result<FieldChoice> FieldChoice::Read(PrViewer& viewer, const AlertState& alert) try {
    FieldChoice choice;
    choice.m_pattern = alert.definition();
    choice.m_pattern.description.clear();
    std::set<int> have;
    for (const AlertState& other : readAlertStates(viewer, alert.job)) {
        AlertDefinition definition = other.definition();
        definition.description.clear();
        if (other.rule && definition.table == choice.m_pattern.table &&
            definition.subject == AlertSubject::StandardMetric && definition.metric == choice.m_pattern.metric &&
            definition.rule == choice.m_pattern.rule)
            have.insert(definition.field);
    }
    const MetricInfo* const metric = findMetric(static_cast<int>(choice.m_pattern.metric));
    for (const FieldRecord& record : readFields(viewer, choice.m_pattern.table)) {
        const std::optional<double> figure = parseNumber(record.metrics.at(index(choice.m_pattern.metric)).view());
        Field field{record.id, record.name, {}, true, false};
        if (record.id == choice.m_pattern.field) {
            field.canHave = false;
            field.remark = "the field of the alert";
        } else if (have.contains(record.id)) {
            field.canHave = false;
            field.remark = "has the same alert";
        } else if (figure) {
            field.remark = alertNumberText(*figure, metric && metric->value == MetricValue::Percent);
        } else {
            field.remark = "no such number in this run";
        }
        choice.m_hasFigure.push_back(figure.has_value());
        choice.m_fields.push_back(std::move(field));
    }
    return choice;
} catch (const GenException& failure) {
    return Error{failure.getText().str()};
}

void FieldChoice::Choose(std::size_t field, bool isChosen) {
    Field& one = m_fields.at(field);
    one.isChosen = isChosen && one.canHave;
}

void FieldChoice::ChooseAll(bool isChosen) {
    for (std::size_t i = 0; i < m_fields.size(); ++i)
        Choose(i, isChosen && m_hasFigure[i]);
}

std::size_t FieldChoice::CountChosen() const {
    return static_cast<std::size_t>(std::ranges::count_if(m_fields, &Field::isChosen));
}

std::string FieldChoice::GetSummary() const {
    return fmt::format("{} of {} chosen", CountChosen(),
                       countOf(static_cast<std::int64_t>(std::ranges::count_if(m_fields, &Field::canHave)), "field"));
}

std::vector<AlertDefinition> FieldChoice::GetCopies() const {
    std::vector<AlertDefinition> copies;
    for (const Field& field : m_fields) {
        if (!field.isChosen)
            continue;
        copies.push_back(m_pattern);
        copies.back().field = field.id;
    }
    return copies;
}

} // namespace tavix
