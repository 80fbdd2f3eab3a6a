#include "worksheet/SharedStrings.h"

#include "worksheet/Records.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <functional>

namespace tavix::worksheet {

namespace {

constexpr std::size_t kRecentSlots = 16384; ///< a power of two
constexpr std::size_t kMaxRecentBytes = std::size_t{16} << 20u;
constexpr std::size_t kCountsBytes = 8; ///< the two counts that start the SST record
constexpr std::size_t kTextHeaderBytes = 3;

/// The bit of a text's header that says that its characters have two bytes each.
constexpr std::uint32_t kWideFlag = 1;

/// Bytes of the first character, which stays with the header so that no record ends after a header.
std::size_t firstCharacterBytes(const CellText& text) {
    if (text.length() == 0)
        return 0;
    if (!text.wide())
        return 1;
    return U16_IS_LEAD(text.units()[0]) ? 4 : 2;
}

/// How many of the units fit into so many bytes without splitting a surrogate pair: the format would allow that, but
/// readers decode each record by itself.
std::size_t fittingUnits(std::u16string_view units, std::size_t bytes) {
    std::size_t count = std::min(units.size(), bytes / 2);
    if (count > 0 && count < units.size() && U16_IS_LEAD(units[count - 1]) && U16_IS_TRAIL(units[count]))
        --count;
    return count;
}

} // namespace

SharedStrings::SharedStrings(SpoolStore& store) : m_recent(kRecentSlots), m_continuations(store) {
    m_record.reserve(kRecordHeaderBytes + kMaxRecordBytes);
    m_record.assign(kRecordHeaderBytes + kCountsBytes, '\0');
}

std::uint32_t SharedStrings::add(std::string_view utf8, const CellText& text) {
    const std::size_t hash = std::hash<std::string_view>{}(utf8);
    Recent& slot = m_recent[hash & (kRecentSlots - 1)];
    if (slot.number != kNone && slot.hash == hash && slot.text == utf8)
        return slot.number;
    append(text);
    remember(slot, hash, utf8);
    return m_count++;
}

void SharedStrings::remember(Recent& slot, std::size_t hash, std::string_view utf8) {
    m_recentBytes -= slot.text.size();
    if (m_recentBytes + utf8.size() > kMaxRecentBytes) {
        slot = Recent{};
        return;
    }
    m_recentBytes += utf8.size();
    slot.hash = hash;
    slot.number = m_count;
    // Frees the memory of a long text when a short one replaces it.
    if (slot.text.capacity() > 2 * utf8.size() + 64)
        slot.text = std::string();
    slot.text.assign(utf8);
}

std::size_t SharedStrings::room() const {
    return kRecordHeaderBytes + kMaxRecordBytes - m_record.size();
}

void SharedStrings::append(const CellText& text) {
    if (room() < kTextHeaderBytes + firstCharacterBytes(text))
        closeRecord();
    const std::uint32_t flags = text.wide() ? kWideFlag : 0;
    put16(m_record, static_cast<std::uint32_t>(text.length()));
    put8(m_record, flags);
    std::size_t done = 0;
    for (;;) {
        if (text.wide()) {
            const std::u16string_view rest = text.units().substr(done);
            const std::size_t count = fittingUnits(rest, room());
            putUnits(m_record, rest.substr(0, count));
            done += count;
        } else {
            const std::string_view part = text.narrow().substr(done, room());
            m_record += part;
            done += part.size();
        }
        if (done == text.length())
            return;
        closeRecord();
        put8(m_record, flags);
    }
}

void SharedStrings::closeRecord() {
    if (m_inFirst) {
        m_first = m_record.substr(kRecordHeaderBytes);
        m_inFirst = false;
    } else {
        std::string header;
        putHeader(header, RecordId::Continue, m_record.size() - kRecordHeaderBytes);
        m_record.replace(0, kRecordHeaderBytes, header);
        m_continuations.append(m_record);
    }
    m_record.resize(kRecordHeaderBytes);
}

std::int64_t SharedStrings::size() const {
    std::int64_t bytes = static_cast<std::int64_t>(m_record.size()) + m_continuations.size();
    if (!m_inFirst)
        bytes += static_cast<std::int64_t>(kRecordHeaderBytes + m_first.size());
    return bytes;
}

Status SharedStrings::copyTo(const Sink& sink, std::int64_t references) const {
    const std::string_view last = std::string_view(m_record).substr(kRecordHeaderBytes);
    const std::string_view first = m_inFirst ? last : std::string_view(m_first);
    std::string records;
    putHeader(records, RecordId::Sst, first.size());
    put32(records, static_cast<std::uint32_t>(references));
    put32(records, m_count);
    records += first.substr(kCountsBytes);
    if (Status written = sink(records); !written || m_inFirst)
        return written;
    if (Status written = m_continuations.copyTo(sink); !written)
        return written;
    records.clear();
    putRecord(records, RecordId::Continue, last);
    return sink(records);
}

} // namespace tavix::worksheet
