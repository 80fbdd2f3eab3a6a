#include "blocks/tests/CountedMemory.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace tavix::expression::testing {

namespace {

std::atomic<bool> isCounting{false};
std::atomic<std::int64_t> taken{0};
std::atomic<std::int64_t> highest{0};
std::atomic<std::size_t> limit{0};

void* take(std::size_t size) {
    if (isCounting && taken > 0 && static_cast<std::size_t>(taken.load()) + size > limit)
        throw std::bad_alloc();
    void* const place = std::malloc(size > 0 ? size : 1); // NOLINT(cppcoreguidelines-no-malloc)
    if (!place)
        throw std::bad_alloc();
    if (isCounting) {
        taken += static_cast<std::int64_t>(malloc_usable_size(place));
        highest = std::max(highest.load(), taken.load());
    }
    return place;
}

void giveBack(void* place) {
    if (isCounting && place)
        taken -= static_cast<std::int64_t>(malloc_usable_size(place));
    std::free(place); // NOLINT(cppcoreguidelines-no-malloc)
}

} // namespace

CountedMemory::CountedMemory(std::size_t most) {
    taken = 0;
    highest = 0;
    limit = most;
    isCounting = true;
}

CountedMemory::~CountedMemory() {
    isCounting = false;
}

std::size_t CountedMemory::peak() const {
    return static_cast<std::size_t>(std::max<std::int64_t>(0, highest));
}

} // namespace tavix::expression::testing

// NOLINTBEGIN(misc-new-delete-overloads,readability-inconsistent-declaration-parameter-name)
void* operator new(std::size_t size) {
    return tavix::expression::testing::take(size);
}
void operator delete(void* place) noexcept {
    tavix::expression::testing::giveBack(place);
}
void operator delete(void* place, std::size_t /*size*/) noexcept {
    tavix::expression::testing::giveBack(place);
}
// NOLINTEND(misc-new-delete-overloads,readability-inconsistent-declaration-parameter-name)
