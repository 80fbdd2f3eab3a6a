#include "doc/CTavixApp.h"

#include "settings/MetricDisplay.h"
#include "settings/Settings.h"

namespace tavix {

CTavixApp::CTavixApp(const std::string& settingsPath) {
    if (auto opened = openSettingsFile(settingsPath)) {
        m_settings = std::move(*opened);
    } else {
        m_startProblem = opened.error().text;
        m_settings = makeMemorySettings();
    }
    Start();
}

CTavixApp::CTavixApp(std::unique_ptr<SettingsStore> settings) : m_settings(std::move(settings)) {
    Start();
}

void CTavixApp::Start() {
    if (const auto filled = writeFirstStartDefaults(*m_settings); !filled && m_startProblem.empty())
        m_startProblem = filled.error().text;
}

std::unique_ptr<CTavixDoc> CTavixApp::StartDocument(DocumentFrame& frame, Messages& messages) const {
    return std::make_unique<CTavixDoc>(frame, *m_settings, messages);
}

} // namespace tavix
