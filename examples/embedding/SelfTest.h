#pragma once

#include "XlibShell.h"

#include <string>

namespace embedding {

/// The sample data of the test.
struct Sample {
    std::string repository;
    std::string source; ///< a data source of text files
    std::string table;  ///< one of its tables
};

/// Runs through everything that a shell does, with real keys and clicks, and prints each check. False when any failed.
/// Needs a window manager.
bool runSelfTest(tv::TavixEventLoop& loop, const Sample& sample);
/// Creates window and view, loads a report, and destroys everything, `times` times. False when the memory of the
/// process grows by more than a small bound after the warm-up.
bool runRepeated(tv::TavixEventLoop& loop, const Sample& sample, int times);

} // namespace embedding
