#pragma once

#include "base/Result.h"

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace tavix::worksheet {

/// A compound file ([MS-CFB]) with one stream, written beside its place and put there when it is complete: a file that
/// stands there is replaced as a whole or stays as it is.
class CompoundFile {
  public:
    /// Fails when nothing can be written beside `path` or when something other than a file stands there. A link stays
    /// a link: what it points at is replaced.
    [[nodiscard]] static Result<std::unique_ptr<CompoundFile>> create(const std::string& path,
                                                                      const std::string& streamName);
    /// Removes what was not committed.
    ~CompoundFile();
    CompoundFile(const CompoundFile&) = delete;
    CompoundFile& operator=(const CompoundFile&) = delete;

    Status write(std::string_view bytes);
    /// To be called once, after the last write.
    Status commit();

  private:
    struct Container; ///< what belongs to the container library

    explicit CompoundFile(std::string target);
    [[nodiscard]] Status openBeside();
    [[nodiscard]] Error failure(int code) const;

    std::string m_target;
    std::string m_temporary; ///< what becomes m_target
    std::FILE* m_file = nullptr;
    std::unique_ptr<Container> m_container;
};

} // namespace tavix::worksheet
