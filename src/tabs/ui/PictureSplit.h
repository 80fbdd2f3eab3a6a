#pragma once

#include <QSplitter>

namespace tavix {

class CUGCtrl;
class PicturePane;
class SettingsStore;

/// A list with a picture at its right, which gives way where the list has no room. Keeps the width that the user chose
/// and whether the picture is closed, for all lists.
class PictureSplit final : public QSplitter {
    Q_OBJECT
  public:
    /// The splitter owns the pane; all must outlive it. `grid` is in the widget that the caller inserts first.
    PictureSplit(SettingsStore& settings, CUGCtrl& grid, PicturePane& picture, QWidget* parent);

    /// Without an offer, the picture is hidden.
    void SetOffered(bool isOffered);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void Arrange();
    void ClosedOrOpened();
    /// The width of the list's columns.
    [[nodiscard]] int ListNeed() const;

    SettingsStore& m_settings;
    CUGCtrl& m_grid;
    PicturePane& m_picture;
    bool m_isOffered = false;
};

} // namespace tavix
