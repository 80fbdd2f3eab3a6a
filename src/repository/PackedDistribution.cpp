#include "repository/PackedDistribution.h"

#include <xxhash.h>

#include <algorithm>

namespace tavix::repository {

Result<bool> DistributionPacker::next() {
    for (; m_next < m_rows.size(); ++m_next) {
        const ValueCount& row = m_rows[m_next];
        if (!m_packer.hasRoomFor(row.isNull ? 0 : row.value.size()))
            break;
        if (Status status = m_packer.add(row); !status)
            return status.error();
    }
    if (m_packer.isEmpty())
        return false;
    m_block = m_packer.finish();
    return true;
}

std::uint64_t hashValue(std::string_view value) {
    return XXH3_64bits(value.data(), value.size());
}

std::vector<std::uint64_t> sortedHashes(std::span<const ValueCount> rows) {
    std::vector<std::uint64_t> hashes;
    hashes.reserve(rows.size());
    for (const ValueCount& row : rows) {
        if (!row.isNull)
            hashes.push_back(hashValue(row.value));
    }
    std::sort(hashes.begin(), hashes.end());
    return hashes;
}

} // namespace tavix::repository
