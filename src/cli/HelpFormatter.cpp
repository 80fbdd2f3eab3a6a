#include "cli/HelpFormatter.h"

#include <algorithm>
#include <string_view>

namespace tavix::cli {

namespace {

constexpr std::size_t kLeft = 34;
constexpr std::size_t kRight = 66;

/// Breaks lines at blanks; CLI11 indents the continuation lines.
std::string wrapped(std::string_view text) {
    std::string out;
    while (text.size() > kRight) {
        const std::size_t blank = text.rfind(' ', kRight);
        if (blank == std::string_view::npos)
            break;
        out += text.substr(0, blank);
        out += '\n';
        text.remove_prefix(blank + 1);
    }
    return out.append(text);
}

} // namespace

HelpFormatter::HelpFormatter() {
    column_width(kLeft);
}

std::string HelpFormatter::make_option_desc(const CLI::Option* option) const {
    return wrapped(CLI::Formatter::make_option_desc(option));
}

std::string HelpFormatter::make_subcommand(const CLI::App* command) const {
    std::string line;
    line.append(2, ' ').append(command->get_name());
    line.resize(std::max(kLeft, line.size() + 1), ' ');
    return line + command->get_description() + "\n";
}

} // namespace tavix::cli
