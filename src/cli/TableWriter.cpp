#include "cli/TableWriter.h"

#include "cli/CsvTableWriter.h"
#include "cli/JsonTableWriter.h"
#include "cli/TextTableWriter.h"

namespace tavix::cli {

std::unique_ptr<TableWriter> makeTableWriter(const WriterOptions& options, Output& output) {
    switch (options.format) {
    case Format::Json:
        return std::make_unique<JsonTableWriter>(output, options.sections);
    case Format::Csv:
        return std::make_unique<CsvTableWriter>(output, options.spreadsheet);
    case Format::Text:
        break;
    }
    return std::make_unique<TextTableWriter>(output, options.sections);
}

} // namespace tavix::cli
