#pragma once

#include "grid/ListRows.h"
#include "tabs/ui/CProfTab.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>

class QLabel;
class QStackedWidget;

namespace tavix {

class CUGCtrl;
class PicturePane;
class PictureSplit;
class PrViewer;

/// For lists that only tables have: why a collection has no `what`; "" when the subject is a table.
[[nodiscard]] std::string obstacleOfCollection(const ReportSubject& subject, std::string_view what);

/// A tab that shows one list: a grid, or a sentence that explains why it would be empty. A derived class makes the rows
/// and fills them.
class CListTab : public CProfTab {
    Q_OBJECT
  public:
    ~CListTab() override;

    QWidget* GetLastTabStop() override;
    QWidget* GetMainControl() override;

  protected:
    /// `name` is read by screen readers and identifies the list's column widths in the settings.
    CListTab(std::string_view name, CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent);

    /// Takes ownership of the list's rows; the reference is valid until the next call.
    template <typename Rows>
    Rows& ShowRows(std::unique_ptr<Rows> rows) {
        Rows& kept = *rows;
        TakeRows(std::move(rows));
        return kept;
    }
    [[nodiscard]] CUGCtrl& Grid() const { return *m_grid; }
    [[nodiscard]] std::int64_t GetRowCount() const { return m_rows ? m_rows->GetRowCount() : 0; }
    /// Puts a widget above the list and before it in the tab order. Takes ownership.
    void AddAbove(QWidget& widget);

    /// Puts a line below the list and its buttons after it in the tab order. Takes ownership.
    void AddFooter(QWidget& line);

    /// Puts a widget below the list, visible while the list is. `last` is its last control that takes the focus. Takes
    /// ownership.
    void AddBelow(QWidget& widget, QWidget* last);

    /// Puts a picture beside the list, visible while the list is and there is room. Takes ownership.
    void AddBeside(PicturePane& picture);

    /// When the report, the run or the options have changed.
    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;
    void Fill(bool isSameObject) final;
    /// Called before each filling.
    virtual void PrepareFill() {}
    /// Why the subject has no such list; "" when it has one.
    [[nodiscard]] virtual std::string GetObstacle() const = 0;
    /// Fills the rows; false, with the rows unchanged, when the repository fails.
    virtual bool FillRows(PrViewer& viewer) = 0;
    /// Called after each filling.
    virtual void RowsChanged() {}

    void changeEvent(QEvent* event) override;

  private:
    void TakeRows(std::unique_ptr<ListRows> rows);
    void ShowNote(const std::string& note);
    void ShowBase(const ListBase& base);

    std::unique_ptr<ListRows> m_rows; ///< null until the derived class has made them
    QStackedWidget* m_stack;
    CUGCtrl* m_grid;
    QLabel* m_note;
    QLabel* m_base; ///< the line above the list
    QWidget* m_below = nullptr;
    QWidget* m_lastBelow = nullptr;
    PicturePane* m_picture = nullptr;
    PictureSplit* m_split = nullptr; ///< the list and the picture
};

} // namespace tavix
