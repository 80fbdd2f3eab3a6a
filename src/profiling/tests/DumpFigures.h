#pragma once

#include <string>

namespace tavix::profiling {
struct FieldProfile;
}

namespace tavix::profiling::testing {

/// The figures of a field as JSON. Reads the packed distributions, which can be done once.
[[nodiscard]] std::string dumpField(const FieldProfile& figures);

/// The figures of a text file's fields as JSON, as tests/figures/check_figures.py reads them. Throws on an error.
[[nodiscard]] std::string dumpFigures(const std::string& path);

/// Runs check_figures.py on the file and its dump; what it prints when something differs, else "".
[[nodiscard]] std::string checkWithPython(const std::string& path, const std::string& dumpPath);

} // namespace tavix::profiling::testing
