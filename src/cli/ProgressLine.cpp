#include "cli/ProgressLine.h"

#include "cli/DisplayText.h"
#include "cli/Signals.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

namespace tavix::cli {

namespace {

constexpr std::size_t kUsualWidth = 80;
/// No estimate of the time left before this share or time.
constexpr double kFirstShare = 0.01;
constexpr double kFirstSeconds = 0.5;

std::size_t terminalWidth() {
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return kUsualWidth;
    return size.ws_col;
}

std::string durationText(double seconds) {
    const auto whole = static_cast<std::int64_t>(std::ceil(std::clamp(seconds, 0.0, 359999.0)));
    if (whole < 60)
        return fmt::format("{} s", whole);
    if (whole < 3600)
        return fmt::format("{}:{:02} min", whole / 60, whole % 60);
    return fmt::format("{}:{:02} h", whole / 3600, whole / 60 % 60);
}

std::string_view phaseText(profiling::ProgressState::Phase phase) {
    using Phase = profiling::ProgressState::Phase;
    switch (phase) {
    case Phase::Counting:
        return "counting";
    case Phase::Waiting:
        return "waiting for another program that writes to the repository";
    case Phase::Storing:
        return "storing";
    case Phase::Reading:
        break;
    }
    return "reading";
}

} // namespace

std::string progressText(const profiling::ProgressState& state, std::size_t width) {
    std::vector<std::string> parts;
    std::string table = cutToWidth(printable(state.table), 30);
    if (state.tableCount > 1)
        table = fmt::format("[{}/{}] {}", state.tableIndex + 1, state.tableCount, table);
    parts.push_back(fmt::format("{}: {}", table, phaseText(state.phase)));
    parts.push_back(fmt::format("{} rows", state.rows));
    if (state.bytesTotal > 0) {
        const double share =
            std::clamp(static_cast<double>(state.bytesDone) / static_cast<double>(state.bytesTotal), 0.0, 1.0);
        parts.push_back(fmt::format("{:.0f} %", std::floor(share * 100)));
        // The steps after reading run at a different speed.
        if (state.seconds >= kFirstSeconds && state.phase == profiling::ProgressState::Phase::Reading) {
            parts.push_back(fmt::format("{:.1f} MB/s", static_cast<double>(state.bytesDone) / 1e6 / state.seconds));
            if (share >= kFirstShare && share < 1)
                parts.push_back(durationText(state.seconds * (1 - share) / share) + " left");
        }
    }
    std::string line = cutToWidth(parts.front(), width);
    for (std::size_t i = 1; i < parts.size(); ++i) {
        const std::string longer = line + ", " + parts[i];
        if (displayWidth(longer) > width)
            break;
        line = longer;
    }
    return line;
}

ProgressLine::ProgressLine() : m_onTerminal(::isatty(STDERR_FILENO) == 1) {}

ProgressLine::~ProgressLine() {
    if (m_shown)
        std::fputs("\r\x1b[K", stderr);
}

bool ProgressLine::progress(const profiling::ProgressState& state) {
    if (m_onTerminal) {
        // A terminal may wrap a line that fills its last column.
        std::fputs(("\r" + progressText(state, terminalWidth() - 1) + "\x1b[K").c_str(), stderr);
        std::fflush(stderr);
        m_shown = true;
    }
    return !isInterrupted();
}

} // namespace tavix::cli
