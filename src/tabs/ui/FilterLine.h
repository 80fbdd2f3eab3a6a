#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace tavix {

/// The line above a filtered list: a summary of the filter, and buttons to edit and to stop it.
class FilterLine final : public QWidget {
    Q_OBJECT
  public:
    explicit FilterLine(QWidget* parent = nullptr);

    /// With `isAlarming` the text has the colour of alerts.
    void ShowText(const QString& words, bool isAlarming);
    [[nodiscard]] QWidget* GetLastTabStop() const;

  Q_SIGNALS:
    void EditClicked();
    void StopClicked();

  protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void ApplyColors();
    void FitText();

    QLabel* m_text;
    QPushButton* m_edit;
    QPushButton* m_stop;
    QString m_words;
    bool m_isAlarming = false;
};

} // namespace tavix
