#pragma once

#include "cli/Command.h"
#include "cli/ReadingOptions.h"

#include <string>
#include <vector>

namespace tavix::cli {

/// `tavix inspect`: how a run would read text files, judged by their first MiB.
class InspectCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    std::vector<std::string> m_files;
    ReadingOptions m_reading;
    std::size_t m_rows = 5;
    bool m_summary = false;
};

} // namespace tavix::cli
