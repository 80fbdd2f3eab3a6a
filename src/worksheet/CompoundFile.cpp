#include "worksheet/CompoundFile.h"

#include "base/FileMode.h"

#include <fmt/format.h>
#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-output-stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace tavix::worksheet {

namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

Error writeError(const std::string& path, const std::string& reason) {
    return {fmt::format("Unable to write \"{}\": {}", path, reason)};
}

} // namespace

/// Destroyed from the last to the first: the stream, the container, the file.
struct CompoundFile::Container {
    std::unique_ptr<GsfOutput, Unref> file;
    std::unique_ptr<GsfOutfile, Unref> root;
    std::unique_ptr<GsfOutput, Unref> stream;
};

CompoundFile::CompoundFile(std::string target)
    : m_target(std::move(target)), m_container(std::make_unique<Container>()) {}

CompoundFile::~CompoundFile() {
    m_container.reset();
    if (m_file)
        std::fclose(m_file);
    if (!m_temporary.empty())
        ::unlink(m_temporary.c_str());
}

Result<std::unique_ptr<CompoundFile>> CompoundFile::create(const std::string& path, const std::string& streamName) {
    std::error_code error;
    const std::filesystem::path real = std::filesystem::canonical(path, error);
    const std::string target = error ? path : real.string();
    const std::filesystem::file_status status = std::filesystem::status(target, error);
    if (std::filesystem::is_directory(status))
        return writeError(path, "it is a folder");
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        return writeError(path, "it is not a file");

    std::unique_ptr<CompoundFile> file(new CompoundFile(target));
    if (Status opened = file->openBeside(); !opened)
        return opened.error();
    Container& container = *file->m_container;
    container.file.reset(gsf_output_stdio_new_FILE(file->m_temporary.c_str(), file->m_file, TRUE));
    if (container.file)
        container.root.reset(gsf_outfile_msole_new(container.file.get()));
    if (container.root)
        container.stream.reset(gsf_outfile_new_child(container.root.get(), streamName.c_str(), FALSE));
    if (!container.stream)
        return file->failure(errno);
    return file;
}

Status CompoundFile::openBeside() {
    std::string name = m_target + ".XXXXXX";
    const int descriptor = ::mkstemp(name.data());
    if (descriptor < 0)
        return failure(errno);
    m_temporary = name;
    if (::fchmod(descriptor, modeOfReplaced(m_target)) != 0 || !(m_file = ::fdopen(descriptor, "wb"))) {
        const int code = errno;
        ::close(descriptor);
        return failure(code);
    }
    return {};
}

Status CompoundFile::write(std::string_view bytes) {
    errno = 0;
    if (!gsf_output_write(m_container->stream.get(), bytes.size(), reinterpret_cast<const guint8*>(bytes.data())))
        return failure(errno);
    return {};
}

Status CompoundFile::commit() {
    errno = 0;
    // The container closes its file as well, which leaves ours open.
    const bool complete =
        gsf_output_close(m_container->stream.get()) && gsf_output_close(GSF_OUTPUT(m_container->root.get()));
    // What is still buffered reaches the file only now.
    if (!complete || std::fflush(m_file) != 0 || std::ferror(m_file) != 0)
        return failure(errno);
    m_container.reset();
    std::FILE* file = m_file;
    m_file = nullptr;
    if (std::fclose(file) != 0)
        return failure(errno);
    if (std::rename(m_temporary.c_str(), m_target.c_str()) != 0)
        return failure(errno);
    m_temporary.clear();
    return {};
}

Error CompoundFile::failure(int code) const {
    return writeError(m_target, std::generic_category().message(code != 0 ? code : EIO));
}

} // namespace tavix::worksheet
