#pragma once

#include "access/PrViewer.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace tavix {

/// Who the user is to the databases behind a report, for as long as the report is open: the name of a source may mean
/// another server in another report. What was answered lives in memory only.
class SourceLogins {
  public:
    struct Question {
        std::string source;  ///< the data source's name
        std::string user;    ///< whom the environment names, else who is logged in to the system
        std::string refusal; ///< the words of the server
    };
    /// Nothing when the user gives no answer.
    using Ask = std::function<std::optional<source::Credentials>(const Question&)>;

    /// Without one, nobody is asked.
    void SetAsk(Ask ask) { m_ask = std::move(ask); }
    /// What a session wants to be given; this object must outlive it.
    [[nodiscard]] source::AskCredentials ForSession();
    /// The source for which the user last gave no answer; from then on it is forgotten.
    [[nodiscard]] std::optional<std::string> TakeDeclined() { return std::exchange(m_declined, std::nullopt); }
    /// Forgets all answers.
    void Clear();

  private:
    [[nodiscard]] std::optional<source::Credentials> Answer(const std::string& source, const std::string& refusal);

    Ask m_ask;
    std::map<std::string, source::Credentials> m_known; ///< by source
    std::optional<std::string> m_declined;
    int m_cleared = 0; ///< how often, to notice that it happened while the user was asked
};

} // namespace tavix
