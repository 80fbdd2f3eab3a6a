#pragma once

#include <QDialog>
#include <QObject>
#include <QPointer>

#include <functional>
#include <utility>
#include <vector>

namespace tavix {

/// Knows whether an event loop, or a handler of the shell, runs within a function of the viewer. Whatever is done from
/// there is done under functions that have not returned yet: what they use must not be destroyed before they have.
class NestedLoops final : public QObject {
    Q_OBJECT
  public:
    static NestedLoops& instance();

    [[nodiscard]] bool areRunning() const { return m_depth > 0; }
    /// A dialog, a message or the progress of a reading is on the screen. Menus do not count.
    [[nodiscard]] bool isDialogOpen() const { return m_dialogs > 0; }
    /// Keeps `act` and calls it from the outermost event loop.
    void whenOver(std::function<void()> act);
    /// Does now what was kept, unless a nested loop is running.
    void finish();

  Q_SIGNALS:
    /// Posted: by the time it arrives, the function that opened the last dialog has returned.
    void dialogsChanged(bool isOpen);

  private:
    friend class NestedLoop;
    NestedLoops();
    void enter(bool isDialog);
    void leave(bool isDialog);
    void post();

    int m_depth = 0;
    int m_dialogs = 0;
    bool m_told = false;
    std::vector<std::function<void()>> m_kept;
};

/// Lives as long as such a loop or handler runs.
class NestedLoop {
  public:
    enum class Kind { Dialog, Other };

    explicit NestedLoop(Kind kind) : m_isDialog(kind == Kind::Dialog) { NestedLoops::instance().enter(m_isDialog); }
    ~NestedLoop() { NestedLoops::instance().leave(m_isDialog); }
    NestedLoop(const NestedLoop&) = delete;
    NestedLoop& operator=(const NestedLoop&) = delete;

  private:
    bool m_isDialog;
};

/// A modal dialog. It may go together with its parent while it is open, and counts as cancelled then.
template <typename Dialog>
class ModalDialog {
  public:
    template <typename... Arguments>
    explicit ModalDialog(Arguments&&... arguments) : m_dialog(new Dialog(std::forward<Arguments>(arguments)...)) {}
    ~ModalDialog() { delete m_dialog; }
    ModalDialog(const ModalDialog&) = delete;
    ModalDialog& operator=(const ModalDialog&) = delete;

    /// The dialog's result; 0 when it has been destroyed.
    int exec() {
        const NestedLoop loop(NestedLoop::Kind::Dialog);
        const int result = m_dialog->exec();
        return m_dialog ? result : 0;
    }
    /// Whether it was closed with OK.
    bool isAccepted() { return exec() == QDialog::Accepted; }

    Dialog* operator->() const { return m_dialog; }
    Dialog& operator*() const { return *m_dialog; }
    explicit operator bool() const { return !m_dialog.isNull(); }

  private:
    QPointer<Dialog> m_dialog;
};

} // namespace tavix
