#pragma once

#include "base/Messages.h"
#include "base/SettingsStore.h"
#include "doc/CTavixDoc.h"

#include <memory>
#include <string>

namespace tavix {

/// The viewer as a program: owns the settings store and creates documents. Must outlive its documents.
class CTavixApp {
  public:
    /// Opens the settings file, and on a first start fills it. When the file cannot be read or written, the settings
    /// last only as long as this object, and GetStartProblem() says why.
    explicit CTavixApp(const std::string& settingsPath = defaultSettingsPath());
    /// Uses the caller's store, which is filled in the same way.
    explicit CTavixApp(std::unique_ptr<SettingsStore> settings);

    [[nodiscard]] SettingsStore& GetSettings() const { return *m_settings; }
    /// Show it once. "" when the settings are in order.
    [[nodiscard]] const std::string& GetStartProblem() const { return m_startProblem; }

    [[nodiscard]] std::unique_ptr<CTavixDoc> StartDocument(DocumentFrame& frame, Messages& messages) const;

  private:
    void Start();

    std::unique_ptr<SettingsStore> m_settings;
    std::string m_startProblem;
};

} // namespace tavix
