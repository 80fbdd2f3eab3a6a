#include "filter/FilterFile.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>

// Any bytes as a ".flt" file: a text or an error, never more text than the length says, and what was read can be
// written and read again.

namespace tavix {
namespace {

void readFilterBytes(const std::string& bytes) {
    std::istringstream file(bytes);
    const LoadedFilter loaded = readFilter(file);
    const auto* const text = std::get_if<std::string>(&loaded);
    if (!text)
        return;
    // A byte that is not UTF-8 takes three as U+FFFD.
    if (text->size() > 3 * (bytes.size() - 2))
        std::abort();
    std::istringstream copy(filterFileBytes(*text));
    const LoadedFilter back = readFilter(copy);
    if (!std::holds_alternative<std::string>(back) || (text->size() <= 0xFFFF && std::get<std::string>(back) != *text))
        std::abort();
}

} // namespace
} // namespace tavix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavix::readFilterBytes({reinterpret_cast<const char*>(data), size});
    return 0;
}
