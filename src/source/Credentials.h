#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tavix::source {

/// Who someone is to a database server. Lives in memory only: neither stored nor shown nor logged.
struct Credentials {
    std::string user;     ///< empty: as the data source says
    std::string password; ///< empty: none
};

/// Asked for the credentials of the source with this name: first with an empty `refusal`, for those that are known
/// without asking anybody, then after each refusal with the words of the server. Nothing: there are none, and the
/// server's words are the error.
using AskCredentials = std::function<std::optional<Credentials>(const std::string& source, const std::string& refusal)>;

/// The environment variable that holds the password for a source; with an empty name, for all that have none of their
/// own: TAVIX_SOURCE_PASSWORD_SHOP, TAVIX_SOURCE_PASSWORD. Those with USER hold the user.
[[nodiscard]] std::string passwordVariable(const std::string& source);
[[nodiscard]] std::string userVariable(const std::string& source);

/// What the environment says, of this source or else of all; nothing when it says nothing.
[[nodiscard]] std::optional<Credentials> credentialsFromEnvironment(const std::string& source);

/// Asked some times a second while a server works, on the thread that waits for it; false cancels the work.
using KeepGoing = std::function<bool()>;
/// The error of what a KeepGoing cancelled.
inline constexpr const char* kCancelled = "cancelled";

} // namespace tavix::source
