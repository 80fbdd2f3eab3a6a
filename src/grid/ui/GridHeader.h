#pragma once

#include <QHeaderView>

namespace tavix {

/// A flat heading row: text, a remark below it where a column has one, a hair line below, an arrow at the column that
/// is sorted by.
class GridHeader final : public QHeaderView {
    Q_OBJECT
  public:
    explicit GridHeader(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintSection(QPainter* painter, const QRect& rect, int section) const override;
    void paintEvent(QPaintEvent* event) override;

  private:
    [[nodiscard]] QString MarkOf(int section) const;
    [[nodiscard]] bool HasMarks() const;
    [[nodiscard]] QFont MarkFont() const;

    bool m_hasMarks = false; ///< while the sections are painted
};

} // namespace tavix
