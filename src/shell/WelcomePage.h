#pragma once

#include <QWidget>

#include <string>
#include <vector>

class QLabel;
class QListWidget;
class QPushButton;

namespace tavix::shell {

/// The page that is shown while no repository is open: lists recent repositories and those of the vault.
class WelcomePage final : public QWidget {
    Q_OBJECT
  public:
    explicit WelcomePage(QWidget* parent = nullptr);

    void setRecent(const std::vector<std::string>& paths);
    /// Lists the repositories of the vault, a folder. Without any, the list is hidden.
    void setVault(const std::string& folder, const std::vector<std::string>& paths);

  Q_SIGNALS:
    void openRequested();
    void repositoryChosen(const QString& path);

  private:
    /// A heading and repositories below it.
    struct Section {
        QLabel* title;
        QListWidget* list;
    };
    Section makeSection(const QString& title, const QString& spoken);
    static void fill(const Section& section, const std::vector<std::string>& paths);

    QPushButton* m_open;
    Section m_recent;
    Section m_vault;
};

} // namespace tavix::shell
