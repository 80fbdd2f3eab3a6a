#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace tavix {

/// The line above a filtered list: what the filter lets stay, and a way out of it.
class FilterLine final : public QWidget {
    Q_OBJECT
  public:
    explicit FilterLine(QWidget* parent = nullptr);

    /// With `isAlarming` the words are of the colour of a figure that an alert watches.
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
