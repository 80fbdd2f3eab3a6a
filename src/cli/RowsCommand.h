#pragma once

#include "access/PrViewerDrillCursor.h"
#include "base/KvbString.h"
#include "cli/Command.h"
#include "cli/RunChoice.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavix::cli {

class Session;
struct ChosenField;

/// `tavix rows`: the source rows that have a value, a null, a pattern or a value of another type in a field.
class RowsCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    /// The value or pattern to look for; null for rows without a value.
    [[nodiscard]] KvbString wanted(Session& session, const ChosenField& field) const;
    void writeRows(const CommonOptions& options, PrViewerDrillCursor& rows, std::int64_t& shown) const;
    void showMisfits(const CommonOptions& options, Session& session, const ChosenField& field) const;

    std::string m_field;
    std::optional<std::string> m_table;
    std::optional<std::string> m_value;
    std::optional<std::string> m_pattern;
    bool m_null = false;
    bool m_misfit = false;
    std::vector<std::string> m_moves; ///< OLD=NEW
    std::int64_t m_limit = 0;
    RunChoice m_runChoice;
};

} // namespace tavix::cli
