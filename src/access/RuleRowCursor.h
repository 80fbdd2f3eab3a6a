#pragma once

#include "access/CellCursor.h"
#include "access/StatementCursor.h"
#include "base/Result.h"
#include "sql/Connection.h"

#include <memory>
#include <string>
#include <vector>

namespace tavix {

/// The rows that violate a rule: the bookkeeping columns of layout::BusinessRuleRowLog, then a column for each field of
/// the rule's row log.
class RuleRowCursor final : public CellCursor {
  public:
    /// `statement` is bound and belongs to the session; its columns are the bookkeeping columns of a row and its stored
    /// values. Of these, the values of `fields` are shown.
    [[nodiscard]] static Result<std::unique_ptr<RuleRowCursor>>
    open(std::shared_ptr<ViewerSession> session, sql::Statement statement, std::vector<KvbString> fields);

    bool next() override;
    [[nodiscard]] int getColumnCount() const override;
    [[nodiscard]] KvbString getColumnName(int column) const override;
    [[nodiscard]] bool isColumnNull(int column) const override;

  protected:
    [[nodiscard]] KvbDatavar cell(int column) const override;

  private:
    RuleRowCursor(std::unique_ptr<StatementCursor> rows, std::vector<KvbString> fields);

    std::unique_ptr<StatementCursor> m_rows;
    std::vector<KvbString> m_fields;
    std::vector<KvbString> m_values; ///< of the current row; the bookkeeping columns first
};

} // namespace tavix
