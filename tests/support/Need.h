#pragma once

#include "base/Result.h"

#include <stdexcept>
#include <utility>

namespace tavix::testing {

/// The value of an operation that a test cannot do without; throws std::runtime_error if it failed.
template <typename T>
T need(Result<T> result) {
    if (!result)
        throw std::runtime_error(result.error().text);
    return std::move(result).value();
}

inline void need(const Status& status) {
    if (!status)
        throw std::runtime_error(status.error().text);
}

} // namespace tavix::testing
