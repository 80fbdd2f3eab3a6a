#pragma once

#include "base/FileWriter.h"

#include <memory>
#include <string>
#include <string_view>

namespace tavix::cli {

/// The destination of a command's result: standard output, or a file that is replaced as a whole when the command
/// succeeds and is left unchanged otherwise. A failed write throws CommandError, a closed pipe OutputClosed.
class Output {
  public:
    /// The file `path`; "" or "-" is standard output. Devices and pipes are written directly. A file of
    /// a repository in use is refused.
    explicit Output(std::string path);
    /// A text in memory, which must outlive this object.
    explicit Output(std::string* text) : m_text(text) {}

    void write(std::string_view text);
    /// Flushes the output and replaces the file. Call it once, after the last write.
    void commit();

  private:
    [[noreturn]] void failToPrint() const;
    [[noreturn]] void fail(const std::string& reason) const;

    std::string* m_text = nullptr;      ///< of an output in memory
    std::string m_path;                 ///< "" for standard output
    std::unique_ptr<FileWriter> m_file; ///< null for standard output
};

} // namespace tavix::cli
