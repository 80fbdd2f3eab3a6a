#pragma once

#include "base/KvbString.h"

#include <exception>
#include <utility>

namespace tavix {

/// Thrown by the repository library for failures that its interface cannot return, such as in the middle of a cursor.
/// Ordinary failures return false or null.
class GenException : public std::exception {
  public:
    explicit GenException(KvbString text) : m_text(std::move(text)), m_what(m_text.str()) {}

    [[nodiscard]] const KvbString& getText() const { return m_text; }
    [[nodiscard]] const char* what() const noexcept override { return m_what.c_str(); }

  private:
    KvbString m_text;
    std::string m_what;
};

} // namespace tavix
