#pragma once

#include <memory>
#include <string_view>

namespace tavix {

/// Messages to the user outside the panes. The caller composes the whole text; the implementation only displays it.
/// Tests inject one that compares the words and scripts the answers.
class Messages {
  public:
    /// Shows the wait cursor during its lifetime.
    class Busy {
      public:
        virtual ~Busy() = default;
    };

    enum class Answer { No, Yes };

    virtual ~Messages() = default;

    /// A modal warning (exclamation icon, OK). An empty caption means the program's name.
    virtual void warn(std::string_view text, std::string_view caption = {}) = 0;
    /// A modal Yes/No question; `preset` is the default button.
    [[nodiscard]] virtual Answer ask(std::string_view text, std::string_view caption, Answer preset = Answer::No) = 0;
    [[nodiscard]] virtual std::unique_ptr<Busy> busy() = 0;
};

} // namespace tavix
