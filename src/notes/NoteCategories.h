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

/// The note categories, one list for the whole repository. An operation that fails shows one message and changes
/// nothing.
class NoteCategories {
  public:
    /// Both must outlive the object. The list is empty until it is read.
    NoteCategories(PrViewer& viewer, Messages& messages) : m_viewer(viewer), m_messages(messages) {}

    /// False, after a message, when the repository fails; the list is then unchanged.
    bool Read();
    /// Sorted by name.
    [[nodiscard]] const std::vector<NoteCategory>& List() const { return m_list; }
    /// The position of the category with this name, ignoring case; -1 when there is none.
    [[nodiscard]] int Find(std::string_view name) const;

    // Each of these reads the list again, and ignores positions outside the list.
    bool Add(std::string_view name);
    bool Rename(int position, std::string_view name);
    /// Asks first: the category's notes remain, without a category.
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
