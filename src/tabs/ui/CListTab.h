#pragma once

#include "tabs/ListRows.h"
#include "tabs/ui/CProfTab.h"

#include <memory>
#include <utility>

class QLabel;
class QStackedWidget;

namespace tavix {

class CUGCtrl;
class PrViewer;

/// A tab that is one list: a grid, or a sentence that says why it would be empty. A class derived from it makes the
/// rows and fills them.
class CListTab : public CProfTab {
    Q_OBJECT
  public:
    ~CListTab() override;

    QWidget* GetLastTabStop() override;
    QWidget* GetMainControl() override;

  protected:
    /// `name` is the list's for screen readers, and for what is remembered of it.
    CListTab(const char* name, CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent);

    /// Takes the list's rows; what is given back lives until the next call.
    template <typename Rows>
    Rows& ShowRows(std::unique_ptr<Rows> rows) {
        Rows& kept = *rows;
        TakeRows(std::move(rows));
        return kept;
    }
    [[nodiscard]] CUGCtrl& Grid() const { return *m_grid; }
    [[nodiscard]] std::int64_t GetRowCount() const { return m_rows ? m_rows->GetRowCount() : 0; }
    /// Puts a widget above the list, and before it for the Tab key. It becomes the tab's.
    void AddAbove(QWidget& widget);

    /// Puts a widget below the list, seen while the list is. `last` is its last control that takes the keyboard. It
    /// becomes the tab's.
    void AddBelow(QWidget& widget, QWidget* last);

    /// The report, the run or the options have become others.
    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;
    void Fill(bool isSameObject) final;
    /// Why there is nothing to read for the subject; "" when there is.
    [[nodiscard]] virtual std::string GetObstacle() const = 0;
    /// For lists that only tables have: that a collection has no `what`; "" when the subject is a table.
    [[nodiscard]] std::string ObstacleOfCollection(const char* what) const;
    /// Fills the rows anew; false, with the rows as they were, when the repository fails.
    virtual bool FillRows(PrViewer& viewer) = 0;
    /// Called after each filling.
    virtual void RowsChanged() {}

  private:
    void TakeRows(std::unique_ptr<ListRows> rows);
    void ShowNote(const std::string& note);

    std::unique_ptr<ListRows> m_rows; ///< null until the derived class has some
    QStackedWidget* m_stack;
    CUGCtrl* m_grid;
    QLabel* m_note;
    QWidget* m_below = nullptr;
    QWidget* m_lastBelow = nullptr;
};

} // namespace tavix
