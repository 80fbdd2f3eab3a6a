#pragma once

#include <string>
#include <utility>
#include <variant>

namespace tavix {

/// Why an operation failed, in words for users.
struct Error {
    std::string text;

    bool operator==(const Error&) const = default;
};

/// The value of an operation or the error that prevented it; the only way in which Tavix's own layers fail.
template <typename T>
class [[nodiscard]] Result {
  public:
    Result(T value) : m_state(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : m_state(std::in_place_index<1>, std::move(error)) {}

    [[nodiscard]] bool ok() const { return m_state.index() == 0; }
    explicit operator bool() const { return ok(); }

    /// The value; only valid if ok().
    T& value() & { return std::get<0>(m_state); }
    const T& value() const& { return std::get<0>(m_state); }
    T&& value() && { return std::get<0>(std::move(m_state)); }
    T* operator->() { return &std::get<0>(m_state); }
    const T* operator->() const { return &std::get<0>(m_state); }
    T& operator*() & { return std::get<0>(m_state); }
    const T& operator*() const& { return std::get<0>(m_state); }

    /// The error; only valid if not ok().
    [[nodiscard]] const Error& error() const { return std::get<1>(m_state); }

  private:
    std::variant<T, Error> m_state;
};

/// Success or the error of an operation without a value.
template <>
class [[nodiscard]] Result<void> {
  public:
    Result() = default;
    Result(Error error) : m_error(std::move(error)), m_failed(true) {}

    [[nodiscard]] bool ok() const { return !m_failed; }
    explicit operator bool() const { return ok(); }
    [[nodiscard]] const Error& error() const { return m_error; }

  private:
    Error m_error;
    bool m_failed = false;
};

using Status = Result<void>;

} // namespace tavix
