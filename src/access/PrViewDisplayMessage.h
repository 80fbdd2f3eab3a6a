#pragma once

#include <cstdint>
#include <string_view>

namespace tavix {

/// How a cursor of any kind says in next() that its sink stopped it.
inline constexpr const char* kReadingStopped = "The reading was stopped.";

/// Told by long repository queries how far they are.
class PrViewDisplayMessage {
  public:
    virtual ~PrViewDisplayMessage() = default;

    /// `total` is 0 when it is not known. False asks the query to stop.
    virtual bool progress(std::string_view text, std::int64_t done, std::int64_t total) = 0;
};

} // namespace tavix
