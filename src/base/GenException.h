#pragma once

#include "base/KvbString.h"

#include <exception>
#include <utility>

namespace tavix {

/// Thrown by the repository library when it fails where its interface has no failing result, as in the middle of a
/// cursor. Ordinary failures are a false or null result instead.
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
