#pragma once

#include <cstdlib>
#include <iostream>

namespace tavix::repository {

/// For code that a fuzzer calls, without a test framework.
inline void holdsOrAborts(bool condition, const char* what) {
    if (condition)
        return;
    std::cerr << what << '\n';
    std::abort();
}

} // namespace tavix::repository
