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

    /// `summary` says which rows stay. With a `failure`, why the filter could not be applied, that is told instead.
    void ShowFilter(const QString& summary, const QString& failure);
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
    void ShowText();

    QLabel* m_text;
    QPushButton* m_edit;
    QPushButton* m_stop;
    QString m_words;
    bool m_isFailure = false;
};

} // namespace tavix
