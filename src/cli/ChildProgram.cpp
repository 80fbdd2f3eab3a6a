#include "cli/ChildProgram.h"

#include "cli/Signals.h"

#include <fmt/format.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <thread>

extern char** environ; // NOLINT(readability-redundant-declaration): not every unistd.h has it

namespace tavix::cli {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPause{5};
/// For a program that was told to end.
constexpr std::chrono::seconds kGrace{2};

std::string reasonOf(int code) {
    return std::generic_category().message(code);
}

class Descriptor {
  public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() {
        if (m_number >= 0)
            ::close(m_number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int get() const { return m_number; }

  private:
    int m_number;
};

/// A file in memory: unlike a pipe, it holds any text, whether or not the program reads it.
bool fill(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(file, text.data(), text.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return ::lseek(file, 0, SEEK_SET) == 0;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// In a process group of its own, so that it can be ended with all that it started, and with signals as after a login:
/// we ignore some that others rely on.
Result<pid_t> start(const ChildProgram& child, int input) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, STDERR_FILENO, STDOUT_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t all;
    sigset_t none;
    sigfillset(&all);
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    std::vector<std::string> command = child.command;
    std::vector<std::string> environment = child.environment;
    pid_t process = -1;
    const int failed = ::posix_spawnp(&process, child.command.front().c_str(), &actions, &attributes,
                                      pointersTo(command).data(), pointersTo(environment).data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0)
        return Error{"it cannot be started: " + reasonOf(failed)};
    return process;
}

/// Leaves the process to be waited for, so that no other gets its number.
bool hasEnded(pid_t process) {
    siginfo_t info{};
    return ::waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid != 0;
}

bool waitUntil(pid_t process, Clock::time_point end) {
    while (!hasEnded(process)) {
        if (Clock::now() >= end || isInterrupted())
            return hasEnded(process);
        std::this_thread::sleep_for(kPause);
    }
    return true;
}

void endGroup(pid_t process) {
    ::kill(-process, SIGTERM);
    const Clock::time_point end = Clock::now() + kGrace;
    while (!hasEnded(process) && Clock::now() < end)
        std::this_thread::sleep_for(kPause);
    ::kill(-process, SIGKILL);
}

} // namespace

Status runChild(const ChildProgram& child) {
    const Descriptor input(::memfd_create("tavix", MFD_CLOEXEC));
    if (input.get() < 0 || !fill(input.get(), child.input))
        return Error{"its input cannot be written: " + reasonOf(errno)};
    const auto process = start(child, input.get());
    if (!process)
        return process.error();
    const bool isInTime = waitUntil(*process, Clock::now() + child.limit);
    if (!isInTime)
        endGroup(*process);
    int status = 0;
    while (::waitpid(*process, &status, 0) < 0 && errno == EINTR) {
    }
    if (!isInTime && isInterrupted())
        return Error{"it was cancelled"};
    if (!isInTime)
        return Error{
            fmt::format("it took longer than {:g} seconds", std::chrono::duration<double>(child.limit).count())};
    if (WIFSIGNALED(status))
        return Error{fmt::format("it was ended by signal {}", WTERMSIG(status))};
    if (WEXITSTATUS(status) != 0)
        return Error{fmt::format("it ended with exit code {}", WEXITSTATUS(status))};
    return {};
}

bool isProgram(const std::string& program) {
    const auto canRun = [](const std::string& path) {
        std::error_code missing;
        return std::filesystem::is_regular_file(path, missing) && ::access(path.c_str(), X_OK) == 0;
    };
    if (program.find('/') != std::string::npos)
        return canRun(program);
    const char* const variable = std::getenv("PATH"); // NOLINT(concurrency-mt-unsafe): no thread changes it
    std::string_view folders = variable == nullptr ? "/bin:/usr/bin" : variable;
    while (true) {
        const std::size_t end = folders.find(':');
        const std::string folder(folders.substr(0, end));
        if (canRun((folder.empty() ? "." : folder) + '/' + program))
            return true;
        if (end == std::string_view::npos)
            return false;
        folders.remove_prefix(end + 1);
    }
}

std::vector<std::string> environmentWithout(std::string_view prefix) {
    std::vector<std::string> kept;
    for (char** variable = environ; *variable != nullptr; ++variable)
        if (!std::string_view(*variable).starts_with(prefix))
            kept.emplace_back(*variable);
    return kept;
}

} // namespace tavix::cli
