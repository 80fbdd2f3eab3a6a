#include "frame/PaneMemory.h"

#include "base/NumberText.h"
#include "settings/Settings.h"

namespace tavix {

namespace {

void readShare(const SettingsStore& settings, Setting setting, double& share) {
    const auto value = parseNumber(readText(settings, setting));
    if (value && *value >= 0 && *value <= 1)
        share = *value;
}

} // namespace

PaneMemory readPaneMemory(const SettingsStore& settings) {
    PaneMemory memory;
    readShare(settings, Setting::NavigatorShare, memory.ratios.left);
    readShare(settings, Setting::TableInformationShare, memory.ratios.right);
    memory.showsInfo = readFlag(settings, Setting::TableInformation);
    return memory;
}

Status writePaneMemory(SettingsStore& settings, const PaneMemory& memory) {
    if (Status written = writeText(settings, Setting::NavigatorShare, formatReal(memory.ratios.left)); !written)
        return written;
    if (Status written = writeText(settings, Setting::TableInformationShare, formatReal(memory.ratios.right)); !written)
        return written;
    return writeFlag(settings, Setting::TableInformation, memory.showsInfo);
}

} // namespace tavix
