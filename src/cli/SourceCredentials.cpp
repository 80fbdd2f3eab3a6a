#include "cli/SourceCredentials.h"

#include "base/LoginName.h"
#include "cli/Console.h"
#include "cli/DisplayText.h"
#include "cli/Signals.h"

#include <fmt/format.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <optional>

namespace tavix::cli {

namespace {

using source::Credentials;

constexpr std::size_t kLongestAnswer = 1000;

/// Turns the echo of the terminal off for its lifetime.
class Hidden {
  public:
    Hidden() {
        m_isOn = ::tcgetattr(STDIN_FILENO, &m_before) == 0;
        termios hidden = m_before;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        if (m_isOn)
            m_isOn = ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden) == 0;
    }
    ~Hidden() {
        if (m_isOn)
            ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_before);
    }
    Hidden(const Hidden&) = delete;
    Hidden& operator=(const Hidden&) = delete;

  private:
    termios m_before{};
    bool m_isOn = false;
};

/// A line from the terminal; nothing at the end of the input and after an interruption.
std::optional<std::string> answer(const std::string& question) {
    std::fputs(question.c_str(), stderr);
    std::fflush(stderr);
    std::string line;
    for (;;) {
        char c = 0;
        const ssize_t got = ::read(STDIN_FILENO, &c, 1);
        if (got < 0 && errno == EINTR && !isInterrupted())
            continue;
        if (got <= 0)
            return std::nullopt;
        if (c == '\n')
            return line;
        if (line.size() < kLongestAnswer)
            line += c;
    }
}

std::optional<Credentials> askAtTerminal(const std::string& name, const std::string& refusal) {
    if (::isatty(STDIN_FILENO) == 0)
        return std::nullopt;
    say(printable(refusal));
    const auto known = source::credentialsFromEnvironment(name);
    const std::string usual = known && !known->user.empty() ? known->user : loginName();
    auto user = answer(fmt::format("User for \"{}\" [{}]: ", printable(name), printable(usual)));
    if (!user)
        return std::nullopt;
    std::optional<std::string> password;
    {
        const Hidden hidden;
        password = answer("Password: ");
    }
    std::fputs("\n", stderr);
    if (!password)
        return std::nullopt;
    return Credentials{user->empty() ? usual : *user, *password};
}

} // namespace

source::AskCredentials sourceCredentials() {
    return [](const std::string& name, const std::string& refusal) -> std::optional<Credentials> {
        if (!refusal.empty())
            return askAtTerminal(name, refusal);
        return source::credentialsFromEnvironment(name);
    };
}

} // namespace tavix::cli
