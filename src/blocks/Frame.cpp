#include "blocks/Frame.h"

#include "base/Characters.h"

namespace tavix::expression {

void Frame::begin(const Block& block, std::size_t mostTexts) {
    m_block = &block;
    m_scratch.clear(mostTexts);
    m_adjacent = 0;
    m_ascii.assign(block.columns.size(), -1);
    if (m_failures > 0 || m_failed.size() < block.rows)
        m_failed.assign(block.rows, 0);
    m_failures = 0;
}

bool AsciiAnswer::isYes() const {
    return m_frame ? m_frame->isAscii(m_column) : m_isYes;
}

bool Frame::isAscii(std::size_t column) {
    std::int8_t& known = m_ascii[column];
    if (known < 0)
        known = tavix::isAscii(m_block->columns[column].bytes) ? 1 : 0;
    return known == 1;
}

void Frame::markFailed(std::uint32_t row) {
    std::string failure = m_scratch.takeFailure();
    if (m_failed[row] != 0)
        return;
    m_failed[row] = 1;
    if (m_failures++ == 0 || row < m_firstFailed) {
        m_firstFailed = row;
        m_firstFailure = std::move(failure);
    }
}

Frame::Loan::Loan(Frame& frame) : m_frame(frame) {
    if (frame.m_lent == frame.m_sets.size())
        frame.m_sets.push_back(std::make_unique<RowSet>());
    m_rows = frame.m_sets[frame.m_lent++].get();
}

} // namespace tavix::expression
