#pragma once

#include "base/Messages.h"
#include "base/SettingsStore.h"
#include "drill/CDrillThruDataSrc.h"
#include "drill/DrillRequest.h"
#include "drill/ui/DrillDialogs.h"

#include <QDialog>
#include <QTimer>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class QAbstractButton;
class QCheckBox;
class QComboBox;
class QVBoxLayout;
class QLabel;
class QLineEdit;

namespace tavix {

class CUGCtrl;
class ReadingProgress;

/// The source rows behind a metric. The constructor reads them, up to MaxDrillThruRows, and gives the cursor back; the
/// window keeps them until it is closed, and needs neither the repository nor the tab that opened it. Several may be
/// open at once.
class CDrillThru final : public QDialog {
    Q_OBJECT
  public:
    /// Reads the rows. `progress` is the sink that the cursor was opened with; it is not needed afterwards. Settings
    /// and messages must outlive the window.
    CDrillThru(DrillRequest request, ReadingProgress& progress, SettingsStore& settings, Messages& messages,
               QWidget* parent, DrillDialogs dialogs = {});
    ~CDrillThru() override;

    /// Shows the window, centred over `over`; from then on it deletes itself when it is closed. After a failure of the
    /// source it shows the rows read so far, and a message.
    void ShowOver(const QWidget& over);
    /// Makes a window, which `parent` owns, and shows it.
    static CDrillThru* Show(DrillRequest request, ReadingProgress& progress, SettingsStore& settings,
                            Messages& messages, QWidget* parent, const QWidget& over, DrillDialogs dialogs = {});

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void MakeControls(const std::string& subject);
    void MakeSearch(QVBoxLayout& above);
    void ReadRows(DrillRequest request, ReadingProgress& progress);
    void Find(SearchDirection direction, bool beyond);
    /// The text or its options have changed: finds the text, or soon shows the rows that match.
    void SearchChanged();
    /// Shows the rows that match, or all.
    void Filter();
    void ShowOnly(std::optional<std::vector<std::uint32_t>> rows);
    void ShowProblem(const QString& problem);
    [[nodiscard]] int SearchedColumn() const;
    void Export();
    void Print();

    SettingsStore& m_settings;
    Messages& m_messages;
    DrillDialogs m_dialogs;
    std::string m_context;
    CDrillThruDataSrc m_source;
    bool m_failed = false;
    QLabel* m_subject;
    std::string m_statusOfAll;
    QLabel* m_notFound;
    QLabel* m_status;
    QLineEdit* m_find;
    QComboBox* m_column;
    QCheckBox* m_onlyMatching;
    QTimer m_pause;
    CUGCtrl* m_grid;
    QAbstractButton* m_export;
    QAbstractButton* m_print;
};

} // namespace tavix
