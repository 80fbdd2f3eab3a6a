#pragma once

#include <memory>
#include <string_view>

namespace tavix {

/// The one way in which the viewer speaks to its user outside its panes. The whole text is composed by the caller;
/// the implementation only shows it. Tests inject one that compares the words and scripts the answers.
class Messages {
  public:
    /// While one lives the wait cursor is shown.
    class Busy {
      public:
        virtual ~Busy() = default;
    };

    enum class Answer { No, Yes };

    virtual ~Messages() = default;

    /// A modal warning (exclamation icon, OK). An empty caption stands for the program's own name.
    virtual void warn(std::string_view text, std::string_view caption = {}) = 0;
    /// A modal Yes/No question; `preset` is the default button.
    [[nodiscard]] virtual Answer ask(std::string_view text, std::string_view caption, Answer preset = Answer::No) = 0;
    [[nodiscard]] virtual std::unique_ptr<Busy> busy() = 0;
};

} // namespace tavix
