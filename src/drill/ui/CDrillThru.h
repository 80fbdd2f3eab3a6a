#pragma once

#include "base/Messages.h"
#include "base/SettingsStore.h"
#include "drill/CDrillThruDataSrc.h"
#include "drill/DrillRequest.h"
#include "drill/ui/DrillDialogs.h"

#include <QDialog>

#include <string>

class QAbstractButton;
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
    void ReadRows(DrillRequest request, ReadingProgress& progress);
    void Find(SearchDirection direction, bool beyond);
    void Export();
    void Print();

    SettingsStore& m_settings;
    Messages& m_messages;
    DrillDialogs m_dialogs;
    std::string m_context;
    CDrillThruDataSrc m_source;
    bool m_failed = false;
    QLabel* m_subject;
    QLabel* m_notFound;
    QLabel* m_status;
    QLineEdit* m_find;
    CUGCtrl* m_grid;
    QAbstractButton* m_export;
    QAbstractButton* m_print;
};

} // namespace tavix
