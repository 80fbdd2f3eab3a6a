#pragma once

#include "grid/ListRows.h"
#include "report/ChangeRanking.h"
#include "report/RunComparison.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tavix {

/// The ids of fields of the current run, by table and field name.
using FieldIds = std::map<std::pair<std::string, std::string>, int>;

/// The rows of a comparison of two runs.
class ChangeRows : public ListRows {
  public:
    /// Shows no rows, and the reason in their place.
    void ShowNone(std::string_view why);
    /// Keeps the rows. GetErrorText() is then the message with this reason. Returns false.
    bool Refuse(std::string_view reason);

  protected:
    using ListRows::ListRows;
};

/// The changes of a table or collection between two runs, those of the largest share of rows first.
class TableChangeRows final : public ChangeRows {
  public:
    TableChangeRows();

    /// With `namesTables` a field is shown with its table.
    void Show(std::vector<RankedChange> changes, FieldIds fields, bool namesTables);
    void Clear() override;
    /// The field of the row; -1 when the row is not about a field or the current run does not have it.
    [[nodiscard]] int GetFieldId(std::int64_t row) const;

  private:
    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    std::vector<RankedChange> m_changes;
    FieldIds m_fields;
    bool m_namesTables = false;
};

/// The changes of a field: its metrics, then values and patterns that are new, have vanished or have moved, each with
/// the shares of both runs as bars. Those of the largest share of rows come first in each group.
class FieldChangeRows final : public ChangeRows {
  public:
    FieldChangeRows();

    /// Takes the changes of one field. Those that sum up its values become part of the summary.
    void Show(std::vector<RunChange> changes);
    void Clear() override;
    /// How many values and patterns have changed, and how many of them are listed: "3 new values, 120 moved values
    /// (the first 50 are listed)".
    [[nodiscard]] const std::string& GetSummary() const { return m_summary; }

  private:
    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    std::vector<RunChange> m_changes;
    std::string m_summary;
};

} // namespace tavix
