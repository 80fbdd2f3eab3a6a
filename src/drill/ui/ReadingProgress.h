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

/// What is read, in the words of the dialog.
enum class ReadingKind {
    Source, ///< a source, of which it is told how much was read, and how many rows were found in it
    List,   ///< a stored list, of which it is told how many rows were looked at
};

/// Shown over the viewer while something is read; Cancel and Escape stop the reading.
class ReadingProgressDlg final : public QDialog {
    Q_OBJECT
  public:
    explicit ReadingProgressDlg(ReadingKind kind, QWidget* parent = nullptr);
    ~ReadingProgressDlg() override;

    /// `total` 0 when it is not known.
    void ShowProgress(const QString& text, std::int64_t done, std::int64_t total);
    void ShowFound(std::int64_t rows);

  private:
    ReadingKind m_kind;
    QLabel* m_text;
    QLabel* m_rows;
    QProgressBar* m_bar;
};

/// What the library reports while it reads. The wait cursor, which is the caller's, does at first; when the reading
/// takes longer, a dialog shows how far it is, and events are handled between two reports.
class ReadingProgress final : public PrViewDisplayMessage {
  public:
    /// The dialog comes up over the window of `parent`, which may be destroyed before this object, once the reading
    /// has taken longer than the patience.
    ReadingProgress(ReadingKind kind, QWidget* parent, int patienceMilliseconds);
    ~ReadingProgress() override;
    ReadingProgress(const ReadingProgress&) = delete;
    ReadingProgress& operator=(const ReadingProgress&) = delete;

    bool progress(std::string_view text, std::int64_t done, std::int64_t total) override;
    /// Told how many rows were found so far; false asks to stop.
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
