#pragma once

#include "base/Messages.h"
#include "base/SettingsStore.h"
#include "doc/CTavixDoc.h"

#include <memory>
#include <string>

namespace tavix {

/// The viewer as a program: names the settings store and starts documents. Outlives its documents.
class CTavixApp {
  public:
    /// Opens the settings file, and on a first start fills it. A file that cannot be read or written does not keep the
    /// viewer from running: settings then last as long as this object, and GetStartProblem() says why.
    explicit CTavixApp(const std::string& settingsPath = defaultSettingsPath());
    /// Over a store of the caller's; it is filled in the same way.
    explicit CTavixApp(std::unique_ptr<SettingsStore> settings);

    [[nodiscard]] SettingsStore& GetSettings() const { return *m_settings; }
    /// The kind of connection that the user's installation prefers; mostly "".
    [[nodiscard]] const std::string& GetConnectionType() const { return m_connectionType; }
    /// To be shown once; "" when the settings are in order.
    [[nodiscard]] const std::string& GetStartProblem() const { return m_startProblem; }

    [[nodiscard]] std::unique_ptr<CTavixDoc> StartDocument(DocumentFrame& frame, Messages& messages) const;

  private:
    void Start();

    std::unique_ptr<SettingsStore> m_settings;
    std::string m_connectionType;
    std::string m_startProblem;
};

} // namespace tavix
