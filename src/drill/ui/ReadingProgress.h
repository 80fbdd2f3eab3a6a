#pragma once

#include "access/PrViewDisplayMessage.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QPointer>

#include <cstdint>
#include <memory>

class QLabel;
class QProgressBar;

namespace tavix {

/// What is being read; decides the dialog's texts.
enum class ReadingKind {
    Source, ///< a source: shows the share that was read and the number of rows found
    List,   ///< a stored list: shows the number of rows examined
    Runs,   ///< two runs that are compared: shows the number of values examined
};

/// Shown over the viewer during a long reading; Cancel and Escape stop it.
class ReadingProgressDlg final : public QDialog {
    Q_OBJECT
  public:
    explicit ReadingProgressDlg(ReadingKind kind, QWidget* parent = nullptr);
    ~ReadingProgressDlg() override;

    /// `total` is 0 when it is not known.
    void ShowProgress(const QString& text, std::int64_t done, std::int64_t total);
    void ShowFound(std::int64_t rows);

  private:
    ReadingKind m_kind;
    QLabel* m_text;
    QLabel* m_rows;
    QProgressBar* m_bar;
};

/// Receives the library's progress reports. At first only the caller's wait cursor shows; when the reading takes
/// longer, a dialog shows the progress, and each report handles events.
class ReadingProgress final : public PrViewDisplayMessage {
  public:
    /// The dialog comes up over the window of `parent`, which may be destroyed before this object, once the reading
    /// has taken longer than the patience.
    ReadingProgress(ReadingKind kind, QWidget* parent, int patienceMilliseconds);
    ~ReadingProgress() override;
    ReadingProgress(const ReadingProgress&) = delete;
    ReadingProgress& operator=(const ReadingProgress&) = delete;

    bool progress(std::string_view text, std::int64_t done, std::int64_t total) override;
    /// Reports the number of rows found so far; false means that the user cancelled.
    bool Found(std::int64_t rows);
    [[nodiscard]] bool WasCancelled() const { return m_cancelled; }

  private:
    bool Update();

    ReadingKind m_kind;
    QPointer<QWidget> m_parent;
    int m_patience;
    std::unique_ptr<ReadingProgressDlg> m_dialog; ///< null until it is shown
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_sinceUpdate;
    QString m_text;
    std::int64_t m_done = 0;
    std::int64_t m_total = 0;
    std::int64_t m_rows = 0;
    bool m_cancelled = false;
};

} // namespace tavix
