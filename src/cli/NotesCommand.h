#pragma once

#include "cli/Command.h"
#include "cli/RunChoice.h"

#include <optional>
#include <string>

namespace tavix::cli {

class Session;

/// `tavix notes`: lists the notes of a table or field, or adds one.
class NotesCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    /// The id of the category that --category names, which is added if it is missing; -1 without the option.
    [[nodiscard]] int categoryId(Session& session) const;

    std::optional<std::string> m_subject;
    std::optional<std::string> m_table;
    std::optional<std::string> m_field;
    std::optional<std::string> m_add;
    std::optional<std::string> m_category;
    RunChoice m_runChoice;
};

} // namespace tavix::cli
