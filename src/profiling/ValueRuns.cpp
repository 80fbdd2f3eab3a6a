#include "profiling/ValueRuns.h"

#include "forms/ValueKind.h"

#include <algorithm>
#include <bit>

namespace tavix::profiling {

namespace {

static_assert(std::endian::native == std::endian::little, "prefixOf() turns words around");

/// So many runs of a level are merged into one of the next level.
constexpr std::size_t kMostOfALevel = 16;
constexpr std::size_t kSmallestBuffer = std::size_t{4} << 10;
constexpr std::size_t kLargestBuffer = std::size_t{256} << 10;

/// The fields before the text of a record.
struct RecordHead {
    std::uint64_t key = 0;
    std::uint64_t count = 0;
    std::uint32_t size = 0;
};
constexpr std::size_t kHeadSize = 8 + 8 + 4;

std::size_t bufferFor(std::size_t memory, std::size_t inputs) {
    return std::clamp(memory / std::max<std::size_t>(inputs, 1), kSmallestBuffer, kLargestBuffer);
}

} // namespace

RunOutput::RunOutput(SpillFile& file, std::size_t bufferSize)
    : m_file(file), m_bufferSize(std::clamp(bufferSize, kSmallestBuffer, kLargestBuffer)) {
    m_buffer.reserve(m_bufferSize);
}

Status RunOutput::flush() {
    if (m_buffer.empty())
        return {};
    const auto offset = m_file.append(m_buffer);
    if (!offset)
        return offset.error();
    auto& extents = m_run.extents;
    if (!extents.empty() && extents.back().offset + extents.back().size == *offset)
        extents.back().size += m_buffer.size();
    else
        extents.push_back({*offset, m_buffer.size()});
    m_buffer.clear();
    return {};
}

Status RunOutput::add(const RunRecord& record) {
    const std::size_t size = kHeadSize + record.text.size();
    if (m_buffer.size() + size > m_bufferSize)
        if (Status status = flush(); !status)
            return status;
    const std::size_t at = m_buffer.size();
    m_buffer.resize(at + size); // grows for a value longer than the buffer
    std::byte* to = m_buffer.data() + at;
    const auto textSize = static_cast<std::uint32_t>(record.text.size());
    std::memcpy(to, &record.key, 8);
    std::memcpy(to + 8, &record.count, 8);
    std::memcpy(to + 16, &textSize, 4);
    if (textSize > 0)
        std::memcpy(to + kHeadSize, record.text.data(), textSize);
    return {};
}

Result<SortedRun> RunOutput::finish() {
    if (Status status = flush(); !status)
        return status.error();
    return std::move(m_run);
}

RunInput::RunInput(const SpillFile& file, const SortedRun& run, std::size_t bufferSize)
    : m_file(file), m_run(&run), m_bufferSize(bufferSize) {}

/// Makes `size` bytes available at m_at, or as many as are left.
Status RunInput::need(std::size_t size) {
    if (m_end - m_at >= size)
        return {};
    if (m_at > 0)
        std::memmove(m_buffer.data(), m_buffer.data() + m_at, m_end - m_at);
    m_end -= m_at;
    m_at = 0;
    if (m_buffer.size() < std::max(size, m_bufferSize))
        m_buffer.resize(std::max(size, m_bufferSize));
    while (m_end < m_buffer.size() && m_extent < m_run->extents.size()) {
        const SortedRun::Extent& extent = m_run->extents[m_extent];
        const std::size_t part =
            std::min<std::uint64_t>(extent.size - m_inExtent, static_cast<std::uint64_t>(m_buffer.size() - m_end));
        if (Status status = m_file.read(extent.offset + m_inExtent, std::span(m_buffer).subspan(m_end, part)); !status)
            return status;
        m_end += part;
        m_inExtent += part;
        if (m_inExtent == extent.size) {
            ++m_extent;
            m_inExtent = 0;
        }
    }
    return {};
}

Result<bool> RunInput::next() {
    if (Status status = need(kHeadSize); !status)
        return status.error();
    if (m_end == m_at)
        return false;
    RecordHead head;
    const std::byte* const from = m_buffer.data() + m_at;
    std::memcpy(&head.key, from, 8);
    std::memcpy(&head.count, from + 8, 8);
    std::memcpy(&head.size, from + 16, 4);
    if (Status status = need(kHeadSize + head.size); !status)
        return status.error();
    m_record = {head.key, head.count, {reinterpret_cast<const char*>(m_buffer.data() + m_at + kHeadSize), head.size}};
    m_at += kHeadSize + head.size;
    return true;
}

RunMerge::RunMerge(const SpillFile& file, std::span<const SortedRun> runs, RunOrder order, std::size_t memory)
    : m_order(order) {
    m_inputs.reserve(runs.size());
    for (const SortedRun& run : runs)
        m_inputs.emplace_back(file, run, bufferFor(memory, runs.size()));
}

RunMerge::Head RunMerge::headOf(std::uint32_t input) const {
    const RunRecord& record = m_inputs[input].record();
    return {m_order == RunOrder::Text ? prefixOf(record.text) : record.key, input};
}

bool RunMerge::isBefore(const Head& left, const Head& right) const {
    if (left.key != right.key)
        return left.key < right.key;
    if (m_order != RunOrder::Key) {
        const std::string_view a = m_inputs[left.input].record().text;
        const std::string_view b = m_inputs[right.input].record().text;
        const int order = m_order == RunOrder::Text ? a.compare(b) : forms::compareIntegers(a, b);
        if (order != 0)
            return order < 0;
    }
    return left.input < right.input;
}

void RunMerge::siftDown(std::size_t at) {
    const Head moving = m_heads[at];
    for (;;) {
        std::size_t child = at * 2 + 1;
        if (child >= m_heads.size())
            break;
        if (child + 1 < m_heads.size() && isBefore(m_heads[child + 1], m_heads[child]))
            ++child;
        if (!isBefore(m_heads[child], moving))
            break;
        m_heads[at] = m_heads[child];
        at = child;
    }
    m_heads[at] = moving;
}

Status RunMerge::start() {
    m_isStarted = true;
    for (std::uint32_t i = 0; i < m_inputs.size(); ++i) {
        const auto more = m_inputs[i].next();
        if (!more)
            return more.error();
        if (*more)
            m_heads.push_back(headOf(i));
    }
    for (std::size_t at = m_heads.size() / 2; at-- > 0;)
        siftDown(at);
    return {};
}

Status RunMerge::advance() {
    const std::uint32_t input = m_heads.front().input;
    const auto more = m_inputs[input].next();
    if (!more)
        return more.error();
    if (*more) {
        m_heads.front() = headOf(input);
    } else {
        m_heads.front() = m_heads.back();
        m_heads.pop_back();
    }
    if (!m_heads.empty())
        siftDown(0);
    return {};
}

Result<bool> RunMerge::next() {
    if (!m_isStarted)
        if (Status status = start(); !status)
            return status.error();
    if (m_isTopUsed)
        if (Status status = advance(); !status)
            return status.error();
    m_isTopUsed = false;
    if (m_heads.empty())
        return false;
    m_record = m_inputs[m_heads.front().input].record();
    m_isTopUsed = true;
    if (m_order != RunOrder::Text || m_heads.size() == 1)
        return true;
    // Advancing overwrites the text, so keep it before looking at the next input.
    m_text.assign(m_record.text.begin(), m_record.text.end());
    m_record.text = {m_text.data(), m_text.size()};
    for (;;) {
        if (Status status = advance(); !status)
            return status.error();
        m_isTopUsed = false;
        if (m_heads.empty())
            return true;
        const RunRecord& following = m_inputs[m_heads.front().input].record();
        if (following.text != m_record.text)
            return true;
        m_record.count += following.count;
    }
}

Status RunSet::add(SpillFile& file, SortedRun run) {
    m_runs.push_back(std::move(run));
    for (;;) {
        if (m_runs.size() < kMostOfALevel)
            return {};
        const std::size_t first = m_runs.size() - kMostOfALevel;
        const unsigned level = m_runs[first].level;
        if (level != m_runs.back().level)
            return {};
        const std::span<SortedRun> merged = std::span(m_runs).subspan(first);
        RunMerge merge(file, merged, m_order, kMostOfALevel * kLargestBuffer / 4);
        RunOutput output(file, kLargestBuffer);
        for (;;) {
            const auto more = merge.next();
            if (!more)
                return more.error();
            if (!*more)
                break;
            if (Status status = output.add(merge.record()); !status)
                return status;
        }
        auto larger = output.finish();
        if (!larger)
            return larger.error();
        larger->level = level + 1;
        for (const SortedRun& old : merged)
            for (const auto& extent : old.extents)
                file.release(extent.offset, extent.size);
        m_runs.resize(first);
        m_runs.push_back(std::move(*larger));
    }
}

void RunSet::release(SpillFile& file) {
    for (const SortedRun& run : m_runs)
        for (const auto& extent : run.extents)
            file.release(extent.offset, extent.size);
    m_runs.clear();
}

} // namespace tavix::profiling
