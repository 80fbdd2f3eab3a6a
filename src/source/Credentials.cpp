#include "source/Credentials.h"

#include "base/Ascii.h"

#include <cstdlib>

namespace tavix::source {

namespace {

std::string variableFor(std::string name, const std::string& source) {
    if (!source.empty())
        name += '_';
    for (const char c : source)
        name += isAsciiLetter(c) || isAsciiDigit(c) ? asciiUpper(c) : '_';
    return name;
}

const char* valueOf(const std::string& own, const std::string& common) {
    const char* const value = std::getenv(own.c_str());
    return value ? value : std::getenv(common.c_str());
}

} // namespace

std::string passwordVariable(const std::string& source) {
    return variableFor("TAVIX_SOURCE_PASSWORD", source);
}

std::string userVariable(const std::string& source) {
    return variableFor("TAVIX_SOURCE_USER", source);
}

std::optional<Credentials> credentialsFromEnvironment(const std::string& source) {
    const char* const user = valueOf(userVariable(source), userVariable({}));
    const char* const password = valueOf(passwordVariable(source), passwordVariable({}));
    if (!user && !password)
        return std::nullopt;
    return Credentials{user ? user : "", password ? password : ""};
}

} // namespace tavix::source
