#include "alert/CAlertsFilter.h"

#include <algorithm>

namespace tavix {

namespace {

struct CriterionWords {
    std::string_view label;
    std::string_view inText;
};

constexpr std::array<CriterionWords, CAlertsFilter::kCriteria> kWords = {{
    {"Data Source", "DSN"},
    {"Catalog", "Catalog"},
    {"Schema", "Schema"},
    {"Table", "Table"},
    {"Type", "Type"},
}};

} // namespace

std::string_view CAlertsFilter::LabelOf(Criterion criterion) {
    return kWords.at(criterion).label;
}

std::string CAlertsFilter::ValueOf(Criterion criterion, const AlertState& alert) {
    switch (criterion) {
    case DataSource:
        return alert.dataSource;
    case Catalog:
        return alert.catalog;
    case Schema:
        return alert.schema;
    case Table:
        return alert.table;
    case Type:
        break;
    }
    return std::string(alertTypeWord(alert.subject));
}

std::vector<std::string> CAlertsFilter::ValuesOf(Criterion criterion, const std::vector<AlertState>& alerts) {
    std::vector<std::string> values;
    values.reserve(alerts.size());
    for (const AlertState& alert : alerts)
        values.push_back(ValueOf(criterion, alert));
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    std::erase(values, "");
    return values;
}

bool CAlertsFilter::Accepts(const AlertState& alert) const {
    for (const Criterion criterion : {DataSource, Catalog, Schema, Table, Type}) {
        if (const std::string& wanted = Get(criterion); !wanted.empty() && wanted != ValueOf(criterion, alert))
            return false;
    }
    return true;
}

std::string CAlertsFilter::Text() const {
    std::string criteria;
    for (const Criterion criterion : {DataSource, Catalog, Schema, Table, Type}) {
        if (Get(criterion).empty())
            continue;
        criteria += criteria.empty() ? "" : ", ";
        criteria.append(kWords.at(criterion).inText).append(" = ").append(Get(criterion));
    }
    return "Current filter: " + (criteria.empty() ? "None" : criteria);
}

} // namespace tavix
