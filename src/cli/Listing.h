#pragma once

#include "cli/Output.h"
#include "cli/TableWriter.h"

namespace tavix::cli {

struct CommonOptions;

/// A command's result on its way out: an output and the writer of the chosen format. A user's interruption ends it at
/// the next row, and without finish() a file named by -o is left as it was.
class Listing {
  public:
    explicit Listing(const CommonOptions& options, Sections sections = Sections::One);

    void begin(const Section& section) { m_writer->begin(section); }
    void row(std::span<const KvbDatavar> cells);
    void end() { m_writer->end(); }
    void finish();

  private:
    Output m_output;
    std::unique_ptr<TableWriter> m_writer;
};

} // namespace tavix::cli
