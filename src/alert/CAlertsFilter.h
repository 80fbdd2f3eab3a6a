#pragma once

#include "report/AlertStates.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavix {

/// Which alerts of a repository are listed. A criterion without a value takes all alerts.
class CAlertsFilter {
  public:
    enum Criterion : std::size_t { DataSource, Catalog, Schema, Table, Type };
    static constexpr std::size_t kCriteria = 5;
    /// The first choice of each criterion.
    static constexpr std::string_view kAll = "(All)";

    /// "Data Source", "Catalog", ...: the label of the criterion.
    [[nodiscard]] static std::string_view LabelOf(Criterion criterion);
    /// The text that the criterion compares: the name of the data source, catalog, schema, object or table, or the
    /// type's word.
    [[nodiscard]] static std::string ValueOf(Criterion criterion, const AlertState& alert);
    /// The values that the alerts have, without the empty one, sorted.
    [[nodiscard]] static std::vector<std::string> ValuesOf(Criterion criterion, const std::vector<AlertState>& alerts);

    /// "" removes the criterion.
    void Set(Criterion criterion, std::string value) { m_values.at(criterion) = std::move(value); }
    [[nodiscard]] const std::string& Get(Criterion criterion) const { return m_values.at(criterion); }
    [[nodiscard]] bool IsEmpty() const { return *this == CAlertsFilter(); }
    /// Whether every criterion equals the alert's value; upper and lower case differ.
    [[nodiscard]] bool Accepts(const AlertState& alert) const;
    /// "Current filter: None", or "Current filter: DSN = Sales, Type = Business Rule".
    [[nodiscard]] std::string Text() const;

    bool operator==(const CAlertsFilter&) const = default;

  private:
    std::array<std::string, kCriteria> m_values;
};

} // namespace tavix
