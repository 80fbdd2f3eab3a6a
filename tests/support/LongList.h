#pragma once

#include "support/SampleField.h"

#include <string>

namespace tavix::testing {

/// A repository whose one field has 10,000 values, "1" to "10000" in descending frequency: enough for several blocks,
/// so that reading them reports progress.
struct LongList {
    std::string path;
    int job = -1;
    int table = -1;
    int field = -1;

    /// Throws std::runtime_error if it cannot be built.
    [[nodiscard]] static LongList build(const std::string& path);
    /// Likewise, with other values in the field, of the type with this code.
    [[nodiscard]] static LongList build(const std::string& path, char typeCode, const SampleField::Values& values);
};

} // namespace tavix::testing
