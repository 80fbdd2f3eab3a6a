#include "cli/Output.h"

#include "cli/CommandError.h"
#include "cli/Interruption.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tavix::cli {

namespace {

/// The repository or what SQLite keeps beside it, under whatever name.
bool isRepository(const std::string& path, std::string_view repository) {
    constexpr std::string_view kScheme = "sqlite:";
    if (repository.starts_with(kScheme))
        repository.remove_prefix(kScheme.size());
    if (repository.empty())
        return false;
    std::error_code error;
    const std::filesystem::path output = std::filesystem::weakly_canonical(path, error);
    for (const char* ending : {"", "-wal", "-shm", "-journal"}) {
        const std::string file = std::string(repository) + ending;
        if (output == std::filesystem::weakly_canonical(file, error) || std::filesystem::equivalent(path, file, error))
            return true;
    }
    return false;
}

} // namespace

Output::Output(std::string path, std::string_view repository) {
    if (path.empty() || path == "-")
        return;
    m_path = std::move(path);
    if (isRepository(m_path, repository))
        throw CommandError(ExitCode::Usage, fmt::format("cannot write \"{}\": it is the repository", m_path));
    auto file = FileWriter::open(m_path);
    if (!file)
        fail(file.error().text);
    m_file = std::move(file).value();
}

void Output::write(std::string_view text) {
    if (m_file) {
        if (const Status written = m_file->write(text); !written)
            fail(written.error().text);
        return;
    }
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        failToPrint();
}

void Output::commit() {
    if (m_file) {
        if (const Status written = m_file->commit(); !written)
            fail(written.error().text);
        return;
    }
    if (std::fflush(stdout) != 0)
        failToPrint();
}

void Output::failToPrint() const {
    if (errno == EPIPE)
        throw OutputClosed();
    fail(std::generic_category().message(errno));
}

void Output::fail(const std::string& reason) const {
    if (m_file && m_file->hasReaderLeft())
        throw OutputClosed();
    stopIfInterrupted();
    throw CommandError(ExitCode::Source,
                       fmt::format("cannot write {}: {}", m_path.empty() ? "the output" : '"' + m_path + '"', reason));
}

} // namespace tavix::cli
