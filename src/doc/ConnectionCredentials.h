#pragma once

#include <string>
#include <string_view>

namespace tavix {

/// Whether the connection string is the URI of a repository server that lacks a user or a password.
[[nodiscard]] bool lacksCredentials(std::string_view connection);
/// The URI with the missing user and password added, percent-encoded. Adds no password where there is no user.
[[nodiscard]] std::string withCredentials(std::string_view connection, std::string_view user,
                                          std::string_view password);

} // namespace tavix
