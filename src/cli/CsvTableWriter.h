#pragma once

#include "cli/TableWriter.h"

namespace tavix::cli {

/// CSV as RFC 4180 quotes it, in UTF-8, lines ended by "\n". As our own reader has it, null is an empty cell and an
/// empty text is "". Values are otherwise written as they are; only with `spreadsheet` does a text that begins like a
/// formula get an apostrophe in front, since then what is read back is no longer the value.
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
