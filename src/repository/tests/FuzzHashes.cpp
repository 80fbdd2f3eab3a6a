#include "repository/tests/FuzzHashes.h"

#include "repository/PackedHashes.h"
#include "repository/tests/HoldsOrAborts.h"
#include "repository/tests/Resealed.h"

#include <algorithm>

namespace tavix::repository {

namespace {

void unpackAndCheck(std::span<const std::byte> bytes) {
    const auto hashes = unpackHashes(bytes);
    if (!hashes)
        return;
    holdsOrAborts(std::is_sorted(hashes->begin(), hashes->end()), "hashes do not ascend");
    const auto packed = packSortedHashes(*hashes);
    holdsOrAborts(packed.size() % sizeof(std::uint64_t) != 0, "what was packed is taken for plain hashes");
    const auto again = unpackHashes(packed);
    holdsOrAborts(again.ok() && *again == *hashes, "hashes changed by packing");
}

} // namespace

void fuzzHashes(std::span<const std::byte> bytes) {
    unpackAndCheck(bytes);
    unpackAndCheck(resealed(bytes));
}

} // namespace tavix::repository
