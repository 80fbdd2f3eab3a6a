#include "alert/AlertEditor.h"

#include "access/PrViewer.h"
#include "base/Characters.h"
#include "base/LoginName.h"
#include "base/Messages.h"
#include "base/NoteText.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix {

namespace {

constexpr std::size_t kQuotedBytes = 200;

/// The beginning of the first line.
std::string quoted(std::string_view text) {
    const std::string_view beginning = cutToBytes(text.substr(0, text.find('\n')), kQuotedBytes);
    return fmt::format("\"{}{}\"", beginning, beginning.size() < text.size() ? "…" : "");
}

} // namespace

AlertEditor::AlertEditor(PrViewer& viewer, Messages& messages) : AlertEditor(viewer, messages, loginName()) {}

AlertEditor::AlertEditor(PrViewer& viewer, Messages& messages, std::string user)
    : m_viewer(viewer), m_messages(messages), m_user(std::move(user)) {}

bool AlertEditor::Conclude(bool succeeded, std::string_view leadIn) {
    if (!succeeded)
        m_messages.warn(fmt::format("{}:\n\n{}", leadIn, m_viewer.getErrorString().view()));
    return succeeded;
}

template <typename Change>
bool AlertEditor::All(std::string_view leadIn, const Change& change) {
    if (!Conclude(m_viewer.beginChanges(), leadIn))
        return false;
    const bool changed = change();
    // Says why before the failure of keeping, which follows from it, replaces the reason.
    if (!Conclude(changed, leadIn)) {
        m_viewer.dropChanges();
        return false;
    }
    return Conclude(m_viewer.keepChanges(), leadIn);
}

bool AlertEditor::Store(int& id, const AlertDefinition& alert) {
    return Conclude(m_viewer.createEditAlert(id, alert, m_user), "Error occurred while storing the alert");
}

bool AlertEditor::StoreCopies(std::span<const AlertDefinition> alerts) {
    return All("Error occurred while copying the alert", [&] {
        return std::ranges::all_of(alerts, [&](const AlertDefinition& alert) {
            int id = -1;
            return m_viewer.createEditAlert(id, alert, m_user);
        });
    });
}

bool AlertEditor::Remove(std::span<const AlertState> alerts) {
    if (alerts.empty())
        return false;
    const bool isOne = alerts.size() == 1;
    const std::string question =
        isOne ? fmt::format("Remove this alert, with its notes and history?\n\n{}", quoted(alerts.front().description))
              : fmt::format("Remove these {} alerts, with their notes and history?", alerts.size());
    if (m_messages.ask(question, isOne ? "Remove Alert" : "Remove Alerts", Messages::Answer::No) !=
        Messages::Answer::Yes)
        return false;
    return All("Error occurred while removing the alert", [&] {
        return std::ranges::all_of(alerts, [&](const AlertState& alert) { return m_viewer.deleteAlert(alert.id); });
    });
}

bool AlertEditor::Mute(std::span<const AlertState> alerts, const MuteDraft& draft) {
    const std::string reason = tidyNote(draft.reason);
    return All("Error occurred while muting the alert", [&] {
        return std::ranges::all_of(alerts, [&](const AlertState& alert) {
            return m_viewer.muteAlert(alert.id, m_user, reason, draft.runs.value_or(0), draft.until);
        });
    });
}

bool AlertEditor::Unmute(std::span<const AlertState> alerts) {
    return All("Error occurred while unmuting the alert", [&] {
        return std::ranges::all_of(
            alerts, [&](const AlertState& alert) { return !alert.mute || m_viewer.unmuteAlert(alert.id); });
    });
}

bool AlertEditor::AddNote(int alert, const std::string& text) {
    const std::string tidy = tidyNote(text);
    const Status checked = checkNote(tidy);
    if (!checked) {
        m_messages.warn(tidy.empty() ? "Enter the text of the note." : checked.error().text,
                        tidy.empty() ? "Missing Value" : "Invalid Value");
        return false;
    }
    return Conclude(m_viewer.createNewAlertNote(alert, m_user, tidy), "Error occurred while adding the note");
}

bool AlertEditor::DeleteNote(const AlertHistory::Entry& note) {
    if (m_messages.ask(fmt::format("Delete this note?\n\n{}", quoted(note.text)), "Delete Note",
                       Messages::Answer::No) != Messages::Answer::Yes)
        return false;
    return Conclude(m_viewer.deleteAlertNote(note.note), "Error occurred while deleting the note");
}

bool AlertEditor::MayDiscard() {
    return m_messages.ask("The alert is not stored. Discard it?", "Discard Alert", Messages::Answer::No) ==
           Messages::Answer::Yes;
}

} // namespace tavix
