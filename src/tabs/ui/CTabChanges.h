#pragma once

#include "tabs/ChangesModel.h"
#include "tabs/ui/CListTab.h"

namespace tavix {

class SinceRunLine;

/// What has changed between two runs that the user chooses, by default the run that is shown and the one before it.
/// Compares them when it is seen; a long comparison shows its progress and can be cancelled. ChangesModel decides; this
/// class shows.
class CTabChanges : public CListTab {
    Q_OBJECT
  public:
    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;
    QWidget* GetLastTabStop() override;

  protected:
    CTabChanges(std::string_view name, CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent);

    /// Takes the model over rows that the list has.
    void TakeModel(std::unique_ptr<ChangesModel> model) { m_model = std::move(model); }

    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;
    void PrepareFill() override;
    [[nodiscard]] std::string GetObstacle() const override;
    bool FillRows(PrViewer& viewer) override;
    void RowsChanged() override;

  private:
    void Choose(int sinceRow, int untilRow);

    std::unique_ptr<ChangesModel> m_model;
    SinceRunLine* m_line;
};

/// The changes of a table or collection. Enter or a double click opens the field at its changes.
class CTabTableChanges final : public CTabChanges {
    Q_OBJECT
  public:
    CTabTableChanges(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);

  private:
    void OpenField(std::int64_t row);

    TableChangeRows& m_rows; ///< owned by the list
};

/// The changes of a field.
class CTabFieldChanges final : public CTabChanges {
    Q_OBJECT
  public:
    CTabFieldChanges(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);
};

} // namespace tavix
