#pragma once

#include "base/FileWriter.h"
#include "base/Result.h"

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace tavix::worksheet {

/// A compound file ([MS-CFB]) with one stream, which appears as a whole or not at all.
class CompoundFile {
  public:
    /// Fails if `path` cannot be written or is a device, which cannot be repositioned.
    [[nodiscard]] static Result<std::unique_ptr<CompoundFile>> create(const std::string& path,
                                                                      const std::string& streamName);
    /// Drops what was not committed.
    ~CompoundFile();
    CompoundFile(const CompoundFile&) = delete;
    CompoundFile& operator=(const CompoundFile&) = delete;

    Status write(std::string_view bytes);
    /// To be called once, after the last write.
    Status commit();

  private:
    struct Container; ///< the state of the container library

    CompoundFile(std::string path, std::unique_ptr<FileWriter> writer);
    [[nodiscard]] Status openContainer(const std::string& streamName);
    [[nodiscard]] Error failure(int code) const;

    std::string m_path;
    std::unique_ptr<FileWriter> m_writer;
    std::FILE* m_file = nullptr; ///< of m_writer, for the container library
    std::unique_ptr<Container> m_container;
};

} // namespace tavix::worksheet
