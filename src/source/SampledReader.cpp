#include "source/SampledReader.h"

namespace tavix::source {

Result<bool> SampledReader::read(RowBlock& block) {
    for (;;) {
        auto more = m_reader->read(block);
        if (!more || !*more)
            return more;
        block.records.clear();
        block.offsets.clear();
        std::size_t kept = 0;
        for (std::size_t row = 0; row < block.rows; ++row) {
            const std::int64_t record = ++m_rowsSeen;
            if (!m_sample.takes(record))
                continue;
            if (kept != row)
                for (auto& column : block.columns)
                    column[kept] = column[row];
            block.records.push_back(record);
            ++kept;
        }
        block.rows = kept;
        if (kept > 0)
            return true;
    }
}

} // namespace tavix::source
