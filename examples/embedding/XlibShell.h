#pragma once

#include "host/TavixEventLoop.h"
#include "host/TavixHost.h"

#include <X11/Xlib.h>

#include <functional>
#include <string>

namespace embedding {

namespace tv = Veldra::Solenne::Tavix;

/// The connection to a repository file.
class FileConnection final : public tv::TavixConnection {
  public:
    explicit FileConnection(std::string path) : m_path(std::move(path)) {}
    [[nodiscard]] std::string GetName() const override { return m_path; }
    [[nodiscard]] std::string GetKind() const override { return "SQLite"; }
    [[nodiscard]] std::string GetConnectionString() const override { return "sqlite:" + m_path; }

  private:
    std::string m_path;
};

/// A desktop shell with one window, in plain Xlib: a strip with two fields that can have the focus, and the viewer
/// below it. Tab moves from the first field through the viewer to the second one and back to the first.
class XlibShell final : public tv::TavixKeyboardSite {
  public:
    enum class Field { Before, After };

    /// The loop must have been started.
    explicit XlibShell(tv::TavixEventLoop& loop);
    ~XlibShell() override;
    XlibShell(const XlibShell&) = delete;
    XlibShell& operator=(const XlibShell&) = delete;

    /// Creates the window and the view in it; false when the view could not be created.
    bool open();
    /// Destroys the view, then its window, as a shell should.
    void closeViewFirst();
    /// Destroys the window first, as a window manager or a crash may do.
    void closeWindowFirst();

    void OnNoMoreTabStops(tv::FocusNavigation request) override;
    void focusField(Field field);
    void resize(int width, int height);
    /// Handles pending events of shell and viewer; waits a little when there are none.
    void step();
    /// Steps until the condition is true; false after five seconds.
    bool stepUntil(const std::function<bool()>& condition);

    [[nodiscard]] tv::TavixHost& host() { return m_host; }
    [[nodiscard]] Display* display() { return m_display; }
    [[nodiscard]] Window topLevel() const { return m_topLevel; }
    [[nodiscard]] Window place() const { return m_place; }
    [[nodiscard]] Window view() const { return m_view; }
    [[nodiscard]] bool isClosed() const { return m_closed; }
    [[nodiscard]] bool hasKeyboard() const { return m_hasKeyboard; }
    [[nodiscard]] Field field() const { return m_field; }
    /// Called for a letter key while a field has the focus.
    std::function<void(char)> onLetter;

  private:
    void handleEvents();
    void handleKey(XKeyEvent& key);
    void handleFocus(const XFocusChangeEvent& change);
    void layOut(int width, int height);
    void paint();

    tv::TavixEventLoop& m_loop;
    Display* m_display;
    Window m_topLevel = 0;
    Window m_strip = 0;
    Window m_place = 0;
    Window m_view = 0;
    Field m_field = Field::Before;
    bool m_hasKeyboard = false; ///< the strip has it
    bool m_closed = false;
    Atom m_deleteWindow;
    tv::TavixHost m_host;
};

} // namespace embedding
