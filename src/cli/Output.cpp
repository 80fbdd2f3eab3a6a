#include "cli/Output.h"

#include "base/HeldRepositories.h"
#include "cli/CommandError.h"
#include "cli/Signals.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

namespace tavix::cli {

Output::Output(std::string path) {
    if (path.empty() || path == "-")
        return;
    m_path = std::move(path);
    if (const Status free = requireNotHeld(m_path); !free)
        throw CommandError(ExitCode::Usage, free.error().text);
    auto file = FileWriter::open(m_path);
    if (!file)
        fail(file.error().text);
    m_file = std::move(file).value();
}

void Output::write(std::string_view text) {
    if (m_text) {
        m_text->append(text);
        return;
    }
    if (m_file) {
        if (const Status written = m_file->write(text); !written)
            fail(written.error().text);
        return;
    }
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        failToPrint();
}

void Output::commit() {
    if (m_text)
        return;
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
