#pragma once

#include "frame/OptionsModel.h"

#include <QWidget>

class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace tavix {

/// The second page of the Options sheet: which metrics are shown, and in which order.
class CMetricsPage final : public QWidget {
    Q_OBJECT

  public:
    /// Edits the metrics of `model`, which must outlive the page, as the user goes.
    explicit CMetricsPage(OptionsModel& model, QWidget* parent = nullptr);

  private:
    void MoveCurrent(int steps);
    void RowMoved(int from, int to);
    void ShowAll(bool shown);
    void Update();

    OptionsModel& m_model;
    QListWidget* m_list;
    QLabel* m_count;
    QPushButton* m_up;
    QPushButton* m_down;
};

} // namespace tavix
