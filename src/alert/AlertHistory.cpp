#include "alert/AlertHistory.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "report/AlertTexts.h"
#include "report/CheckedCursor.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tavix {

namespace {

constexpr std::string_view kJob = "job";

} // namespace

std::string_view AlertHistory::WordOf(Kind kind) {
    constexpr std::array<std::string_view, 4> kWords{"Note", "Changed", "Muted", "Made"};
    return kWords[static_cast<std::size_t>(kind)];
}

Result<AlertHistory> AlertHistory::Read(PrViewer& viewer, const AlertState& alert, const std::locale& locale) try {
    AlertHistory history;
    std::vector<Entry>& entries = history.m_entries;
    const ProfileCursorHandle notes = checked(viewer, viewer.getAlertNotes(alert.id));
    while (notes->next())
        entries.push_back({Kind::Note, notes->getColumnDouble(layout::AlertNoteDate),
                           textAt(*notes, layout::AlertNoteUser), textAt(*notes, layout::AlertNoteText),
                           notes->getColumnInt(layout::AlertNoteId)});
    const ProfileCursorHandle changes = checked(viewer, viewer.getAlertChanges(alert.id));
    while (changes->next()) {
        std::string author = textAt(*changes, layout::AlertChangeAuthor);
        entries.push_back({Kind::Change, changes->getColumnDouble(layout::AlertChangeDate),
                           author.empty() ? std::string(kJob) : std::move(author),
                           fmt::format("{}\nbefore: {}", textAt(*changes, layout::AlertChangeAfter),
                                       textAt(*changes, layout::AlertChangeBefore)),
                           -1});
    }
    if (alert.mute)
        entries.push_back({Kind::Mute, alert.mute->date, alert.mute->author, alertMuteText(alert, locale), -1});
    if (alert.isOfUser)
        entries.push_back({Kind::Made, alert.created, alert.author, alert.description, -1});
    // The cursors are in this order already; of one moment, the order above is kept.
    std::ranges::stable_sort(entries, std::ranges::greater(), &Entry::date);
    return history;
} catch (const GenException& failure) {
    return Error{failure.getText().str()};
}

} // namespace tavix
