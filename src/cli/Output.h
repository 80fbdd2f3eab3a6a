#pragma once

#include "base/FileWriter.h"

#include <memory>
#include <string>
#include <string_view>

namespace tavix::cli {

/// Where a command's result goes: standard output, or a file that appears whole when the command succeeded and is
/// otherwise left as it was. Failures to write throw CommandError; a closed pipe throws OutputClosed.
class Output {
  public:
    /// The file `path`; "" or "-" is standard output. Devices and pipes are written directly. A file of a repository
    /// that is in use is refused.
    explicit Output(std::string path);

    void write(std::string_view text);
    /// Puts everything in its place; to be called once, after the last write.
    void commit();

  private:
    [[noreturn]] void failToPrint() const;
    [[noreturn]] void fail(const std::string& reason) const;

    std::string m_path;                 ///< "" for standard output
    std::unique_ptr<FileWriter> m_file; ///< null for standard output
};

} // namespace tavix::cli
