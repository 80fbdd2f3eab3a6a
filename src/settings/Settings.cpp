#include "settings/Settings.h"

#include "base/NumberText.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tavix {

namespace {

constexpr std::string_view kTavix = "TAVIX";
constexpr std::string_view kProfile = "PROFILE";
constexpr std::string_view kFrame = "FRAME";
constexpr int kMost = 2'000'000'000;

using Kind = SettingKind;

constexpr std::array<SettingInfo, 27> kSettings = {{
    {Setting::MaxChartVals, kTavix, "MaxChartVals", Kind::Integer, 1, 30, 30},
    {Setting::MaxFreqVals, kTavix, "MaxFreqVals", Kind::Integer, 1, kMost, 100},
    {Setting::MaxPkFkOutliers, kTavix, "MaxPkFkOutliers", Kind::Integer, 1, kMost, 100},
    {Setting::MaxRdndntCmnVals, kTavix, "MaxRdndntCmnVals", Kind::Integer, 1, kMost, 100},
    {Setting::MaxDrillThruRows, kTavix, "MaxDrillThruRows", Kind::Integer, 1, kMost, 1000},
    {Setting::NotesSortOrder, kTavix, "NotesSortOrder", Kind::Flag, 0, 0, 0},
    {Setting::OverrideFieldWidths, kTavix, "OverrideFieldWidths", Kind::Flag, 0, 0, 0},
    {Setting::FirstRDAThreshold, kTavix, "FirstRDAThreshold", Kind::Integer, 0, 100, 20},
    {Setting::SecondRDAThreshold, kTavix, "SecondRDAThreshold", Kind::Integer, 0, 100, 50},
    {Setting::DefaultLocale, kTavix, "DefaultLocale", Kind::Text, 0, 0, 0},
    {Setting::StatFontName, kTavix, "StatFontName", Kind::Text, 0, 0, 0},
    {Setting::StatFontCharSet, kTavix, "StatFontCharSet", Kind::Integer, 0, 255, 1},
    {Setting::StatFontSize, kTavix, "StatFontSize", Kind::Integer, 40, 720, 90},
    {Setting::StatFontIsBold, kTavix, "StatFontIsBold", Kind::YesNo, 0, 0, 0},
    {Setting::StatFontIsItalic, kTavix, "StatFontIsItalic", Kind::YesNo, 0, 0, 0},
    {Setting::UseVault, kTavix, "UseVault", Kind::Text, 0, 0, 0},
    {Setting::HideWelcomeDialog, kTavix, "HideWelcomeDialog", Kind::Flag, 0, 0, 0},
    {Setting::ShowInvisible, kFrame, "ShowInvisible", Kind::Flag, 0, 0, 0},
    {Setting::TrendMetric, kFrame, "TrendMetric", Kind::Integer, 0, 23, 23},
    {Setting::NavigatorShare, kFrame, "NavigatorShare", Kind::Text, 0, 0, 0},
    {Setting::TableInformationShare, kFrame, "TableInformationShare", Kind::Text, 0, 0, 0},
    {Setting::TableInformation, kFrame, "TableInformation", Kind::Flag, 0, 0, 0},
    {Setting::ColorScheme, kFrame, "ColorScheme", Kind::Text, 0, 0, 0},
    {Setting::HidePictures, kFrame, "HidePictures", Kind::Flag, 0, 0, 0},
    {Setting::PictureWidth, kFrame, "PictureWidth", Kind::Integer, 0, 10'000, 0},
    {Setting::WorkingPath, "Environment", "WorkingPath", Kind::Text, 0, 0, 0},
    {Setting::ConnectionType, "Settings", "ConnectionType", Kind::Text, 0, 0, 0},
}};

struct FamilyInfo {
    SettingFamily id;
    std::string_view section;
    std::string_view prefix; ///< of the key, before the name
    std::string_view suffix; ///< after the name
};

constexpr std::array<FamilyInfo, 5> kFamilies = {{
    {SettingFamily::MetricChoice, kTavix, "Metric", ""},
    {SettingFamily::RecentFilters, "FILTERS", "", "Recent"},
    {SettingFamily::NamedFilters, "FILTERS", "", "Named"},
    {SettingFamily::ColumnWidth, "COLUMNS", "", ""},
    {SettingFamily::ColumnShown, "COLUMNS", "", ".shown"},
}};

template <typename Table>
constexpr bool isInOrder(const Table& table) {
    for (std::size_t i = 0; i < table.size(); ++i)
        if (static_cast<std::size_t>(table[i].id) != i)
            return false;
    return true;
}
static_assert(isInOrder(kSettings) && isInOrder(kFamilies), "the tables are indexed by the enumerators");

const FamilyInfo& infoOf(SettingFamily family) {
    return kFamilies[static_cast<std::size_t>(family)];
}

std::string keyOf(const FamilyInfo& family, std::string_view name) {
    return std::string(family.prefix).append(name).append(family.suffix);
}

int clamped(const SettingInfo& info, std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, info.lowest, info.highest));
}

} // namespace

const SettingInfo& settingInfo(Setting setting) {
    return kSettings[static_cast<std::size_t>(setting)];
}

int readInteger(const SettingsStore& store, Setting setting) {
    const SettingInfo& info = settingInfo(setting);
    const std::string text = store.read(info.section, info.key);
    const int value = text.empty() ? info.preset : clamped(info, decimalPrefix(text));
    return setting == Setting::SecondRDAThreshold ? std::max(value, readInteger(store, Setting::FirstRDAThreshold))
                                                  : value;
}

bool readFlag(const SettingsStore& store, Setting setting) {
    const SettingInfo& info = settingInfo(setting);
    const std::string text = store.read(info.section, info.key);
    return info.kind == Kind::YesNo ? text == "Y" || text == "y" : text == "1";
}

std::string readText(const SettingsStore& store, Setting setting) {
    const SettingInfo& info = settingInfo(setting);
    if (setting == Setting::DefaultLocale)
        if (std::string text = store.read(kProfile, info.key); !text.empty())
            return text;
    return store.read(info.section, info.key);
}

Status writeInteger(SettingsStore& store, Setting setting, int value) {
    return writeText(store, setting, formatInteger(clamped(settingInfo(setting), value)));
}

Status writeFlag(SettingsStore& store, Setting setting, bool value) {
    if (settingInfo(setting).kind == Kind::YesNo)
        return writeText(store, setting, value ? "Y" : "N");
    return writeText(store, setting, value ? "1" : "0");
}

Status writeText(SettingsStore& store, Setting setting, std::string_view value) {
    const SettingInfo& info = settingInfo(setting);
    if (setting == Setting::DefaultLocale && !store.read(kProfile, info.key).empty())
        if (auto status = store.write(kProfile, info.key, value); !status)
            return status;
    return store.write(info.section, info.key, value);
}

std::string readMember(const SettingsStore& store, SettingFamily family, std::string_view name) {
    const FamilyInfo& info = infoOf(family);
    return store.read(info.section, keyOf(info, name));
}

Status writeMember(SettingsStore& store, SettingFamily family, std::string_view name, std::string_view value) {
    const FamilyInfo& info = infoOf(family);
    return store.write(info.section, keyOf(info, name), value);
}

ColorScheme readColorScheme(const SettingsStore& store) {
    return colorSchemeOf(readText(store, Setting::ColorScheme));
}

Status writeColorScheme(SettingsStore& store, ColorScheme scheme) {
    return writeText(store, Setting::ColorScheme, colorSchemeWord(scheme));
}

DataFont readStatFont(const SettingsStore& store) {
    return {readText(store, Setting::StatFontName), readInteger(store, Setting::StatFontCharSet),
            readInteger(store, Setting::StatFontSize), readFlag(store, Setting::StatFontIsBold),
            readFlag(store, Setting::StatFontIsItalic)};
}

Status writeStatFont(SettingsStore& store, const DataFont& font) {
    for (auto status : {writeText(store, Setting::StatFontName, font.name),
                        writeInteger(store, Setting::StatFontCharSet, font.charSet),
                        writeInteger(store, Setting::StatFontSize, font.tenthsOfPoint),
                        writeFlag(store, Setting::StatFontIsBold, font.bold),
                        writeFlag(store, Setting::StatFontIsItalic, font.italic)})
        if (!status)
            return status;
    return {};
}

} // namespace tavix
