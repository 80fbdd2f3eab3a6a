#pragma once

#include "frame/OptionsModel.h"

#include <QWidget>

class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace tavix {

/// The second page of the Options sheet: the metrics that are shown, and their order.
class CMetricsPage final : public QWidget {
    Q_OBJECT

  public:
    /// Edits the metrics of `model`, which must outlive the page, with each change of the user.
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
