#pragma once

#include "grid/ListRows.h"
#include "report/ReportSelection.h"

#include <string>

namespace tavix {

class PrViewer;

/// The damaged rows of a table, with their lines or row numbers and the reasons.
class DamageRows final : public ListRows {
  public:
    DamageRows();

    /// False when the repository fails: the rows are then unchanged, and GetErrorText() is the message.
    bool Fill(PrViewer& viewer, const TableIdentity& table);
    void Clear() override;

    /// Which rows these are, how many there are in all, and whether the file has changed since.
    [[nodiscard]] const std::string& GetHeading() const { return m_heading; }

  private:
    struct Row {
        std::string file;
        std::string number;
        std::string reason;
    };

    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    std::vector<Row> m_rows;
    bool m_hasFiles = false;
    std::string m_heading;
};

} // namespace tavix
