#pragma once

#include "base/Messages.h"

#include <cstdlib>
#include <memory>
#include <string_view>

namespace tavix::testing {

/// Shows nothing and answers Yes.
class SilentMessages final : public Messages {
  public:
    void warn(std::string_view, std::string_view) override {}
    Answer ask(std::string_view, std::string_view, Answer) override { return Answer::Yes; }
    std::unique_ptr<Busy> busy() override { return nullptr; }
};

/// Ends the program, which a fuzzer reports, unless the condition holds.
inline void holdsOrAborts(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace tavix::testing
