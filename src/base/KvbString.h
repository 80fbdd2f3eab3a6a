#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tavix {

/// The text type of the repository library: UTF-8 or null, which differs from empty.
class KvbString {
  public:
    KvbString() = default;
    KvbString(std::string text) : m_text(std::move(text)) {}
    KvbString(std::string_view text) : m_text(std::in_place, text) {}
    KvbString(const char* text) : m_text(text ? std::optional<std::string>(text) : std::nullopt) {}

    [[nodiscard]] bool isNull() const { return !m_text.has_value(); }
    /// True for null and for the empty text.
    [[nodiscard]] bool isEmpty() const { return !m_text || m_text->empty(); }
    /// The text; "" for null. Valid until this object changes.
    [[nodiscard]] std::string_view view() const { return m_text ? std::string_view(*m_text) : std::string_view(); }
    [[nodiscard]] std::string str() const& { return m_text.value_or(std::string()); }
    [[nodiscard]] std::string str() && { return m_text ? std::move(*m_text) : std::string(); }

    /// Null equals only null; texts are compared by byte.
    bool operator==(const KvbString&) const = default;

  private:
    std::optional<std::string> m_text;
};

} // namespace tavix
