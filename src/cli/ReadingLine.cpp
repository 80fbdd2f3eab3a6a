#include "cli/ReadingLine.h"

#include "cli/DisplayText.h"
#include "cli/Signals.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <string>

namespace tavix::cli {

namespace {

constexpr auto kInterval = std::chrono::milliseconds(200);
constexpr std::size_t kWidth = 60;

} // namespace

ReadingLine::ReadingLine() : m_canShow(::isatty(STDERR_FILENO) == 1 && ::isatty(STDOUT_FILENO) != 1) {}

ReadingLine::~ReadingLine() {
    if (m_shown)
        std::fputs("\r\x1b[K", stderr);
}

bool ReadingLine::progress(std::string_view text, std::int64_t done, std::int64_t total) {
    const auto now = std::chrono::steady_clock::now();
    if (m_canShow && now - m_last >= kInterval) {
        m_last = now;
        std::string line = cutToWidth(printable(text), kWidth);
        if (total > 0)
            line += fmt::format(
                ": {} %", static_cast<std::int64_t>(100 * (static_cast<double>(done) / static_cast<double>(total))));
        std::fputs(("\r" + line + "\x1b[K").c_str(), stderr);
        std::fflush(stderr);
        m_shown = true;
    }
    return !isInterrupted();
}

} // namespace tavix::cli
