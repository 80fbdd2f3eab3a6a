#include "frame/PaneMemory.h"

#include "base/NumberText.h"

namespace tavix {

namespace {

constexpr std::string_view kSection = "FRAME";
constexpr std::string_view kLeft = "NavigatorShare";
constexpr std::string_view kRight = "TableInformationShare";
constexpr std::string_view kShown = "TableInformation";

void readShare(const SettingsStore& settings, std::string_view key, double& share) {
    const auto value = parseNumber(settings.read(kSection, key));
    if (value && *value >= 0 && *value <= 1)
        share = *value;
}

} // namespace

PaneMemory readPaneMemory(const SettingsStore& settings) {
    PaneMemory memory;
    readShare(settings, kLeft, memory.ratios.left);
    readShare(settings, kRight, memory.ratios.right);
    memory.showsInfo = settings.read(kSection, kShown) == "1";
    return memory;
}

Status writePaneMemory(SettingsStore& settings, const PaneMemory& memory) {
    if (Status written = settings.write(kSection, kLeft, formatReal(memory.ratios.left)); !written)
        return written;
    if (Status written = settings.write(kSection, kRight, formatReal(memory.ratios.right)); !written)
        return written;
    return settings.write(kSection, kShown, memory.showsInfo ? "1" : "0");
}

} // namespace tavix
