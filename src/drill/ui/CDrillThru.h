#pragma once

#include "base/Messages.h"
#include "base/SettingsStore.h"
#include "drill/CDrillThruDataSrc.h"
#include "drill/DrillRequest.h"

#include <QDialog>

#include <functional>
#include <string>

class QAbstractButton;
class QLabel;
class QLineEdit;
class QPrinter;

namespace tavix {

class CUGCtrl;
class ReadingProgress;

/// The source rows behind a figure. The window reads them while it is made, up to MaxDrillThruRows, gives the cursor
/// back and keeps them until it is closed; it needs neither the repository nor the tab that opened it. Several may be
/// open at once.
class CDrillThru final : public QDialog {
    Q_OBJECT
  public:
    /// Reads the rows. `progress` is the sink that the cursor was opened with, and is not needed afterwards; settings
    /// and messages must outlive the window.
    CDrillThru(DrillRequest request, ReadingProgress& progress, SettingsStore& settings, Messages& messages,
               QWidget* parent);
    ~CDrillThru() override;

    /// Shows the window, centred over `over`; from then on it deletes itself when it is closed. When the source failed
    /// it is there with the rows read so far, and the user is told.
    void ShowOver(const QWidget& over);
    /// Makes a window and shows it. It goes with `parent`, at the latest.
    static CDrillThru* Show(DrillRequest request, ReadingProgress& progress, SettingsStore& settings,
                            Messages& messages, QWidget* parent, const QWidget& over);

    [[nodiscard]] const CDrillThruDataSrc& GetSource() const { return m_source; }
    /// Asks for the file to save in; "" for none. By default a dialog, which tests replace.
    std::function<QString()> AskPath;
    /// Lets the user choose printer and pages; false for none. By default a dialog, which tests replace.
    std::function<bool(QPrinter&)> AskPrinter;

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void MakeControls(const std::string& subject);
    void ReadRows(DrillRequest request, ReadingProgress& progress);
    void Find(SearchDirection direction, bool beyond);
    void Export();
    void Print();
    [[nodiscard]] QString ChoosePath();
    [[nodiscard]] bool ChoosePrinter(QPrinter& printer);

    SettingsStore& m_settings;
    Messages& m_messages;
    std::string m_context;
    CDrillThruDataSrc m_source;
    bool m_failed = false;
    QLabel* m_subject = nullptr;
    QLineEdit* m_find = nullptr;
    QLabel* m_notFound = nullptr;
    CUGCtrl* m_grid = nullptr;
    QLabel* m_status = nullptr;
    QAbstractButton* m_export = nullptr;
    QAbstractButton* m_print = nullptr;
};

} // namespace tavix
