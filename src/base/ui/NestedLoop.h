#pragma once

#include <QDialog>
#include <QObject>
#include <QPointer>

#include <functional>
#include <utility>
#include <vector>

namespace tavix {

/// Tracks whether a function of the viewer is running an event loop or a handler of the shell. Objects that such a
/// function uses must not be destroyed from there before the function has returned.
class NestedLoops final : public QObject {
    Q_OBJECT
  public:
    static NestedLoops& instance();

    [[nodiscard]] bool areRunning() const { return m_depth > 0; }
    /// Whether a dialog, a message or a progress window is open. Menus do not count.
    [[nodiscard]] bool isDialogOpen() const { return m_dialogs > 0; }
    /// Defers `act` until the outermost event loop runs.
    void whenOver(std::function<void()> act);
    /// Runs the deferred actions now, unless a nested loop is running.
    void finish();

  Q_SIGNALS:
    /// Posted, so that it arrives after the function that opened the last dialog has returned.
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

/// Marks a nested loop or handler: exists as long as it runs.
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

/// A modal dialog. If it is destroyed with its parent while it is open, it counts as cancelled.
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
