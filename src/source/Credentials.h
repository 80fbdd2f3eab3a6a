#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tavix::source {

/// A login at a database server. Kept in memory only: never stored, shown or logged.
struct Credentials {
    std::string user;     ///< empty: the data source's own
    std::string password; ///< empty: none
};

/// Returns the credentials for the source of this name. Called first with an empty `refusal`, for credentials that are
/// known without asking the user, then after each refusal with the server's words. Nothing: no credentials, and the
/// server's words are the error.
using AskCredentials = std::function<std::optional<Credentials>(const std::string& source, const std::string& refusal)>;

/// The environment variable with the password of a source, or, for an empty name, of all sources without one of their
/// own: TAVIX_SOURCE_PASSWORD_SHOP, TAVIX_SOURCE_PASSWORD. The same names with USER hold the user.
[[nodiscard]] std::string passwordVariable(const std::string& source);
[[nodiscard]] std::string userVariable(const std::string& source);

/// From the environment, for this source or else for all; nothing if neither is set.
[[nodiscard]] std::optional<Credentials> credentialsFromEnvironment(const std::string& source);

/// Called several times a second while a server works, on the thread that waits for it; false cancels the work.
using KeepGoing = std::function<bool()>;
/// The error of work that a KeepGoing cancelled.
inline constexpr const char* kCancelled = "cancelled";

} // namespace tavix::source
