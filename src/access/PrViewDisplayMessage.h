#pragma once

#include <cstdint>
#include <string_view>

namespace tavix {

/// The message of the exception that next() of any cursor throws when its sink stopped it.
inline constexpr const char* kReadingStopped = "The reading was stopped.";

/// Receives the progress of long repository queries.
class PrViewDisplayMessage {
  public:
    virtual ~PrViewDisplayMessage() = default;

    /// `total` is 0 if unknown. False asks the query to stop.
    virtual bool progress(std::string_view text, std::int64_t done, std::int64_t total) = 0;
};

} // namespace tavix
