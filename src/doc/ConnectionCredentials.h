#pragma once

#include <string>
#include <string_view>

namespace tavix {

/// Whether the connection string is the URI of a repository server and names no user or no password for it.
[[nodiscard]] bool lacksCredentials(std::string_view connection);
/// The URI with what it lacks, percent-encoded; what it names already stays. Without a user there is no password.
[[nodiscard]] std::string withCredentials(std::string_view connection, std::string_view user,
                                          std::string_view password);

} // namespace tavix
