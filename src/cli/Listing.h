#pragma once

#include "cli/Output.h"
#include "cli/TableWriter.h"

namespace tavix::cli {

struct CommonOptions;

/// Writes the result of a command to its output in the chosen format. An interruption by the user ends it at the next
/// row. A file named by -o changes only when finish() is called.
class Listing {
  public:
    explicit Listing(const CommonOptions& options, Sections sections = Sections::One);

    [[nodiscard]] Format format() const { return m_format; }
    void begin(const Section& section) { m_writer->begin(section); }
    void row(std::span<const KvbDatavar> cells);
    void end() { m_writer->end(); }
    void finish();

  private:
    Format m_format;
    Output m_output;
    std::unique_ptr<TableWriter> m_writer;
};

} // namespace tavix::cli
