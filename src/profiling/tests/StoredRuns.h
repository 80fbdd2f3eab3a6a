#pragma once

#include "base/tests/TempFolder.h"
#include "sql/tests/StoredRows.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <string_view>

namespace tavix::testing {

/// Files in a folder of their own, and a repository in it that a test lets jobs write to.
class StoredRuns : public ::testing::Test {
  protected:
    /// The path of the file.
    std::string write(const std::string& name, std::string_view content) {
        std::ofstream(m_folder.file(name), std::ios::binary) << content;
        return m_folder.file(name);
    }
    /// The rows of a query over the repository, as storedRows() has them.
    std::string stored(std::string_view query) { return storedRows(m_repository, query); }

    TempFolder m_folder;
    std::string m_repository = m_folder.file("r.tavix");
};

} // namespace tavix::testing
