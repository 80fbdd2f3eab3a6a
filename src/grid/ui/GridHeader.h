#pragma once

#include <QHeaderView>

#include <limits>

namespace tavix {

/// A flat heading row: heading text, the column's mark below it if it has one, a hairline below, and an arrow at the
/// sort column.
class GridHeader final : public QHeaderView {
    Q_OBJECT
  public:
    explicit GridHeader(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    /// Another view covers the headings from this x on; their texts stay before it.
    void SetFreeWidth(int width) { m_freeWidth = width; }
    /// The width of a column that cuts neither its heading nor its mark, also while the rows are sorted by it.
    [[nodiscard]] int NeededWidth(int section) const;

  protected:
    void paintSection(QPainter* painter, const QRect& rect, int section) const override;
    void paintEvent(QPaintEvent* event) override;

  private:
    [[nodiscard]] QString MarkOf(int section) const;
    [[nodiscard]] bool HasMarks() const;
    [[nodiscard]] QFont HeadingFont() const;
    [[nodiscard]] QFont MarkFont() const;

    bool m_hasMarks = false; ///< while the sections are painted
    int m_freeWidth = std::numeric_limits<int>::max();
};

} // namespace tavix
