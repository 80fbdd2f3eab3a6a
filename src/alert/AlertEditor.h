#pragma once

#include "alert/AlertHistory.h"
#include "alert/MuteDraft.h"
#include "base/AlertDefinition.h"
#include "report/AlertStates.h"

#include <span>
#include <string>
#include <string_view>

namespace tavix {

class Messages;
class PrViewer;

/// Stores, mutes and removes alerts for the user. An operation that fails shows one message and changes nothing.
class AlertEditor {
  public:
    /// Both must outlive the editor. The author is the user who is logged in to the system.
    AlertEditor(PrViewer& viewer, Messages& messages);
    AlertEditor(PrViewer& viewer, Messages& messages, std::string user);

    /// `id` -1 makes an alert of the user and receives its id.
    bool Store(int& id, const AlertDefinition& alert);
    /// Makes all of them or none.
    bool StoreCopies(std::span<const AlertDefinition> alerts);
    /// Asks first. Removes all of them or none.
    bool Remove(std::span<const AlertState> alerts);
    /// All of them or none, from the run that is shown on.
    bool Mute(std::span<const AlertState> alerts, const MuteDraft& draft);
    /// Those that are muted.
    bool Unmute(std::span<const AlertState> alerts);
    bool AddNote(int alert, const std::string& text);
    /// Asks first.
    bool DeleteNote(const AlertHistory::Entry& note);
    /// Asks whether an alert that is not stored may be discarded.
    [[nodiscard]] bool MayDiscard();

  private:
    /// Makes the changes together.
    template <typename Change>
    bool All(std::string_view leadIn, const Change& change);
    bool Conclude(bool succeeded, std::string_view leadIn);

    PrViewer& m_viewer;
    Messages& m_messages;
    std::string m_user;
};

} // namespace tavix
