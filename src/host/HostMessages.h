#pragma once

#include "base/Messages.h"
#include "base/ui/NestedLoop.h"

#include <memory>
#include <string_view>

namespace Veldra::Solenne::Tavix {

/// The messages of one view: passed on to the shell or to our own message boxes until they are silenced.
class HostMessages final : public tavix::Messages {
  public:
    /// `target` must live until Silence is called or this object is destroyed.
    explicit HostMessages(tavix::Messages& target) : m_target(&target) {}

    /// Shows nothing from now on, and answers every question with No.
    void Silence() { m_target = nullptr; }

    void warn(std::string_view text, std::string_view caption) override {
        if (!m_target)
            return;
        const tavix::NestedLoop loop(tavix::NestedLoop::Kind::Dialog);
        m_target->warn(text, caption);
    }
    [[nodiscard]] Answer ask(std::string_view text, std::string_view caption, Answer preset) override {
        if (!m_target)
            return Answer::No;
        const tavix::NestedLoop loop(tavix::NestedLoop::Kind::Dialog);
        const Answer answer = m_target->ask(text, caption, preset);
        // Silence may have been called while the question was shown.
        return m_target ? answer : Answer::No;
    }
    [[nodiscard]] std::unique_ptr<Busy> busy() override {
        return m_target ? m_target->busy() : std::make_unique<Busy>();
    }

  private:
    tavix::Messages* m_target;
};

} // namespace Veldra::Solenne::Tavix
