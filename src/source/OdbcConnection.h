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

/// What a driver says it can do, where reading depends on it.
struct DriverTraits {
    bool readsBoundAgain = false; ///< a bound column can be asked for the whole of its value
    bool usesCatalog = false;     ///< a table can be addressed with its catalog
    bool usesSchema = false;
    std::string quote; ///< around names; empty when there is none
    std::string catalogSeparator;
    std::string patternEscape; ///< in the arguments of the catalogue's functions
};

/// A connection to a database through the driver manager. For one thread at a time.
class OdbcConnection {
  public:
    /// `name` is what messages call the source. A driver that would hold a whole result in memory is told not to, and
    /// one that would make a missing file is told not to.
    [[nodiscard]] static Result<std::unique_ptr<OdbcConnection>> open(const std::string& name, ConnectionText text,
                                                                      const AskCredentials& ask);
    ~OdbcConnection();
    OdbcConnection(const OdbcConnection&) = delete;
    OdbcConnection& operator=(const OdbcConnection&) = delete;

    [[nodiscard]] const std::string& name() const { return m_name; }
    [[nodiscard]] const std::string& publicText() const { return m_publicText; }
    /// Whom the connection string names; empty when it names nobody.
    [[nodiscard]] const std::string& statedUser() const { return m_statedUser; }
    [[nodiscard]] const SqlDialect& dialect() const { return *m_dialect; }
    [[nodiscard]] const DriverTraits& traits() const { return m_traits; }
    /// The engine's name for itself.
    [[nodiscard]] const std::string& product() const { return m_product; }
    [[nodiscard]] std::string currentCatalog() const;

    /// The name between the engine's quotes. An error for a name that cannot be one, and for one that needs quotes
    /// where the engine has none.
    [[nodiscard]] Result<std::string> quoted(std::string_view name) const;

    /// From now to endSnapshot() all statements see one state of the data, if the engine can do that.
    void beginSnapshot();
    void endSnapshot();

    /// For tests: as if the driver said this of itself.
    void pretend(const SqlDialect& dialect, const DriverTraits& traits);

    [[nodiscard]] void* handle() const { return m_handle; }
    /// What the driver says of the last failure on a handle, after `what`, without the password.
    [[nodiscard]] Error failure(int handleKind, void* handle, std::string_view what = {}) const;

  private:
    OdbcConnection(std::string name, const ConnectionText& text);
    /// `isRefused` tells whether it failed for want of the right user and password.
    Status connect(ConnectionText text, const Credentials* credentials, bool& isRefused);
    void learn();
    [[nodiscard]] std::string info(int kind) const;
    [[nodiscard]] std::uint32_t number(int kind) const;

    std::string m_name;
    std::string m_publicText;
    std::string m_statedUser;
    std::string m_password; ///< to keep it out of messages
    std::string m_product;
    const SqlDialect* m_dialect = nullptr;
    DriverTraits m_traits;
    void* m_environment = nullptr;
    void* m_handle = nullptr;
    bool m_isConnected = false;
    bool m_hasSnapshot = false;
};

} // namespace tavix::source
