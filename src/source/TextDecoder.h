#pragma once

#include "base/Encodings.h"
#include "base/Result.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct UConverter;

namespace tavix::source {

/// Converts text of any encoding to UTF-8, piece by piece. A sequence of bytes that is not a character of the encoding
/// becomes the byte 0xFF, which never occurs in UTF-8, so that repairing UTF-8 finds, counts and locates both kinds of
/// damage.
class TextDecoder {
  public:
    [[nodiscard]] static Result<std::unique_ptr<TextDecoder>> open(const CEncoding& encoding);
    ~TextDecoder();
    TextDecoder(const TextDecoder&) = delete;
    TextDecoder& operator=(const TextDecoder&) = delete;

    /// Consumes bytes from the front of `bytes` and returns their text; valid until the next call. `isLast`: nothing
    /// follows these bytes. To be called until `bytes` is empty and hasMore() false.
    [[nodiscard]] std::string_view decode(std::string_view& bytes, bool isLast);
    /// The latest call had more text than room; the next one, even without bytes, continues.
    [[nodiscard]] bool hasMore() const { return m_hasMore; }

  private:
    explicit TextDecoder(UConverter* converter);

    UConverter* m_converter;
    std::vector<char16_t> m_units;
    std::string m_text;
    bool m_hasRotatedControls;
    char16_t m_high = 0; ///< a surrogate whose other half comes with the next call
    bool m_hasMore = false;
};

} // namespace tavix::source
