#pragma once

#include "base/LibraryDate.h"
#include "base/Result.h"
#include "report/AlertStates.h"

#include <cstddef>
#include <locale>
#include <string>
#include <vector>

namespace tavix {

class PrViewer;

/// The history of an alert, the latest first: notes, changes of its condition, its mute, its making.
class AlertHistory {
  public:
    enum class Kind { Note, Change, Mute, Made };

    struct Entry {
        Kind kind = Kind::Note;
        LibraryDate date = 0;
        std::string who;  ///< the user, or "job"
        std::string text; ///< of a note as it was written, lines end with "\n"
        int note = -1;    ///< its id
    };

    [[nodiscard]] static Result<AlertHistory> Read(PrViewer& viewer, const AlertState& alert,
                                                   const std::locale& locale);

    [[nodiscard]] const std::vector<Entry>& GetEntries() const { return m_entries; }
    [[nodiscard]] bool CanDelete(std::size_t entry) const {
        return entry < m_entries.size() && m_entries[entry].kind == Kind::Note;
    }
    /// "Note", "Changed", "Muted" or "Made".
    [[nodiscard]] static std::string_view WordOf(Kind kind);

  private:
    std::vector<Entry> m_entries;
};

} // namespace tavix
