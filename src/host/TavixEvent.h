#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace Veldra::Solenne::Tavix {

/// A list of handlers. Attaching and detaching is allowed while the event is being raised: a handler that is detached
/// by another is not called any more, one that is attached hears of the next time. A handler may even destroy the
/// event; those after it are not called then.
template <typename... Arguments>
class TavixEvent {
  public:
    using Handler = std::function<void(Arguments...)>;
    using Token = int;

    TavixEvent() = default;
    ~TavixEvent() { m_handlers->clear(); }
    TavixEvent(const TavixEvent&) = delete;
    TavixEvent& operator=(const TavixEvent&) = delete;

    /// Handlers are called in the order in which they were attached. The token detaches this one.
    Token Attach(Handler handler) {
        m_handlers->emplace_back(++m_lastToken, std::move(handler));
        return m_lastToken;
    }
    /// False when no handler has this token.
    bool Detach(Token token) {
        return std::erase_if(*m_handlers, [token](const Entry& entry) { return entry.first == token; }) != 0;
    }
    [[nodiscard]] bool HasHandlers() const { return !m_handlers->empty(); }

    /// For the host.
    void Raise(Arguments... arguments) const {
        const std::shared_ptr<const std::vector<Entry>> handlers = m_handlers;
        const std::vector<Entry> now = *handlers;
        for (const Entry& entry : now) {
            const bool attached = std::any_of(handlers->begin(), handlers->end(),
                                              [&entry](const Entry& each) { return each.first == entry.first; });
            if (attached)
                entry.second(arguments...);
        }
    }

  private:
    using Entry = std::pair<Token, Handler>;

    std::shared_ptr<std::vector<Entry>> m_handlers = std::make_shared<std::vector<Entry>>();
    Token m_lastToken = 0;
};

} // namespace Veldra::Solenne::Tavix
