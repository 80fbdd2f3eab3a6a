#pragma once

#include "XlibShell.h"

#include <string>

namespace embedding {

/// What is shown.
struct Sample {
    std::string repository;
    std::string source; ///< a data source of text files
    std::string table;  ///< one of its tables
};

/// Walks through everything that a shell does, with real keys and clicks, and says what it sees. False when anything
/// was not as it must be. Needs a window manager.
bool runSelfTest(tv::TavixEventLoop& loop, const Sample& sample);
/// Creates a window and view, loads a report, and destroys all of it, `times` over. False when the memory that the
/// process holds grows by more than a small bound once it has warmed up.
bool runRepeated(tv::TavixEventLoop& loop, const Sample& sample, int times);

} // namespace embedding
