#include "doc/SourceLogins.h"

#include "base/LoginName.h"

namespace tavix {

source::AskCredentials SourceLogins::ForSession() {
    return [this](const std::string& source, const std::string& refusal) { return Answer(source, refusal); };
}

std::optional<source::Credentials> SourceLogins::Answer(const std::string& source, const std::string& refusal) {
    const auto known = m_known.find(source);
    if (refusal.empty()) {
        m_declined.reset();
        return known != m_known.end() ? std::optional(known->second) : source::credentialsFromEnvironment(source);
    }
    Question question{source, {}, refusal};
    const auto tried =
        known != m_known.end() ? std::optional(known->second) : source::credentialsFromEnvironment(source);
    question.user = tried && !tried->user.empty() ? tried->user : loginName();
    m_known.erase(source);
    if (!m_ask)
        return std::nullopt;
    const int cleared = m_cleared;
    auto answer = m_ask(question);
    // The report was closed while the user was being asked.
    if (cleared != m_cleared)
        return std::nullopt;
    if (answer)
        m_known[source] = *answer;
    else
        m_declined = source;
    return answer;
}

void SourceLogins::Clear() {
    m_known.clear();
    m_declined.reset();
    ++m_cleared;
}

} // namespace tavix
