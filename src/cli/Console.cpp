#include "cli/Console.h"

#include "cli/DisplayText.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <string>

namespace tavix::cli {

void say(std::string_view text) {
    sayPlain(fmt::format("tavix: {}", text));
}

void sayPlain(std::string_view text) {
    // Line ends are ours, but the rest of an error text may quote a file: only line ends pass unescaped.
    std::string out;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        out += printable(text.substr(0, end)) + "\n";
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    std::fputs(out.c_str(), stderr);
}

bool askYesNo(std::string_view question) {
    std::fputs((printable(question) + " [y/N] ").c_str(), stderr);
    std::fflush(stderr);
    std::string answer;
    for (int c = std::getchar(); c != EOF && c != '\n'; c = std::getchar())
        if (answer.size() < 8)
            answer += static_cast<char>(c);
    return answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes" || answer == "YES";
}

bool canAsk() {
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
}

} // namespace tavix::cli
