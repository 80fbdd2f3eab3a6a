#include "settings/DisplaySettings.h"

namespace tavix {

namespace {

constexpr std::string_view kSection = "FRAME";
constexpr std::string_view kShowsInvisible = "ShowInvisible";

} // namespace

bool readShowsInvisible(const SettingsStore& settings) {
    return settings.read(kSection, kShowsInvisible) == "1";
}

Status writeShowsInvisible(SettingsStore& settings, bool shows) {
    return settings.write(kSection, kShowsInvisible, shows ? "1" : "0");
}

} // namespace tavix
