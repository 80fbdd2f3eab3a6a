#pragma once

#include <QWidget>

#include <string>
#include <vector>

class QLabel;
class QListWidget;
class QPushButton;

namespace tavix::shell {

/// What the window shows while no repository is open: how to open one, and those opened lately.
class WelcomePage final : public QWidget {
    Q_OBJECT
  public:
    explicit WelcomePage(QWidget* parent = nullptr);

    void setRecent(const std::vector<std::string>& paths);

  Q_SIGNALS:
    void openRequested();
    void recentChosen(const QString& path);

  private:
    QPushButton* m_open;
    QLabel* m_recentTitle;
    QListWidget* m_recent;
};

} // namespace tavix::shell
