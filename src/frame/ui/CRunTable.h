#pragma once

#include "report/RunInfo.h"

#include <QTreeWidget>

#include <vector>

namespace tavix {

/// A list of runs, the latest first, one selected at a time. Ctrl+C copies the selected run.
class CRunTable final : public QTreeWidget {
    Q_OBJECT

  public:
    explicit CRunTable(QWidget* parent = nullptr);

    /// The current run is marked and selected.
    void SetRuns(const std::vector<RunInfo>& runs, int currentRun);
    /// Hides the runs whose number, date and description do not contain the text, ignoring case, and returns how many
    /// remain. If the selected run is hidden, the first that is not is selected.
    int ShowMatching(const QString& text);
    /// -1 when none is selected.
    [[nodiscard]] int SelectedRow() const;
    /// Strikes a row out, or not.
    void MarkDeleted(int row, bool deleted);
    void CopySelected() const;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    /// The description takes the room that the other columns leave.
    void FitDescription();
};

} // namespace tavix
