#pragma once

namespace tavix {

/// The numbers of the commands that a shell may route into the viewer. Some are reserved and have no handler yet; those
/// that have one are listed in Commands.h.
enum class CommandId {
    New = 57600,
    Print = 57607,

    Export = 32774,
    ViewStatistics = 32783,
    HelpTopics = 32787,
    ToggleTableInformation = 32810,
    AddTableNote = 32818,
    AddFieldNote = 32819,
    Alerts = 32829,
    Filter = 32832,
    StopFiltering = 32834,
    NoteCategories = 32838,
    ReloadRulex = 32839,
    Maintenance = 32843,
    NewHorizontalTabGroup = 32871,
    NewVerticalTabGroup = 32873,
    PreviousTabGroup = 32875,
    NextTabGroup = 32877,
    DetachTabs = 32898,
    RefreshCollections = 32904,
    AddVisualization = 32909,

    Options = 40001,
    DeleteHistory = 40002,
    NarrowNavigator = 40003,
    WidenNavigator = 40004,
    NarrowTableInformation = 40005,
    WidenTableInformation = 40006,
    ShowInvisible = 40007,
    ChooseRun = 40010,
    QuickSearch = 40020,
};

} // namespace tavix
