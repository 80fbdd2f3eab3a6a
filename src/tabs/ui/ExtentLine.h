#pragma once

#include "tabs/FreqDistModel.h"

#include <QWidget>

#include <vector>

class QHBoxLayout;
class QLabel;

namespace tavix {

class LinkButton;

/// The line below a list that is not shown whole: how many of its entries are, and links to show more or fewer.
class ExtentLine final : public QWidget {
    Q_OBJECT
  public:
    explicit ExtentLine(QWidget* parent = nullptr);

    void ShowExtent(const FreqDistModel::Extent& extent);
    /// The last link; null without one.
    [[nodiscard]] QWidget* GetLastTabStop() const;

  Q_SIGNALS:
    void LimitChosen(qint64 limit);

  protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    struct Link {
        QLabel* separator;
        LinkButton* button;
    };

    void ApplyColors();
    Link AddLink();

    QLabel* m_text;
    QHBoxLayout* m_layout;
    std::vector<Link> m_links;
    FreqDistModel::Extent m_extent;
};

} // namespace tavix
