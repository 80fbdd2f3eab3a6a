#include "cli/ShownDate.h"

#include <fmt/format.h>

namespace tavix::cli {

KvbDatavar shownDate(LibraryDate date) {
    const DateParts parts = decompose(date);
    if (parts == DateParts())
        return {};
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", parts.year, parts.month, parts.day, parts.hour,
                       parts.minute, parts.second);
}

} // namespace tavix::cli
