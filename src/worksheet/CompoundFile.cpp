#include "worksheet/CompoundFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-output-stdio.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace tavix::worksheet {

namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

Error writeError(const std::string& path, const std::string& reason) {
    return {fmt::format("Unable to write \"{}\": {}", path, reason)};
}

} // namespace

/// Destroyed in reverse order: the stream, the container, the file.
struct CompoundFile::Container {
    std::unique_ptr<GsfOutput, Unref> file;
    std::unique_ptr<GsfOutfile, Unref> root;
    std::unique_ptr<GsfOutput, Unref> stream;
};

CompoundFile::CompoundFile(std::string path, std::unique_ptr<FileWriter> writer)
    : m_path(std::move(path)), m_writer(std::move(writer)), m_container(std::make_unique<Container>()) {}

CompoundFile::~CompoundFile() {
    m_container.reset();
    if (m_file)
        std::fclose(m_file);
}

Result<std::unique_ptr<CompoundFile>> CompoundFile::create(const std::string& path, const std::string& streamName) {
    auto writer = FileWriter::open(path, FileWriter::Reader::Require);
    if (!writer)
        return writeError(path, writer.error().text);
    if ((*writer)->isWrittenThrough())
        return writeError(path, "it is not a file");
    std::unique_ptr<CompoundFile> file(new CompoundFile(path, std::move(writer).value()));
    if (Status opened = file->openContainer(streamName); !opened)
        return opened.error();
    return file;
}

Status CompoundFile::openContainer(const std::string& streamName) {
    const int descriptor = ::fcntl(m_writer->descriptor(), F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0 || !(m_file = ::fdopen(descriptor, "wb"))) {
        const int code = errno;
        if (descriptor >= 0)
            ::close(descriptor);
        return failure(code);
    }
    m_container->file.reset(gsf_output_stdio_new_FILE(m_path.c_str(), m_file, TRUE));
    if (m_container->file)
        m_container->root.reset(gsf_outfile_msole_new(m_container->file.get()));
    if (m_container->root)
        m_container->stream.reset(gsf_outfile_new_child(m_container->root.get(), streamName.c_str(), FALSE));
    return m_container->stream ? Status() : failure(errno);
}

Status CompoundFile::write(std::string_view bytes) {
    errno = 0;
    if (!gsf_output_write(m_container->stream.get(), bytes.size(), reinterpret_cast<const guint8*>(bytes.data())))
        return failure(errno);
    return {};
}

Status CompoundFile::commit() {
    errno = 0;
    // The container closes its own descriptor; ours stays open.
    const bool complete =
        gsf_output_close(m_container->stream.get()) && gsf_output_close(GSF_OUTPUT(m_container->root.get()));
    // Buffered data reaches the file only now.
    if (!complete || std::fflush(m_file) != 0 || std::ferror(m_file) != 0)
        return failure(errno);
    m_container.reset();
    std::FILE* file = m_file;
    m_file = nullptr;
    if (std::fclose(file) != 0)
        return failure(errno);
    if (const Status committed = m_writer->commit(); !committed)
        return writeError(m_path, committed.error().text);
    return {};
}

Error CompoundFile::failure(int code) const {
    return writeError(m_path, std::generic_category().message(code != 0 ? code : EIO));
}

} // namespace tavix::worksheet
