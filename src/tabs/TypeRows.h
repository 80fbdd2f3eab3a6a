#pragma once

#include "grid/ListRows.h"
#include "report/FieldBreakdown.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix {

/// The forms in which the values of a field are written, with their share of the rows as a bar.
class FormRows final : public ListRows {
  public:
    FormRows();

    void Show(const FieldBreakdown& breakdown);
    void Clear() override;
    /// A filter of the value distribution that keeps exactly the values of the row's form; "" where the expression
    /// language has none.
    [[nodiscard]] const std::string& GetCondition(std::int64_t row) const;
    [[nodiscard]] const FieldBreakdown::Form& GetForm(std::int64_t row) const {
        return m_breakdown.forms.at(Record(row));
    }

  private:
    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    FieldBreakdown m_breakdown;
    std::vector<std::string> m_conditions;
};

/// The values that do not fit the type of the others, the most frequent first, and how many more there are.
class MisfitRows final : public ListRows {
  public:
    MisfitRows();

    void Show(const FieldBreakdown& breakdown, std::vector<CountedValue> misfits);
    void Clear() override;
    /// Nothing for the row that counts the others.
    [[nodiscard]] std::optional<KvbString> GetValue(std::int64_t row) const;

  private:
    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    std::vector<CountedValue> m_misfits;
    std::int64_t m_otherValues = 0;
    std::int64_t m_otherRows = 0;
    std::int64_t m_rows = 0; ///< the base of the shares
};

} // namespace tavix
