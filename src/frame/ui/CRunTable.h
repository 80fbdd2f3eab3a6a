#pragma once

#include "report/RunInfo.h"

#include <QTreeWidget>

#include <vector>

namespace tavix {

/// A list of runs in two columns, in the order given, one selected at a time. Ctrl+C copies the selected run.
class CRunTable final : public QTreeWidget {
    Q_OBJECT

  public:
    explicit CRunTable(QWidget* parent = nullptr);

    /// The current run is marked and selected.
    void SetRuns(const std::vector<RunInfo>& runs, int currentRun);
    /// -1 when none is selected.
    [[nodiscard]] int SelectedRow() const;
    /// Strikes a row out, or not.
    void MarkDeleted(int row, bool deleted);

  private:
    void CopySelected() const;
};

} // namespace tavix
