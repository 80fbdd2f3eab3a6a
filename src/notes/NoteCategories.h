#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavix {

class Messages;
class PrViewer;

struct NoteCategory {
    int id = -1;
    std::string name;

    bool operator==(const NoteCategory&) const = default;
};

/// The categories of notes: one list for the whole repository. Whatever cannot be done is said in one message, and
/// nothing has changed then.
class NoteCategories {
  public:
    /// Both must outlive the list, which is empty until it is read.
    NoteCategories(PrViewer& viewer, Messages& messages) : m_viewer(viewer), m_messages(messages) {}

    /// False, after a message, when the repository fails; the list is that of before.
    bool Read();
    /// By name.
    [[nodiscard]] const std::vector<NoteCategory>& List() const { return m_list; }
    /// The position of the category with this name, whatever its case; -1 when there is none.
    [[nodiscard]] int Find(std::string_view name) const;

    // Each reads the list anew. Positions outside the list are nothing to be changed.
    bool Add(std::string_view name);
    bool Rename(int position, std::string_view name);
    /// Asks first, for the category's notes stay behind without it.
    bool Delete(int position);
    /// Whether one of them has succeeded.
    [[nodiscard]] bool HasChanged() const { return m_changed; }

  private:
    bool Check(std::string_view name);
    bool Conclude(bool succeeded, std::string_view leadIn);
    [[nodiscard]] const NoteCategory* At(int position) const;

    PrViewer& m_viewer;
    Messages& m_messages;
    std::vector<NoteCategory> m_list;
    bool m_changed = false;
};

} // namespace tavix
