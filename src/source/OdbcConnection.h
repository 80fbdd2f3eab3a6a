#pragma once

#include "base/Result.h"
#include "source/ConnectionText.h"
#include "source/Credentials.h"
#include "source/SqlDialect.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tavix::source {

/// Capabilities that a driver reports, as far as reading depends on them.
struct DriverTraits {
    bool readsBoundAgain = false; ///< the whole value of a bound column can still be read
    bool usesCatalog = false;     ///< a table can be addressed with its catalog
    bool usesSchema = false;
    std::string quote; ///< around names; empty without quotes
    std::string catalogSeparator;
    std::string patternEscape; ///< in arguments of the catalogue functions
};

/// A connection to a database through the driver manager. For one thread at a time.
class OdbcConnection {
  public:
    /// `name` is how messages call the source. A driver that would hold a whole result in memory, or create a missing
    /// file, is told not to.
    [[nodiscard]] static Result<std::unique_ptr<OdbcConnection>> open(const std::string& name, ConnectionText text,
                                                                      const AskCredentials& ask);
    ~OdbcConnection();
    OdbcConnection(const OdbcConnection&) = delete;
    OdbcConnection& operator=(const OdbcConnection&) = delete;

    [[nodiscard]] const std::string& name() const { return m_name; }
    [[nodiscard]] const std::string& publicText() const { return m_publicText; }
    /// The user in the connection string; empty without one.
    [[nodiscard]] const std::string& statedUser() const { return m_statedUser; }
    [[nodiscard]] const SqlDialect& dialect() const { return *m_dialect; }
    [[nodiscard]] const DriverTraits& traits() const { return m_traits; }
    /// The engine's name for itself.
    [[nodiscard]] const std::string& product() const { return m_product; }
    [[nodiscard]] std::string currentCatalog() const;

    /// The name in the engine's quotes. Fails for a name that cannot exist, and for one that needs quotes if the engine
    /// has none.
    [[nodiscard]] Result<std::string> quoted(std::string_view name) const;

    /// Until endSnapshot() all statements see one state of the data, if the engine supports it.
    void beginSnapshot();
    void endSnapshot();

    /// For tests: replaces what the driver reports.
    void pretend(const SqlDialect& dialect, const DriverTraits& traits);

    [[nodiscard]] void* handle() const { return m_handle; }
    /// The driver's message for the last failure on a handle, after `what`, without the password.
    [[nodiscard]] Error failure(int handleKind, void* handle, std::string_view what = {}) const;

  private:
    OdbcConnection(std::string name, const ConnectionText& text);
    /// `isRefused`: the user or password was wrong or missing.
    Status connect(ConnectionText text, const Credentials* credentials, bool& isRefused);
    void learn();
    [[nodiscard]] std::string info(int kind) const;
    [[nodiscard]] std::uint32_t number(int kind) const;

    std::string m_name;
    std::string m_publicText;
    std::string m_statedUser;
    std::string m_password; ///< removed from messages
    std::string m_product;
    const SqlDialect* m_dialect = nullptr;
    DriverTraits m_traits;
    void* m_environment = nullptr;
    void* m_handle = nullptr;
    bool m_isConnected = false;
    bool m_hasSnapshot = false;
};

} // namespace tavix::source
