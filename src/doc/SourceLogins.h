#pragma once

#include "access/PrViewer.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace tavix {

/// The user's logins to the data sources of the open report. They are kept in memory only, and no longer than the
/// report is open, since the same source name may mean another server in another report.
class SourceLogins {
  public:
    struct Question {
        std::string source;  ///< the data source's name
        std::string user;    ///< from the environment, else the system's login name
        std::string refusal; ///< the server's error text
    };
    /// Returns nothing when the user cancels.
    using Ask = std::function<std::optional<source::Credentials>(const Question&)>;

    /// Without this, the user is never asked.
    void SetAsk(Ask ask) { m_ask = std::move(ask); }
    /// The callback for a session; this object must outlive it.
    [[nodiscard]] source::AskCredentials ForSession();
    /// The source for which the user last cancelled; the call clears it.
    [[nodiscard]] std::optional<std::string> TakeDeclined() { return std::exchange(m_declined, std::nullopt); }
    /// Forgets all answers.
    void Clear();

  private:
    [[nodiscard]] std::optional<source::Credentials> Answer(const std::string& source, const std::string& refusal);

    Ask m_ask;
    std::map<std::string, source::Credentials> m_known; ///< by source
    std::optional<std::string> m_declined;
    int m_cleared = 0; ///< number of Clear() calls, to notice one while the user is being asked
};

} // namespace tavix
