#pragma once

#include <QWidget>

#include <string>
#include <vector>

class QLabel;

namespace tavix {

class CUGCtrl;

/// Lists side by side, each with a heading, that show details of the row that is selected above them.
class LowerLists final : public QWidget {
    Q_OBJECT
  public:
    /// `names` are the headings of the lists, also read by screen readers.
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
