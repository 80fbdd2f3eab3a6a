#pragma once

#include "tabs/RunOverviewModel.h"

#include <QAbstractButton>

namespace tavix {

/// A large figure of the overview of a run, with its change. It can be clicked if it leads somewhere.
class OverviewCardButton final : public QAbstractButton {
    Q_OBJECT
  public:
    explicit OverviewCardButton(QWidget* parent = nullptr);

    void ShowCard(const OverviewCard& card);
    [[nodiscard]] const OverviewDoor& GetDoor() const { return m_card.door; }
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    [[nodiscard]] QFont FigureFont() const;
    [[nodiscard]] QFont SmallFont() const;
    [[nodiscard]] QString Remark() const;

    OverviewCard m_card;
};

} // namespace tavix
