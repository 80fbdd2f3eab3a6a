#pragma once

#include "filter/CCondition.h"
#include "report/DistributionKind.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavix {

/// How the values of a comparison are entered.
enum class ValueMode { Single = 0, Multiple = 1 };

/// The part of the filter dialog that builds one comparison from field, operation, values and options, and the rules
/// for which of these controls are enabled.
class ComparisonInput {
  public:
    /// Which controls can be used.
    struct Enabled {
        bool singleMode = true;
        bool multipleMode = true;
        bool singleValue = true;
        bool valueList = true;
        bool caseInsensitive = true;
        bool wildcard = true;

        bool operator==(const Enabled&) const = default;
    };
    enum class Missing { Nothing, Field, Operation, Values };

    /// The entries of the field list: the value, then the count.
    [[nodiscard]] static std::vector<std::string> Fields(DistributionKind kind);
    /// The entries of the operation list for the chosen field.
    [[nodiscard]] std::vector<std::string_view> Operations() const;

    /// An index into Fields(), or -1. Keeps the operation if the new list still has it.
    void ChooseField(int index);
    /// An index into Operations(), or -1.
    void ChooseOperation(int index);
    void ChooseMode(ValueMode mode);
    void SetSingleValue(std::string value) { m_singleValue = std::move(value); }
    void SetValueList(std::vector<std::string> values) { m_valueList = std::move(values); }
    /// Back to a single, empty value.
    void ResetValue();
    /// Ignored while the box is disabled.
    void CheckCaseInsensitive(bool checked);
    void CheckWildcard(bool checked);

    [[nodiscard]] int Field() const { return m_field; }
    [[nodiscard]] int Operation() const { return m_operation; }
    [[nodiscard]] ValueMode Mode() const { return m_mode; }
    [[nodiscard]] const std::string& SingleValue() const { return m_singleValue; }
    [[nodiscard]] const std::vector<std::string>& ValueList() const { return m_valueList; }
    [[nodiscard]] bool CaseInsensitive() const { return m_caseInsensitive; }
    [[nodiscard]] bool Wildcard() const { return m_wildcard; }
    [[nodiscard]] Enabled Controls() const;

    /// What is missing before the input is a comparison.
    [[nodiscard]] Missing FindMissing() const;
    /// The comparison. Call it only when nothing is missing.
    [[nodiscard]] CCondition Comparison() const;

  private:
    [[nodiscard]] FieldTypeCode FieldType() const;
    void ApplyRules();

    int m_field = -1;
    int m_operation = -1;
    ValueMode m_mode = ValueMode::Single;
    std::string m_singleValue;
    std::vector<std::string> m_valueList;
    bool m_caseInsensitive = false;
    bool m_wildcard = false;
};

} // namespace tavix
