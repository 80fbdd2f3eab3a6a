#include "filter/ComparisonInput.h"

#include "filter/FilterFields.h"
#include "filter/FilterOperations.h"

namespace tavix {

std::vector<std::string> ComparisonInput::Fields(DistributionKind kind) {
    const std::string word(KindWord(kind));
    return {word + " value", word + " count"};
}

std::vector<std::string_view> ComparisonInput::Operations() const {
    return OfferedOperations(FieldType());
}

void ComparisonInput::ChooseField(int index) {
    m_field = index >= 0 && index < static_cast<int>(kFilterFields.size()) ? index : -1;
    ChooseOperation(m_operation);
}

void ComparisonInput::ChooseOperation(int index) {
    m_operation = index >= 0 && index < static_cast<int>(Operations().size()) ? index : -1;
    ApplyRules();
}

void ComparisonInput::ChooseMode(ValueMode mode) {
    const Enabled enabled = Controls();
    if (mode == ValueMode::Single ? enabled.singleMode : enabled.multipleMode)
        m_mode = mode;
    ApplyRules();
}

void ComparisonInput::ResetValue() {
    m_mode = ValueMode::Single;
    m_singleValue.clear();
    ApplyRules();
}

void ComparisonInput::CheckCaseInsensitive(bool checked) {
    if (Controls().caseInsensitive)
        m_caseInsensitive = checked;
}

void ComparisonInput::CheckWildcard(bool checked) {
    if (Controls().wildcard)
        m_wildcard = checked;
}

ComparisonInput::Enabled ComparisonInput::Controls() const {
    Enabled enabled;
    if (m_operation >= 0) {
        const auto operation = static_cast<FilterOperation>(m_operation);
        if (!TakesValue(operation))
            return {false, false, false, false, false, false};
        enabled.multipleMode = TakesSeveralValues(operation);
        enabled.wildcard = TakesSeveralValues(operation) && m_mode == ValueMode::Single;
    }
    enabled.singleValue = m_mode == ValueMode::Single;
    enabled.valueList = m_mode == ValueMode::Multiple;
    if (FieldType() == FieldTypeCode::Count) {
        enabled.caseInsensitive = false;
        enabled.wildcard = false;
    }
    return enabled;
}

/// Clears choices that are no longer possible.
void ComparisonInput::ApplyRules() {
    if (m_operation >= 0 && TakesValue(static_cast<FilterOperation>(m_operation)) && !Controls().multipleMode)
        m_mode = ValueMode::Single;
    const Enabled enabled = Controls();
    m_caseInsensitive = m_caseInsensitive && enabled.caseInsensitive;
    m_wildcard = m_wildcard && enabled.wildcard;
}

FieldTypeCode ComparisonInput::FieldType() const {
    return m_field < 0 ? FieldTypeCode::None : kFilterFields[static_cast<std::size_t>(m_field)].type;
}

ComparisonInput::Missing ComparisonInput::FindMissing() const {
    if (m_field < 0)
        return Missing::Field;
    if (m_operation < 0)
        return Missing::Operation;
    if (TakesValue(static_cast<FilterOperation>(m_operation)) && m_mode == ValueMode::Multiple && m_valueList.empty())
        return Missing::Values;
    return Missing::Nothing;
}

CCondition ComparisonInput::Comparison() const {
    CCondition condition;
    condition.operation = static_cast<FilterOperation>(m_operation);
    condition.fieldType = FieldType();
    condition.fieldName = kFilterFields[static_cast<std::size_t>(m_field)].name;
    if (!TakesValue(condition.operation))
        return condition;
    if (m_mode == ValueMode::Single) {
        condition.values = {m_singleValue};
        condition.wildcard = m_wildcard && TakesSeveralValues(condition.operation) &&
                             m_singleValue.find_first_of("*?") != std::string::npos;
    } else {
        condition.values = m_valueList;
    }
    condition.caseInsensitive = m_caseInsensitive;
    return condition;
}

} // namespace tavix
