#include "source/DelimiterSniffer.h"

#include "source/RowScanner.h"

#include <algorithm>
#include <cstddef>

namespace tavix::source {

namespace {

constexpr std::size_t kSampleRows = 1000;
constexpr std::ptrdiff_t kSampleBytes = 256 << 10;

struct Fit {
    std::size_t rows = 0;
    std::size_t split = 0;   ///< rows of two cells or more
    std::size_t asFirst = 0; ///< rows with as many cells as the first
    std::size_t cells = 0;   ///< of the first row

    [[nodiscard]] bool isPossible() const { return cells >= 2 && split * 2 >= rows; }
    [[nodiscard]] bool isBetterThan(const Fit& other) const {
        const std::size_t left = asFirst * other.rows;
        const std::size_t right = other.asFirst * rows;
        return left != right ? left > right : cells > other.cells;
    }
};

Fit tryDelimiter(const char* begin, const char* end, char delimiter, bool isLast, char quote) {
    Fit fit;
    RowScanner scanner(begin, end, delimiter, isLast, quote);
    while (fit.rows < kSampleRows && !scanner.isAtEnd()) {
        const ScannedRow row = scanner.scan([](std::size_t, const RawCell&) {});
        if (row.end == RowEnd::Unfinished)
            break;
        if (row.isEmptyLine)
            continue;
        if (fit.rows == 0)
            fit.cells = row.cells;
        ++fit.rows;
        fit.split += row.cells >= 2 ? 1 : 0;
        fit.asFirst += row.cells == fit.cells ? 1 : 0;
    }
    return fit;
}

} // namespace

char sniffDelimiter(const char* begin, const char* end, bool isLast, char quote) {
    const char* sampleEnd = begin + std::min(end - begin, kSampleBytes);
    // A sample that ends within the text must not count its incomplete last row.
    const bool isWhole = isLast && sampleEnd == end;
    char best = '\0';
    Fit bestFit;
    for (const char candidate : {',', ';', '\t', '|'}) {
        Fit fit = tryDelimiter(begin, sampleEnd, candidate, isWhole, quote);
        if (fit.rows == 0 && sampleEnd != end)
            fit = tryDelimiter(begin, end, candidate, isLast, quote); // a first row longer than the sample
        if (fit.isPossible() && (best == '\0' || fit.isBetterThan(bestFit))) {
            best = candidate;
            bestFit = fit;
        }
    }
    return best;
}

} // namespace tavix::source
