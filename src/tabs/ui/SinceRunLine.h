#pragma once

#include "doc/CTavixDoc.h"
#include "report/RunList.h"

#include <QWidget>

#include <vector>

class QComboBox;
class QLabel;

namespace tavix {

/// The line above a list of changes: the two runs that are compared, and what was found.
class SinceRunLine final : public QWidget {
    Q_OBJECT
  public:
    explicit SinceRunLine(QWidget* parent = nullptr);

    void ShowRuns(const std::vector<RunRow>& runs, const ComparedRuns& pair);
    void ShowSummary(const QString& text);
    [[nodiscard]] QWidget* GetLastTabStop() const;

  Q_SIGNALS:
    /// The user has chosen runs, perhaps the same ones again; -1 for none.
    void Chosen(int sinceRow, int untilRow);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void FitSummary();

    QLabel* m_summary;
    QComboBox* m_since;
    QComboBox* m_until;
    QString m_words;
};

} // namespace tavix
