#pragma once

#include "access/PrViewDisplayMessage.h"
#include "base/Messages.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QPointer>

#include <cstdint>
#include <memory>

class QLabel;
class QProgressBar;

namespace tavix {

/// Shown over the viewer while a source is read; Cancel and Escape stop the reading.
class DrillProgressDlg final : public QDialog {
    Q_OBJECT
  public:
    explicit DrillProgressDlg(QWidget* parent = nullptr);

    /// `total` 0 when it is not known.
    void ShowProgress(const QString& text, std::int64_t done, std::int64_t total);
    void ShowRows(std::int64_t rows);

  private:
    QLabel* m_text;
    QLabel* m_rows;
    QProgressBar* m_bar;
};

/// What the library reports while it looks for rows. The wait cursor is shown at first; when the reading takes longer,
/// a dialog takes its place, and events are handled between two reports.
class DrillProgress final : public PrViewDisplayMessage {
  public:
    /// `messages` must outlive the object; `parent` may be destroyed before it.
    DrillProgress(Messages& messages, QWidget* parent);
    ~DrillProgress() override;
    DrillProgress(const DrillProgress&) = delete;
    DrillProgress& operator=(const DrillProgress&) = delete;

    bool progress(std::string_view text, std::int64_t done, std::int64_t total) override;
    /// Told how many rows were found so far; false asks to stop.
    bool Found(std::int64_t rows);
    [[nodiscard]] bool WasCancelled() const { return m_cancelled; }

  private:
    bool Update();

    QPointer<QWidget> m_parent;
    std::unique_ptr<Messages::Busy> m_busy; ///< until the dialog is there
    std::unique_ptr<DrillProgressDlg> m_dialog;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_sinceUpdate;
    QString m_text;
    std::int64_t m_done = 0;
    std::int64_t m_total = 0;
    std::int64_t m_rows = 0;
    bool m_cancelled = false;
};

} // namespace tavix
