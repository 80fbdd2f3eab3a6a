#pragma once

#include "base/ColorScheme.h"
#include "base/DataFont.h"
#include "base/SettingsStore.h"

#include <string>
#include <string_view>

namespace tavix {

/// The persistent settings. Two tables in Settings.cpp declare their sections and keys: one for these, one for the
/// families below. Only the shell declares a section of its own, because it is not part of the component.
enum class Setting {
    MaxChartVals,
    MaxFreqVals,
    MaxPkFkOutliers,
    MaxRdndntCmnVals,
    MaxDrillThruRows,
    NotesSortOrder, ///< set: newest notes first
    OverrideFieldWidths,
    FirstRDAThreshold,
    SecondRDAThreshold,
    DefaultLocale,
    StatFontName,
    StatFontCharSet,
    StatFontSize,
    StatFontIsBold,
    StatFontIsItalic,
    UseVault,
    HideWelcomeDialog,
    ShowInvisible, ///< set: invisible characters are shown as signs
    TrendMetric,   ///< the metric whose line of runs the standard metrics show
    NavigatorShare,
    TableInformationShare,
    TableInformation, ///< set: the pane is open
    ColorScheme,      ///< "light" or "dark"; anything else: as the desktop
    HidePictures,     ///< set: the pictures beside lists are closed
    PictureWidth,     ///< of a picture beside a list, in pixels at 96 dpi; 0 until the user sets it
    WorkingPath,      ///< the folder that a file dialog begins with
    ConnectionType,
};

enum class SettingKind {
    Integer, ///< decimal
    Flag,    ///< "1" is set, anything else is not; written "1" or "0"
    YesNo,   ///< "Y" or "y" is set, anything else is not; written "Y" or "N"
    Text,
};

struct SettingInfo {
    Setting id;
    std::string_view section;
    std::string_view key;
    SettingKind kind;
    int lowest;  ///< of an integer
    int highest; ///< of an integer
    int preset;  ///< of an integer without a value
};

[[nodiscard]] const SettingInfo& settingInfo(Setting setting);

/// The value of an Integer setting, clamped to its range: the preset when nothing is stored, else the stored digits,
/// and 0 when there are none. The second threshold is never below the first.
[[nodiscard]] int readInteger(const SettingsStore& store, Setting setting);
/// The value of a Flag or YesNo setting.
[[nodiscard]] bool readFlag(const SettingsStore& store, Setting setting);
/// The stored text of any setting. DefaultLocale is looked up in section PROFILE first.
[[nodiscard]] std::string readText(const SettingsStore& store, Setting setting);

/// Writes the value clamped to its range.
Status writeInteger(SettingsStore& store, Setting setting, int value);
Status writeFlag(SettingsStore& store, Setting setting, bool value);
/// DefaultLocale also replaces a value in section PROFILE, which would otherwise hide it.
Status writeText(SettingsStore& store, Setting setting, std::string_view value);

/// Settings of which there are many, told apart by a name in the key.
enum class SettingFamily {
    MetricChoice,  ///< by the id of the metric
    RecentFilters, ///< by the kind of distribution
    NamedFilters,  ///< by the kind of distribution
    ColumnWidth,   ///< by grid and column
    ColumnShown,   ///< likewise
};

[[nodiscard]] std::string readMember(const SettingsStore& store, SettingFamily family, std::string_view name);
Status writeMember(SettingsStore& store, SettingFamily family, std::string_view name, std::string_view value);

[[nodiscard]] ColorScheme readColorScheme(const SettingsStore& store);
Status writeColorScheme(SettingsStore& store, ColorScheme scheme);

[[nodiscard]] DataFont readStatFont(const SettingsStore& store);
Status writeStatFont(SettingsStore& store, const DataFont& font);

} // namespace tavix
