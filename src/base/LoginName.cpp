#include "base/LoginName.h"

#include <fmt/format.h>
#include <pwd.h>
#include <unistd.h>

#include <array>

namespace tavix {

std::string loginName() {
    // The buffer suffices for a long comment in the entry. Environment variables must not decide who wrote a note.
    std::array<char, 16384> room{};
    passwd entry{};
    passwd* found = nullptr;
    const uid_t user = getuid();
    if (getpwuid_r(user, &entry, room.data(), room.size(), &found) == 0 && found && found->pw_name &&
        *found->pw_name != '\0')
        return found->pw_name;
    return fmt::format("user {}", user);
}

} // namespace tavix
