#pragma once

#include "base/Encodings.h"
#include "base/Result.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct UConverter;

namespace tavix::source {

/// Turns text of any encoding into UTF-8, piece by piece. For each sequence of bytes that is no character of the
/// encoding the byte 0xFF, which no UTF-8 holds, stands in the result: who repairs damaged UTF-8 finds, counts and
/// locates both kinds of damage in one way.
class TextDecoder {
  public:
    [[nodiscard]] static Result<std::unique_ptr<TextDecoder>> open(const CEncoding& encoding);
    ~TextDecoder();
    TextDecoder(const TextDecoder&) = delete;
    TextDecoder& operator=(const TextDecoder&) = delete;

    /// Takes bytes from the front of `bytes` and returns what they say; valid until the next call. `isLast`: nothing
    /// follows these bytes. To be called until `bytes` is empty and hasMore() false.
    [[nodiscard]] std::string_view decode(std::string_view& bytes, bool isLast);
    /// The latest call had more to say than it could; the next one, be it without bytes, goes on.
    [[nodiscard]] bool hasMore() const { return m_hasMore; }

  private:
    explicit TextDecoder(UConverter* converter);

    UConverter* m_converter;
    std::vector<char16_t> m_units;
    std::string m_text;
    bool m_hasRotatedControls;
    char16_t m_high = 0; ///< a surrogate whose partner comes with the next call
    bool m_hasMore = false;
};

} // namespace tavix::source
