#pragma once

namespace tavix {

/// The kinds of refresh notifications, by the numbers that panes and shell use.
enum class RefreshHint {
    CollectionsRefreshed = 1, ///< the field collections of every table were refreshed
    DocumentReset = 3,        ///< the document is "Untitled" again
    RunLoaded = 4,            ///< a report, or another run of it, was loaded
    OptionsChanged = 5,       ///< the Options dialog was closed with OK
    TaskListLost = 6,         ///< the post-load check or a run change could not restore the task list
    HistoryDeletion = 7,      ///< run history is about to be deleted
    NotesChanged = 8,         ///< a pane has changed notes or their categories
    FilterChanged = 9,        ///< a pane has changed a filter of the field whose id is the parameter
    HistoryDeleted = 10,      ///< runs were deleted; the current one is still there
    ComparedRunsChanged = 11, ///< a pane has changed the runs that are compared
    FindingsChanged = 12,     ///< a pane has dismissed or restored a finding
    AlertsChanged = 13,       ///< a pane has made, changed, muted or removed an alert
};

/// A pane that takes part in refreshing.
class CRefreshItem {
  public:
    virtual ~CRefreshItem() = default;
    /// `sender` is the pane that caused the notification, null for the document. What `parameter` means depends on the
    /// hint; it is mostly 0.
    virtual void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) = 0;
};

} // namespace tavix
