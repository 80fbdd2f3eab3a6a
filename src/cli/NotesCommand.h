#pragma once

#include "cli/Command.h"

#include <optional>

namespace tavix::cli {

class Session;

/// `tavix notes`: the notes of a table or field, or one note more.
class NotesCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    /// The category that --category names, made when it is not there; -1 without the option.
    [[nodiscard]] int categoryId(Session& session) const;

    std::optional<std::string> m_table;
    std::optional<std::string> m_field;
    std::optional<std::string> m_add;
    std::optional<std::string> m_category;
    std::optional<std::string> m_job;
    std::optional<int> m_run;
};

} // namespace tavix::cli
