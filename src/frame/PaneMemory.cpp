#include "frame/PaneMemory.h"

#include "base/NumberText.h"
#include "settings/Settings.h"

namespace tavix {

namespace {

/// False when no valid share is stored.
bool readShare(const SettingsStore& settings, Setting setting, double& share) {
    const auto value = parseNumber(readText(settings, setting));
    const bool isValid = value && *value >= 0 && *value <= 1;
    if (isValid)
        share = *value;
    return isValid;
}

} // namespace

PaneMemory readPaneMemory(const SettingsStore& settings) {
    PaneMemory memory;
    // Earlier versions stored the preset too.
    memory.isNavigatorMoved =
        readShare(settings, Setting::NavigatorShare, memory.ratios.left) && memory.ratios.left != PaneRatios().left;
    (void)readShare(settings, Setting::TableInformationShare, memory.ratios.right);
    memory.showsInfo = readFlag(settings, Setting::TableInformation);
    return memory;
}

Status writePaneMemory(SettingsStore& settings, const PaneMemory& memory) {
    const std::string navigator = memory.isNavigatorMoved ? formatReal(memory.ratios.left) : std::string();
    if (Status written = writeText(settings, Setting::NavigatorShare, navigator); !written)
        return written;
    if (Status written = writeText(settings, Setting::TableInformationShare, formatReal(memory.ratios.right)); !written)
        return written;
    return writeFlag(settings, Setting::TableInformation, memory.showsInfo);
}

} // namespace tavix
