#include "cli/Output.h"

#include "base/FileMode.h"
#include "base/HeldRepositories.h"
#include "cli/CommandError.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace tavix::cli {

Output::Output() : m_file(stdout) {}

Output::Output(const std::string& path) : m_file(stdout) {
    if (path.empty() || path == "-")
        return;
    if (const Status free = requireNotHeld(path); !free)
        throw CommandError(ExitCode::Usage, free.error().text);
    // A link stays a link: what it points at is replaced.
    std::error_code error;
    const std::filesystem::path real = std::filesystem::canonical(path, error);
    m_target = error ? path : real.string();
    const std::filesystem::file_status status = std::filesystem::status(m_target, error);
    if (!std::filesystem::exists(status) || std::filesystem::is_regular_file(status)) {
        openBeside(m_target);
        return;
    }
    m_file = std::fopen(m_target.c_str(), "wb");
    if (!m_file)
        fail(errno);
}

Output::~Output() {
    if (m_file && m_file != stdout)
        std::fclose(m_file);
    if (!m_temporary.empty())
        ::unlink(m_temporary.c_str());
}

void Output::openBeside(const std::string& path) {
    std::string name = path + ".XXXXXX";
    const int descriptor = ::mkstemp(name.data());
    if (descriptor < 0)
        fail(errno);
    m_temporary = name;
    if (::fchmod(descriptor, modeOfReplaced(path)) != 0 || !(m_file = ::fdopen(descriptor, "wb"))) {
        const int error = errno;
        ::close(descriptor);
        ::unlink(m_temporary.c_str());
        fail(error);
    }
}

void Output::write(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), m_file) != text.size())
        fail(errno);
}

void Output::commit() {
    if (std::fflush(m_file) != 0)
        fail(errno);
    if (m_file == stdout)
        return;
    std::FILE* file = m_file;
    m_file = nullptr;
    if (std::fclose(file) != 0)
        fail(errno);
    if (m_temporary.empty())
        return;
    if (std::rename(m_temporary.c_str(), m_target.c_str()) != 0)
        fail(errno);
    m_temporary.clear();
}

void Output::fail(int error) const {
    if (error == EPIPE)
        throw OutputClosed();
    throw CommandError(ExitCode::Source,
                       fmt::format("cannot write {}: {}", m_target.empty() ? "the output" : '"' + m_target + '"',
                                   std::generic_category().message(error)));
}

} // namespace tavix::cli
