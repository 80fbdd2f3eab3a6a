#pragma once

#include "base/Result.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

struct stat;

namespace tavix {

/// Writes one file, which appears whole on commit(); without it, or after a failure, the file is as it was before and
/// nothing is left beside it. An existing file keeps its mode and owner. A symbolic link stays: the file that it leads
/// to is replaced, also one that is not there yet. A file that the user may not write is refused, although its folder
/// would let it be replaced, and so is a database that is open.
///
/// Devices, pipes and own descriptors such as /dev/stdout are written through, so nothing can be taken back.
///
/// A file that cannot be replaced without a loss is overwritten on commit(), from a temporary copy, so that the bytes
/// before that are kept out of it: one whose folder is not writable, with several hard links, with an access control
/// list, with an owner whom only the superuser could give, or on a mount point of its own. Readers may then see it half
/// written. A full disk is noticed before the first byte is written over where the file system can reserve space;
/// only a disk that fails, or a power cut, leaves such a file damaged.
///
/// Errors are reasons alone ("No space left on device"), to be completed by those who know what the file is for.
class FileWriter {
  public:
    /// Whether opening a FIFO waits until somebody reads it, or fails as long as nobody does.
    enum class Reader { Await, Require };

    [[nodiscard]] static Result<std::unique_ptr<FileWriter>> open(const std::string& path,
                                                                  Reader reader = Reader::Await);
    ~FileWriter();
    FileWriter(const FileWriter&) = delete;
    FileWriter& operator=(const FileWriter&) = delete;

    /// The first failure is final: every later call, commit() among them, returns it.
    Status write(std::string_view bytes);
    /// To be called once, after the last write.
    Status commit();

    /// Whether the bytes go straight to a device or pipe.
    [[nodiscard]] bool isWrittenThrough() const { return m_way == Way::Through; }
    /// Whether writing failed because a pipe's reader left.
    [[nodiscard]] bool hasReaderLeft() const { return m_hasReaderLeft; }
    /// For a library that writes into the file by itself, also at any position, before commit(). Not to be mixed with
    /// write().
    [[nodiscard]] int descriptor() const { return m_file; }

  private:
    enum class Way {
        Replace, ///< a file beside the target takes its place
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
    int m_folder = -1;       ///< of the target, while there is m_temporary
    std::string m_temporary; ///< the name within m_folder of what becomes the target
    int m_file = -1;         ///< where bytes are written to before commit()
    int m_target = -1;       ///< what is copied over
    std::string m_buffer;
    Status m_status;
    bool m_hasReaderLeft = false;
};

} // namespace tavix
