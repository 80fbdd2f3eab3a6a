#pragma once

#include "cli/TableWriter.h"

namespace tavix::cli {

/// Aligned columns for people. Control characters are escaped, long cells are cut with "…", prose is folded, and null
/// is shown as the section's `nullText`. The first rows determine the widths; a wider cell in a later row pushes the
/// rest of its line to the right.
class TextTableWriter final : public TableWriter {
  public:
    TextTableWriter(Output& output, Sections sections) : m_output(output), m_several(sections == Sections::Several) {}

    void begin(const Section& section) override;
    void row(std::span<const KvbDatavar> cells) override;
    void end() override;
    void finish() override {}

  private:
    struct Cell {
        std::string text;
        std::size_t width = 0;
        bool right = false;
        std::vector<std::string> more = {}; ///< the further lines of a folded last column
    };
    [[nodiscard]] Cell makeCell(const KvbDatavar& value, const Column& column, bool isMarked) const;
    void writeWaiting();
    void writeRow(std::span<const Cell> cells);
    void writeRecord(std::span<const KvbDatavar> cells, bool isMarked);

    Output& m_output;
    bool m_several;
    bool m_anySection = false;
    Section m_section;
    std::vector<Cell> m_headings;
    std::vector<std::size_t> m_widths;
    std::vector<std::vector<Cell>> m_waiting; ///< the first rows, until the widths are known
    bool m_settled = false;
    std::string m_line;
};

} // namespace tavix::cli
