#pragma once

#include "access/PrViewDisplayMessage.h"

#include <chrono>
#include <cstdint>
#include <string_view>

namespace tavix::cli {

/// Shows the progress of reading a source in a line of the terminal that is rewritten in place, and stops the reading
/// when the user interrupts. Shows nothing for a quick reading, or when the rows go to the same terminal.
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
