#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tavix::worksheet {

/// The BIFF8 records that are written here; names and numbers of [MS-XLS] 2.3.
enum class RecordId : std::uint16_t {
    Eof = 0x000A,
    Selection = 0x001D,
    Date1904 = 0x0022,
    Font = 0x0031,
    Continue = 0x003C,
    Window1 = 0x003D,
    Pane = 0x0041,
    CodePage = 0x0042,
    ColInfo = 0x007D,
    BoundSheet8 = 0x0085,
    Xf = 0x00E0,
    Sst = 0x00FC,
    LabelSst = 0x00FD,
    Dimensions = 0x0200,
    Number = 0x0203,
    Window2 = 0x023E,
    Style = 0x0293,
    Bof = 0x0809,
};

inline constexpr std::size_t kRecordHeaderBytes = 4;
inline constexpr std::size_t kMaxRecordBytes = 8224; ///< of the data after the header

/// Appends a number, little-endian.
template <typename Unsigned>
void putNumber(std::string& out, Unsigned value) {
    std::array<char, sizeof(Unsigned)> bytes;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(value >> (8 * i) & 0xFFu);
    out.append(bytes.data(), bytes.size());
}
inline void put8(std::string& out, std::uint32_t value) {
    out += static_cast<char>(value & 0xFFu);
}
inline void put16(std::string& out, std::uint32_t value) {
    putNumber(out, static_cast<std::uint16_t>(value));
}
inline void put32(std::string& out, std::uint32_t value) {
    putNumber(out, value);
}
inline void putReal(std::string& out, double value) {
    putNumber(out, std::bit_cast<std::uint64_t>(value));
}
inline void putUnits(std::string& out, std::u16string_view units) {
    if constexpr (std::endian::native == std::endian::little) {
        out.append(reinterpret_cast<const char*>(units.data()), 2 * units.size());
    } else {
        for (char16_t unit : units)
            put16(out, unit);
    }
}

/// Appends the header of a record; data of exactly this size must follow.
inline void putHeader(std::string& out, RecordId id, std::size_t bytes) {
    put16(out, static_cast<std::uint32_t>(id));
    put16(out, static_cast<std::uint32_t>(bytes));
}

inline void putRecord(std::string& out, RecordId id, std::string_view data) {
    putHeader(out, id, data.size());
    out += data;
}

} // namespace tavix::worksheet
