#pragma once

#include "doc/CommandIds.h"

#include <array>
#include <string_view>

namespace tavix {

/// A command and its words.
struct TavixCommand {
    CommandId id;
    std::string_view text; ///< status line text, "\n", menu text
};

/// The commands that the viewer handles, in the order of a shell's menus. Their handlers are rows of the tables of the
/// classes that carry them out, see CommandRow.
inline constexpr std::array<TavixCommand, 19> kCommands = {{
    {CommandId::New, "Close the report\nNew"},
    {CommandId::ChooseRun, "Choose the run to show from a list\nRuns..."},
    {CommandId::ToggleTableInformation, "Show or hide details of the table\nTable Information"},
    {CommandId::NarrowNavigator, "Make the navigator narrower\nNarrower Navigator"},
    {CommandId::WidenNavigator, "Make the navigator wider\nWider Navigator"},
    {CommandId::NarrowTableInformation, "Make the table information narrower\nNarrower Table Information"},
    {CommandId::WidenTableInformation, "Make the table information wider\nWider Table Information"},
    {CommandId::RefreshCollections, "Reload the collections of every table\nRefresh Collections"},
    {CommandId::ShowInvisible,
     "Mark blanks at the ends of values, and characters that cannot be seen\nInvisible Characters"},
    {CommandId::Options, "Choose metrics, limits and fonts\nOptions..."},
    {CommandId::DeleteHistory, "Delete old runs of this report\nDelete History..."},
    {CommandId::Alerts, "Display active alerts\nAlerts"},
    {CommandId::NoteCategories, "Add, edit, and delete note categories.\nNote Categories..."},
    {CommandId::AddTableNote, "Add a note to the table notes list\nAdd Note to Table..."},
    {CommandId::DetachTabs, "Detach current tabs view\nDetach View"},
    {CommandId::AddFieldNote, "Add a note to the field notes list\nAdd Note to Field..."},
    {CommandId::QuickSearch, "Search the values or patterns of the list\nQuick Search"},
    {CommandId::Filter, "Filter the contents of the report\nFilter..."},
    {CommandId::StopFiltering, "Stop filtering the report\nStop Filtering"},
}};

} // namespace tavix
