#pragma once

#include "base/KvbString.h"

#include <cstdint>
#include <string>
#include <variant>

namespace tavix {

/// A cell value, possibly null, that converts to text, integer or floating point when read.
class KvbDatavar {
  public:
    KvbDatavar() = default;
    KvbDatavar(std::int64_t value) : m_value(value) {}
    KvbDatavar(int value) : m_value(static_cast<std::int64_t>(value)) {}
    KvbDatavar(double value) : m_value(value) {}
    KvbDatavar(std::string text) : m_value(std::move(text)) {}
    KvbDatavar(const char* text) : m_value(std::string(text)) {}
    KvbDatavar(const KvbString& text);

    [[nodiscard]] bool isNull() const { return std::holds_alternative<std::monostate>(m_value); }
    /// Null gives a null string; a real gives its shortest text that reads back equal, whatever the locale.
    [[nodiscard]] KvbString toText() const&;
    [[nodiscard]] KvbString toText() &&;
    /// Null and text that is not a number give 0; a real is truncated; values outside 32 bits are clamped.
    [[nodiscard]] int toInt() const;
    [[nodiscard]] std::int64_t toInt64() const;
    /// Null and text that is not a number give 0.
    [[nodiscard]] double toDouble() const;

    using Storage = std::variant<std::monostate, std::int64_t, double, std::string>;
    [[nodiscard]] const Storage& storage() const { return m_value; }

    bool operator==(const KvbDatavar&) const = default;

  private:
    Storage m_value;
};

} // namespace tavix
