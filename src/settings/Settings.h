#pragma once

#include "base/DataFont.h"
#include "base/SettingsStore.h"

#include <string>
#include <string_view>

namespace tavix {

/// The persistent settings, one for each row of the table in Settings.cpp.
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

/// The value of an Integer setting: its default when there is none, else its decimal digits (none give 0), brought
/// into its range. The second threshold is never below the first.
[[nodiscard]] int readInteger(const SettingsStore& store, Setting setting);
/// The value of a Flag or YesNo setting.
[[nodiscard]] bool readFlag(const SettingsStore& store, Setting setting);
/// The value of any setting as it is stored. DefaultLocale is looked up in section PROFILE first.
[[nodiscard]] std::string readText(const SettingsStore& store, Setting setting);

/// Brought into its range before it is written.
Status writeInteger(SettingsStore& store, Setting setting, int value);
Status writeFlag(SettingsStore& store, Setting setting, bool value);
/// DefaultLocale also replaces a value in section PROFILE, which would otherwise hide it.
Status writeText(SettingsStore& store, Setting setting, std::string_view value);

[[nodiscard]] DataFont readStatFont(const SettingsStore& store);
Status writeStatFont(SettingsStore& store, const DataFont& font);

} // namespace tavix
