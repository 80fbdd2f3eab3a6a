#pragma once

#include "base/LibraryDate.h"
#include "doc/CommandIds.h"

#include <string>

namespace Veldra::Solenne::Tavix {

using tavix::CommandId;
/// The numbers of all commands, for ExecuteCommand and ExecuteUpdateUICommand.
using TavixCommandConstants = tavix::CommandId;

/// One run of a profiling job.
struct TavixRunInfo {
    int ID = 0;
    std::string Description;
    std::string Date; ///< the locale's date and time form
    tavix::LibraryDate DateObject = 0;

    bool operator==(const TavixRunInfo&) const = default;
};

/// The login for a repository server.
struct TavixAuthSvrInfo {
    std::string UserID;
    std::string Password;

    bool operator==(const TavixAuthSvrInfo&) const = default;
};

/// One report of a repository: a job with its runs.
struct TavixReportInfo {
    int JobID = 0;
    std::string Name;
    std::string Description;
    int RunCount = 0;
    std::string LastRun; ///< the locale's date and time form; empty without a run

    bool operator==(const TavixReportInfo&) const = default;
};

/// A command of the viewer, for menus.
struct TavixCommandInfo {
    int Id = 0;
    std::string Text;
    std::string StatusText;
};

/// A separate window of the viewer.
struct TavixWindowInfo {
    int Id = -1;
    std::string Name; ///< "airports · city", "Frequency Distribution Drill Through · city: “NA”"

    bool operator==(const TavixWindowInfo&) const = default;
};

struct TavixCommandState {
    bool Handled = false;
    bool Enabled = false;
    bool Checked = false;

    bool operator==(const TavixCommandState&) const = default;
};

/// The location of a repository, implemented by the shell. The order of the virtual functions is fixed: the viewer
/// calls the third, and the destructor comes last so as not to shift them.
class TavixConnection {
  public:
    /// The shell's name for the repository.
    [[nodiscard]] virtual std::string GetName() const = 0;
    /// The database system, for example "SQLite".
    [[nodiscard]] virtual std::string GetKind() const = 0;
    /// "sqlite:PATH", a plain path, or the URI of a server. The viewer calls this each time it needs it.
    [[nodiscard]] virtual std::string GetConnectionString() const = 0;
    virtual ~TavixConnection() = default;
};

/// How the keyboard focus enters or leaves the viewer.
enum class FocusNavigation { First, Last, Next, Previous };

/// The shell's part in keyboard navigation.
class TavixKeyboardSite {
  public:
    virtual ~TavixKeyboardSite() = default;
    /// The user pressed Tab on the last tab stop (Next) or Shift+Tab on the first one (Previous): the shell gives the
    /// focus to the control after or before the viewer.
    virtual void OnNoMoreTabStops(FocusNavigation request) = 0;
};

} // namespace Veldra::Solenne::Tavix
