#pragma once

#include "access/PrViewDisplayMessage.h"

#include <chrono>
#include <cstdint>
#include <string_view>

namespace tavix::cli {

/// Shows in one line of the terminal, rewritten in place, how far the reading of a source is, and stops it when the
/// user interrupts. Quick readings and those whose rows go to the same terminal show nothing.
class ReadingLine final : public PrViewDisplayMessage {
  public:
    ReadingLine();
    /// Removes the line.
    ~ReadingLine() override;
    ReadingLine(const ReadingLine&) = delete;
    ReadingLine& operator=(const ReadingLine&) = delete;

    bool progress(std::string_view text, std::int64_t done, std::int64_t total) override;

  private:
    bool m_canShow;
    bool m_shown = false;
    std::chrono::steady_clock::time_point m_last = std::chrono::steady_clock::now();
};

} // namespace tavix::cli
