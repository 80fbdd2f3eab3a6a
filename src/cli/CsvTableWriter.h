#pragma once

#include "cli/TableWriter.h"

namespace tavix::cli {

/// CSV in UTF-8, quoted as in RFC 4180, with "\n" after each line. Null is an empty cell and an empty text is "", as in
/// the CSV reader of this program. With `spreadsheet` a text that begins like a formula gets an apostrophe in front;
/// this is off by default because such a value does not read back unchanged.
class CsvTableWriter final : public TableWriter {
  public:
    CsvTableWriter(Output& output, bool spreadsheet) : m_output(output), m_spreadsheet(spreadsheet) {}

    void begin(const Section& section) override;
    void row(std::span<const KvbDatavar> cells) override;
    void end() override {}
    void finish() override {}

  private:
    void appendText(std::string_view text);

    Output& m_output;
    bool m_spreadsheet;
    std::string m_line;
};

} // namespace tavix::cli
