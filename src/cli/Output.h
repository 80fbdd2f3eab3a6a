#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace tavix::cli {

/// Where a command's result goes: standard output, or a file that appears whole when the command succeeded and is
/// otherwise left as it was. Failures to write throw CommandError; a closed pipe throws OutputClosed.
class Output {
  public:
    /// Standard output.
    Output();
    /// The file `path`; "" or "-" is standard output. Devices and pipes are written directly.
    explicit Output(const std::string& path);
    /// Drops what was not committed.
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void write(std::string_view text);
    /// Puts everything in its place; to be called once, after the last write.
    void commit();

  private:
    void openBeside(const std::string& path);
    [[noreturn]] void fail(int error) const;

    std::FILE* m_file;
    std::string m_target;    ///< "" for standard output
    std::string m_temporary; ///< what becomes m_target; "" when written directly
};

} // namespace tavix::cli
