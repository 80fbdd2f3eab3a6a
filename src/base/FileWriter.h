#pragma once

#include "base/Result.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

struct stat;

namespace tavix {

/// Writes one file, which appears as a whole on commit(); without it, or after a failure, the previous file is
/// unchanged and nothing is left beside it. An existing file keeps its mode and owner. A symbolic link is kept: its
/// target is replaced, or created. A file that the user may not write is refused even if its folder would let it be
/// replaced, and so is a database that is open.
///
/// Devices, pipes and own descriptors such as /dev/stdout are written directly, which cannot be undone.
///
/// A file that cannot be replaced without a loss is overwritten on commit(), from a temporary copy, so that failures
/// before that leave it intact: one whose folder is not writable, with several hard links, with an access control list,
/// with an owner that only the superuser could set, or on a mount point of its own. Readers may then see it half
/// written. Where the file system can reserve space, a full disk is noticed before the first byte is overwritten; only
/// a failing disk or a power cut leaves such a file damaged.
///
/// Errors are reasons alone ("No space left on device"); the caller adds what the file is for.
class FileWriter {
  public:
    /// Whether opening a FIFO waits for a reader, or fails without one.
    enum class Reader { Await, Require };

    [[nodiscard]] static Result<std::unique_ptr<FileWriter>> open(const std::string& path,
                                                                  Reader reader = Reader::Await);
    ~FileWriter();
    FileWriter(const FileWriter&) = delete;
    FileWriter& operator=(const FileWriter&) = delete;

    /// The first failure is final: all later calls return it, including commit().
    Status write(std::string_view bytes);
    /// To be called once, after the last write.
    Status commit();

    /// Whether the bytes go directly to a device or pipe.
    [[nodiscard]] bool isWrittenThrough() const { return m_way == Way::Through; }
    /// Whether writing failed because the reader of a pipe closed it.
    [[nodiscard]] bool hasReaderLeft() const { return m_hasReaderLeft; }
    /// For a library that writes to the file itself, at any position, before commit(). Not to be mixed with write().
    [[nodiscard]] int descriptor() const { return m_file; }

  private:
    enum class Way {
        Replace, ///< a file beside the target replaces it
        Copy,    ///< a nameless file is copied over the target
        Through,
    };

    FileWriter() = default;
    [[nodiscard]] Status openTarget(const std::string& path, Reader reader);
    [[nodiscard]] Status openThrough(int descriptor);
    [[nodiscard]] Status openOver(const struct stat& old);
    [[nodiscard]] Status openCopy();
    /// An errno, 0 on success.
    [[nodiscard]] int openBeside(unsigned mode);
    [[nodiscard]] bool takesOver(const struct stat& old) const;
    void dropBeside();
    [[nodiscard]] Status put(std::string_view bytes);
    [[nodiscard]] Status replace();
    [[nodiscard]] Status copyOver(int from);
    Status fail(int code);

    std::string m_path; ///< of the target; links are followed
    Way m_way = Way::Through;
    int m_folder = -1;       ///< of the target, while m_temporary is set
    std::string m_temporary; ///< within m_folder, of the file that becomes the target
    int m_file = -1;         ///< receives bytes before commit()
    int m_target = -1;       ///< is copied over
    std::string m_buffer;
    Status m_status;
    bool m_hasReaderLeft = false;
};

} // namespace tavix
