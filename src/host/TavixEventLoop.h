#pragma once

#include "base/ColorScheme.h"

#include <chrono>
#include <functional>
#include <memory>

namespace Veldra::Solenne::Tavix {

/// The event loop of the viewer, for a shell that is not built with Qt. A shell either keeps its own loop and calls
/// ProcessEvents from it, or lets WaitForEvents wait for both. All calls must be made on one thread, on which all hosts
/// are used as well.
///
/// While a dialog of the viewer is open, ExecuteCommand, ProcessEvents and WaitForEvents do not return. The shell's
/// windows must then be repainted from the callbacks of watched descriptors.
class TavixEventLoop {
  public:
    /// How long a shell may sleep between calls of ProcessEvents without the viewer becoming sluggish.
    static constexpr std::chrono::milliseconds kPollInterval{10};

    TavixEventLoop();
    /// Stops.
    ~TavixEventLoop();
    TavixEventLoop(const TavixEventLoop&) = delete;
    TavixEventLoop& operator=(const TavixEventLoop&) = delete;

    /// Starts Qt unless the process has done so already. The arguments are copied; Qt's own, such as "-platform", take
    /// effect. Qt sets the process locale to the user's. False when another loop object has started Qt, or it was
    /// stopped before: a process can start it only once. If Qt cannot open the display, it ends the process.
    bool Start(int argc, char** argv);
    /// Shuts Qt down if this object started it. Every host must have been destroyed.
    void Stop();

    /// Gives the viewer's windows these colours. For a shell without Qt, whose own windows it does not touch; a shell
    /// built with Qt sets the palette of its application.
    static void UseColors(tavix::ColorScheme scheme);

    /// Calls `readable` whenever the descriptor has data to read, during ProcessEvents, WaitForEvents and the viewer's
    /// dialogs. A second call for the same descriptor replaces the callback.
    void Watch(int descriptor, std::function<void()> readable);
    void Unwatch(int descriptor);

    /// Handles pending events and does not wait.
    void ProcessEvents();
    /// Waits for an event in the viewer or at a watched descriptor, at most for `longest`, and handles it. False on
    /// timeout.
    bool WaitForEvents(std::chrono::milliseconds longest);

  private:
    struct Loop;
    std::unique_ptr<Loop> m_loop;
};

} // namespace Veldra::Solenne::Tavix
