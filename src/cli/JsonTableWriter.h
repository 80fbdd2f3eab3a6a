#pragma once

#include "cli/TableWriter.h"

namespace tavix::cli {

/// JSON in UTF-8: a list is an array of objects, a record an object; several lists are members of one object. Bytes
/// that are not valid UTF-8 become U+FFFD.
class JsonTableWriter final : public TableWriter {
  public:
    JsonTableWriter(Output& output, Sections sections) : m_output(output), m_several(sections == Sections::Several) {}

    void begin(const Section& section) override;
    void row(std::span<const KvbDatavar> cells) override;
    void end() override;
    void finish() override;

  private:
    Output& m_output;
    bool m_several;
    bool m_anySection = false;
    bool m_anyRow = false;
    bool m_isRecord = false;
    std::vector<std::string> m_keys; ///< quoted, with the colon
    std::vector<Column::Kind> m_kinds;
    int m_typeColumn = -1;
    std::string m_line;
};

} // namespace tavix::cli
