#pragma once

#include "host/TavixEventLoop.h"
#include "host/TavixHost.h"

#include <X11/Xlib.h>

#include <functional>
#include <string>

namespace embedding {

namespace tv = Veldra::Solenne::Tavix;

/// A repository file, as this program knows it.
class FileConnection final : public tv::TavixConnection {
  public:
    explicit FileConnection(std::string path) : m_path(std::move(path)) {}
    [[nodiscard]] std::string GetName() const override { return m_path; }
    [[nodiscard]] std::string GetKind() const override { return "SQLite"; }
    [[nodiscard]] std::string GetConnectionString() const override { return "sqlite:" + m_path; }

  private:
    std::string m_path;
};

/// A desktop shell of one window, in plain Xlib: a strip with two fields that can have the keyboard, and below it the
/// viewer. Tab goes from the first field through the viewer to the second one and round again.
class XlibShell final : public tv::TavixKeyboardSite {
  public:
    enum class Field { Before, After };

    /// The loop must have been started.
    explicit XlibShell(tv::TavixEventLoop& loop);
    ~XlibShell() override;
    XlibShell(const XlibShell&) = delete;
    XlibShell& operator=(const XlibShell&) = delete;

    /// Makes the window and the view in it; false when the view could not be made.
    bool open();
    /// The order that a shell should keep: the view goes, then its window.
    void closeViewFirst();
    /// The order in which a window manager or a crash may do it.
    void closeWindowFirst();

    void OnNoMoreTabStops(tv::FocusNavigation request) override;
    void focusField(Field field);
    void resize(int width, int height);
    /// Handles what has arrived and lets the viewer handle what it has; waits a little when there is nothing.
    void step();
    /// Steps until it is true; false after five seconds.
    bool stepUntil(const std::function<bool()>& condition);

    [[nodiscard]] tv::TavixHost& host() { return m_host; }
    [[nodiscard]] Display* display() { return m_display; }
    [[nodiscard]] Window topLevel() const { return m_topLevel; }
    [[nodiscard]] Window place() const { return m_place; }
    [[nodiscard]] Window view() const { return m_view; }
    [[nodiscard]] bool isClosed() const { return m_closed; }
    [[nodiscard]] bool hasKeyboard() const { return m_hasKeyboard; }
    [[nodiscard]] Field field() const { return m_field; }
    /// A letter key that was pressed while a field had the keyboard.
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
