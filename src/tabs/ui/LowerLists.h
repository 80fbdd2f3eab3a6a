#pragma once

#include <QWidget>

#include <string>
#include <vector>

class QLabel;

namespace tavix {

class CUGCtrl;

/// Lists side by side that say more about the row that is selected above them, each below a heading.
class LowerLists final : public QWidget {
    Q_OBJECT
  public:
    /// `names` are the lists' for screen readers, and their headings.
    explicit LowerLists(const std::vector<const char*>& names, QWidget* parent = nullptr);

    [[nodiscard]] CUGCtrl& Grid(std::size_t list) const { return *m_lists[list].grid; }
    void SetHeading(std::size_t list, const std::string& heading);
    void SetListFont(const QFont& font);

  private:
    struct List {
        QLabel* heading;
        CUGCtrl* grid;
    };
    std::vector<List> m_lists;
};

} // namespace tavix
