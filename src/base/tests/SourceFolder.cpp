#include "base/tests/SourceFolder.h"

namespace tavix::testing {

std::string sourceFile(const std::string& path) {
    return TAVIX_SOURCE_DIR "/" + path;
}

} // namespace tavix::testing
