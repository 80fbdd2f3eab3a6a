#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace Veldra::Solenne::Tavix {

/// A list of handlers. Handlers may attach and detach while the event is being raised: a detached one is not called any
/// more, a new one is called from the next time on. A handler may even destroy the event; then the handlers after it
/// are not called.
template <typename... Arguments>
class TavixEvent {
  public:
    using Handler = std::function<void(Arguments...)>;
    using Token = int;

    TavixEvent() = default;
    ~TavixEvent() { m_handlers->clear(); }
    TavixEvent(const TavixEvent&) = delete;
    TavixEvent& operator=(const TavixEvent&) = delete;

    /// Adds a handler after the others. The token detaches it.
    Token Attach(Handler handler) {
        m_handlers->emplace_back(++m_lastToken, std::move(handler));
        return m_lastToken;
    }
    /// False when no handler has this token.
    bool Detach(Token token) {
        return std::erase_if(*m_handlers, [token](const Entry& entry) { return entry.first == token; }) != 0;
    }
    [[nodiscard]] bool HasHandlers() const { return !m_handlers->empty(); }

    /// Called by the host.
    void Raise(Arguments... arguments) const {
        const std::shared_ptr<const std::vector<Entry>> handlers = m_handlers;
        // A handler may attach or detach others.
        const std::vector<Entry> now = *handlers; // NOLINT(performance-unnecessary-copy-initialization)
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
