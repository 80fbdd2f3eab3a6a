#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace Veldra::Solenne::Tavix {

/// The event loop of the viewer, for a shell that is not built with its toolkit. A shell either keeps its own loop and
/// calls ProcessEvents from it, or lets WaitForEvents sleep for both. All calls belong to one thread, which is then the
/// thread of all hosts.
///
/// While a dialog of the viewer is open, ExecuteCommand and the two calls here do not return: then it is the callbacks
/// of watched descriptors that keep the shell's own windows painted.
class TavixEventLoop {
  public:
    /// How long a shell that calls ProcessEvents may sleep in between without the viewer feeling slow.
    static constexpr std::chrono::milliseconds kPollInterval{10};

    TavixEventLoop();
    /// Stops.
    ~TavixEventLoop();
    TavixEventLoop(const TavixEventLoop&) = delete;
    TavixEventLoop& operator=(const TavixEventLoop&) = delete;

    /// Starts the toolkit unless the process has done so already. The arguments are copied; those of the toolkit, as
    /// "-platform", are obeyed. The toolkit sets the process locale to the user's. False when it runs already in
    /// another loop object or was stopped before: a process starts it once. A toolkit that cannot reach the display
    /// ends the process.
    bool Start(int argc, char** argv);
    /// Ends the toolkit if this object started it. Every host must be gone.
    void Stop();

    /// Calls `readable` from within the calls below, and from within the viewer's dialogs, whenever the descriptor has
    /// something to read. One callback for a descriptor; the later one counts.
    void Watch(int descriptor, std::function<void()> readable);
    void Unwatch(int descriptor);

    /// Does what is pending and does not wait.
    void ProcessEvents();
    /// Waits until something happens, in the viewer or at a watched descriptor, or the time is over, and does it. False
    /// when the time was over first.
    bool WaitForEvents(std::chrono::milliseconds longest);

  private:
    struct Loop;
    std::unique_ptr<Loop> m_loop;
};

} // namespace Veldra::Solenne::Tavix
