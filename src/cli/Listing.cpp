#include "cli/Listing.h"

#include "cli/Command.h"
#include "cli/Signals.h"

namespace tavix::cli {

Listing::Listing(const CommonOptions& options, Sections sections)
    : m_format(options.format),
      m_output(options.outputPath),
      m_writer(makeTableWriter({options.format, sections, options.spreadsheet}, m_output)) {}

void Listing::row(std::span<const KvbDatavar> cells) {
    stopIfInterrupted();
    m_writer->row(cells);
}

void Listing::finish() {
    m_writer->finish();
    m_output.commit();
}

} // namespace tavix::cli
