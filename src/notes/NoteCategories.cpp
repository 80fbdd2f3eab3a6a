#include "notes/NoteCategories.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/Messages.h"
#include "base/NoteText.h"

#include <fmt/format.h>

namespace tavix {

bool NoteCategories::Read() {
    std::vector<NoteCategory> list;
    std::string problem;
    try {
        const ProfileCursorHandle categories = m_viewer.getNoteCategories();
        if (!categories)
            problem = m_viewer.getErrorString().str();
        while (categories && categories->next())
            list.push_back(
                {categories->getColumnInt(layout::CategoryId), categories->getColumnValue(layout::CategoryName).str()});
        if (categories) {
            m_list = std::move(list);
            return true;
        }
    } catch (const GenException& exception) {
        problem = exception.getText().str();
    }
    m_messages.warn("Error occurred while retrieving note categories:\n\n" + problem);
    return false;
}

int NoteCategories::Find(std::string_view name) const {
    const std::string wanted = tidyNoteCategory(name);
    for (std::size_t i = 0; i < m_list.size(); ++i) {
        if (isSameNoteCategory(m_list[i].name, wanted))
            return static_cast<int>(i);
    }
    return -1;
}

const NoteCategory* NoteCategories::At(int position) const {
    return position < 0 || position >= static_cast<int>(m_list.size()) ? nullptr
                                                                       : &m_list[static_cast<std::size_t>(position)];
}

bool NoteCategories::Check(std::string_view name) {
    const std::string tidied = tidyNoteCategory(name);
    const Status checked = checkNoteCategory(tidied);
    if (!checked)
        m_messages.warn(tidied.empty() ? "Enter a name for the category." : checked.error().text,
                        tidied.empty() ? "Missing Value" : "Invalid Value");
    return checked.ok();
}

bool NoteCategories::Conclude(bool succeeded, std::string_view leadIn) {
    if (!succeeded) {
        m_messages.warn(fmt::format("{}:\n\n{}", leadIn, m_viewer.getErrorString().view()));
        return false;
    }
    m_changed = true;
    return Read();
}

bool NoteCategories::Add(std::string_view name) {
    return Check(name) &&
           Conclude(m_viewer.createNewNoteCategory(name), "Error occurred while adding the note category");
}

bool NoteCategories::Rename(int position, std::string_view name) {
    const NoteCategory* category = At(position);
    if (!category || !Check(name))
        return false;
    if (category->name == tidyNoteCategory(name))
        return true;
    return Conclude(m_viewer.editNoteCategory(category->id, name), "Error occurred while renaming the note category");
}

bool NoteCategories::Delete(int position) {
    const NoteCategory* category = At(position);
    if (!category)
        return false;
    const std::string question =
        fmt::format("Delete the category \"{}\"?\n\nIts notes stay, without a category.", category->name);
    if (m_messages.ask(question, "Delete Category", Messages::Answer::No) != Messages::Answer::Yes)
        return false;
    return Conclude(m_viewer.deleteNoteCategory(category->id), "Error occurred while deleting the note category");
}

} // namespace tavix
