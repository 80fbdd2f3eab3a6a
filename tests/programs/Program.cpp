#include "Program.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <thread>

extern char** environ;

namespace tavix::testing {

namespace {

struct Pipe {
    int read = -1;
    int write = -1;
};

Pipe makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    return {ends[0], ends[1]};
}

void closeEnd(int& end) {
    if (end >= 0)
        ::close(end);
    end = -1;
}

/// False at the end of the pipe.
bool readSome(int end, std::string& text) {
    std::array<char, 65536> buffer{};
    const ssize_t count = ::read(end, buffer.data(), buffer.size());
    if (count > 0)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    return count > 0;
}

} // namespace

Program::Program(std::vector<std::string> command) {
    const Pipe out = makePipe();
    const Pipe err = makePipe();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out.write, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err.write, STDERR_FILENO);
    std::vector<char*> arguments;
    for (std::string& argument : command)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    const int failed = ::posix_spawn(&m_process, arguments.front(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(out.write);
    ::close(err.write);
    m_out = out.read;
    m_err = err.read;
    if (failed != 0) {
        m_process = -1;
        throw std::runtime_error("cannot start " + command.front());
    }
}

Program::~Program() {
    closeEnd(m_out);
    closeEnd(m_err);
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
}

void Program::send(int signalNumber) const {
    ::kill(m_process, signalNumber);
}

void Program::waitUntil(const std::function<bool()>& happened) const {
    while (!happened()) {
        siginfo_t ended{};
        ::waitid(P_PID, static_cast<id_t>(m_process), &ended, WEXITED | WNOHANG | WNOWAIT);
        if (ended.si_pid != 0)
            throw std::runtime_error("the program has ended");
        std::this_thread::yield();
    }
}

void Program::waitForHandler(int signalNumber) const {
    const std::string path = "/proc/" + std::to_string(m_process) + "/status";
    const std::uint64_t wanted = std::uint64_t{1} << (signalNumber - 1);
    waitUntil([&] {
        std::ifstream status(path);
        for (std::string line; std::getline(status, line);)
            if (line.starts_with("SigCgt:") && (std::stoull(line.substr(7), nullptr, 16) & wanted) != 0)
                return true;
        return false;
    });
}

void Program::waitUntilRead(std::uint64_t bytes) const {
    const std::string path = "/proc/" + std::to_string(m_process) + "/io";
    waitUntil([&] {
        std::ifstream counters(path);
        std::string name;
        std::uint64_t value = 0;
        while (counters >> name >> value)
            if (name == "rchar:")
                return value >= bytes;
        return false;
    });
}

void Program::closeOutput() {
    closeEnd(m_out);
}

Outcome Program::wait() {
    Outcome outcome;
    while (m_out >= 0 || m_err >= 0) {
        std::array<pollfd, 2> ends{{{m_out, POLLIN, 0}, {m_err, POLLIN, 0}}};
        if (::poll(ends.data(), ends.size(), -1) < 0)
            break;
        if (ends[0].revents != 0 && !readSome(m_out, outcome.out))
            closeEnd(m_out);
        if (ends[1].revents != 0 && !readSome(m_err, outcome.err))
            closeEnd(m_err);
    }
    int status = 0;
    ::waitpid(m_process, &status, 0);
    m_process = -1;
    if (WIFEXITED(status))
        outcome.exitCode = WEXITSTATUS(status);
    else
        outcome.signal = WTERMSIG(status);
    return outcome;
}

std::vector<std::string> tavixCommand(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), TAVIX_PROGRAM);
    return arguments;
}

Outcome runTavix(std::vector<std::string> arguments) {
    return Program(tavixCommand(std::move(arguments))).wait();
}

} // namespace tavix::testing
