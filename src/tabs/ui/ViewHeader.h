#pragma once

#include <QWidget>

class QLabel;
class QToolButton;

namespace tavix {

class LinkButton;

/// The line above the tabs: title, details and the buttons of the view.
class ViewHeader final : public QWidget {
    Q_OBJECT
  public:
    explicit ViewHeader(QWidget* parent = nullptr);

    void SetText(const QString& title, const QString& detail);
    /// The link that opens the list of damaged rows; "" removes it.
    void SetDamage(const QString& text);
    /// Whether details can be shown.
    void EnableDetails(bool hasDetails);
    void HideButtons();
    /// The last button in the tab order; null when they are hidden.
    [[nodiscard]] QWidget* GetLastTabStop() const;

  Q_SIGNALS:
    void DetailsClicked();
    void DetachClicked();
    void DamageClicked();

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void ApplyLook();

    QLabel* m_title;
    QLabel* m_detail;
    LinkButton* m_damage;
    QToolButton* m_details;
    QToolButton* m_detach;
};

} // namespace tavix
