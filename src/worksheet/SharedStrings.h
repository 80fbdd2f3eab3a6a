#pragma once

#include "worksheet/CellText.h"
#include "worksheet/Spool.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::worksheet {

/// The table of texts that the cells of a workbook refer to: an SST record and its CONTINUE records ([MS-XLS] 2.4.265,
/// 2.5.293). Recently added texts are stored once, within a fixed amount of memory; a text that is in the table twice
/// only costs bytes.
class SharedStrings {
  public:
    explicit SharedStrings(SpoolStore& store);

    /// The number of the text in the table. `utf8` is the source of `text`.
    std::uint32_t add(std::string_view utf8, const CellText& text);

    /// Bytes of the records.
    [[nodiscard]] std::int64_t size() const;
    /// The records; `references` is the number of cells that hold a text.
    Status copyTo(const Sink& sink, std::int64_t references) const;

  private:
    struct Recent {
        std::size_t hash = 0;
        std::uint32_t number = kNone;
        std::string text;
    };
    static constexpr std::uint32_t kNone = 0xFFFFFFFFu;

    void append(const CellText& text);
    void closeRecord();
    void remember(Recent& slot, std::size_t hash, std::string_view utf8);
    [[nodiscard]] std::size_t room() const;

    std::vector<Recent> m_recent;
    std::size_t m_recentBytes = 0;
    std::uint32_t m_count = 0;
    std::string m_first;   ///< data of the SST record once it is complete
    std::string m_record;  ///< data of the current record, with its header before it
    bool m_inFirst = true; ///< the current record is the SST record
    Spool m_continuations; ///< complete CONTINUE records
};

} // namespace tavix::worksheet
