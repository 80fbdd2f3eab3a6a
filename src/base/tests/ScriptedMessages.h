#pragma once

#include "base/Messages.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <string>
#include <utility>

namespace tavix::testing {

/// Messages for tests: each message is announced beforehand, in order and word for word. An unannounced message fails
/// the test, and so does an announced one that does not come.
class ScriptedMessages final : public Messages {
  public:
    ScriptedMessages() = default;
    ScriptedMessages(const ScriptedMessages&) = delete;
    ScriptedMessages& operator=(const ScriptedMessages&) = delete;
    ~ScriptedMessages() override {
        for (const Step& step : m_steps)
            ADD_FAILURE() << "never shown: " << step.text;
        EXPECT_EQ(m_busyNow, 0) << "the wait cursor was left on";
    }

    void expectWarn(std::string text, std::string caption = {}) {
        m_steps.push_back({false, std::move(text), std::move(caption), Answer::No, Answer::No});
    }
    /// `preset` is the expected default button.
    void expectAsk(std::string text, std::string caption, Answer answer, Answer preset = Answer::No) {
        m_steps.push_back({true, std::move(text), std::move(caption), answer, preset});
    }
    /// Receives "warn TEXT", "ask TEXT", "busy" and "idle" as they happen, for interleaving with other events.
    std::function<void(const std::string&)> onEvent;
    /// The number of announced messages still to come.
    [[nodiscard]] std::size_t pending() const { return m_steps.size(); }
    [[nodiscard]] int busyCount() const { return m_busyCount; }

    void warn(std::string_view text, std::string_view caption) override {
        event("warn " + std::string(text));
        (void)take(false, text, caption);
    }
    Answer ask(std::string_view text, std::string_view caption, Answer preset) override {
        event("ask " + std::string(text));
        const Step step = take(true, text, caption);
        EXPECT_EQ(step.preset, preset) << "default button of: " << text;
        return step.answer;
    }
    std::unique_ptr<Busy> busy() override { return std::make_unique<Waiting>(*this); }

  private:
    struct Step {
        bool question;
        std::string text;
        std::string caption;
        Answer answer;
        Answer preset;
    };
    class Waiting final : public Busy {
      public:
        explicit Waiting(ScriptedMessages& owner) : m_owner(owner) {
            ++m_owner.m_busyCount;
            ++m_owner.m_busyNow;
            m_owner.event("busy");
        }
        ~Waiting() override {
            --m_owner.m_busyNow;
            m_owner.event("idle");
        }

      private:
        ScriptedMessages& m_owner;
    };

    Step take(bool question, std::string_view text, std::string_view caption) {
        if (m_steps.empty()) {
            ADD_FAILURE() << "unexpected message: " << text;
            return {question, {}, {}, Answer::No, Answer::No};
        }
        Step step = std::move(m_steps.front());
        m_steps.pop_front();
        EXPECT_EQ(step.question, question) << text;
        EXPECT_EQ(step.text, text);
        EXPECT_EQ(step.caption, caption) << "caption of: " << text;
        return step;
    }
    void event(const std::string& what) const {
        if (onEvent)
            onEvent(what);
    }

    std::deque<Step> m_steps;
    int m_busyCount = 0;
    int m_busyNow = 0;
};

} // namespace tavix::testing
