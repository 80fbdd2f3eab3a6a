#pragma once

#include "base/Result.h"
#include "tabs/TypeRows.h"

#include <string>

namespace tavix {

/// Which types the values of a field fit, as the tab of its metrics shows it below them: a line, and for a field with
/// several forms two lists.
class TypesModel {
  public:
    /// Misfits are looked for among so many distinct values; else a filter shows them on demand.
    static constexpr std::int64_t kMostToSearch = 200'000;
    static constexpr std::size_t kMostMisfits = 100;

    /// On an error there is nothing to show.
    [[nodiscard]] Status Fill(PrViewer& viewer, const FieldRecord& field);
    void Clear();

    /// "Types: integer 399 of 400; does not fit: unknown (1)"; "" when there is nothing to show.
    [[nodiscard]] const std::string& GetText() const { return m_text; }
    /// Remarks for the user: an ambiguity, and the declared type. "" without any.
    [[nodiscard]] const std::string& GetRemark() const { return m_remark; }
    [[nodiscard]] bool HasForms() const { return m_forms.GetRowCount() > 1; }
    [[nodiscard]] bool HasMisfits() const { return m_misfits.GetRowCount() > 0; }
    /// The filter that keeps the misfits; "" without any.
    [[nodiscard]] const std::string& GetMisfitCondition() const { return m_misfitCondition; }
    /// "15 values do not fit".
    [[nodiscard]] const std::string& GetMisfitHeading() const { return m_misfitHeading; }

    [[nodiscard]] std::int64_t GetMisfitRows() const { return m_misfitRows; }

    [[nodiscard]] FormRows& GetForms() { return m_forms; }
    [[nodiscard]] const FormRows& GetForms() const { return m_forms; }
    [[nodiscard]] MisfitRows& GetMisfits() { return m_misfits; }
    [[nodiscard]] const MisfitRows& GetMisfits() const { return m_misfits; }

  private:
    std::string m_text;
    std::string m_remark;
    std::string m_misfitCondition;
    std::string m_misfitHeading;
    std::int64_t m_misfitRows = 0;
    FormRows m_forms;
    MisfitRows m_misfits;
};

} // namespace tavix
