#include "tabs/ui/PictureSplit.h"

#include "grid/CUGDataSource.h"
#include "grid/ui/CUGCtrl.h"
#include "settings/Settings.h"
#include "tabs/PictureWidth.h"
#include "tabs/ui/PicturePane.h"

#include <QHeaderView>
#include <QScrollBar>

#include <algorithm>

namespace tavix {

PictureSplit::PictureSplit(SettingsStore& settings, CUGCtrl& grid, PicturePane& picture, QWidget* parent)
    : QSplitter(Qt::Horizontal, parent), m_settings(settings), m_grid(grid), m_picture(picture) {
    setObjectName(QStringLiteral("pictureSplit"));
    setChildrenCollapsible(false);
    setHandleWidth(1);
    addWidget(&picture);
    picture.hide();
    m_picture.SetOpen(!readFlag(settings, Setting::HidePictures));
    connect(&picture, &PicturePane::ToggleClicked, this, &PictureSplit::ClosedOrOpened);
    connect(this, &QSplitter::splitterMoved, this,
            [this] { (void)writeInteger(m_settings, Setting::PictureWidth, m_picture.width()); });
}

void PictureSplit::SetOffered(bool isOffered) {
    m_isOffered = isOffered;
    Arrange();
}

void PictureSplit::ClosedOrOpened() {
    // It applies even when the settings cannot be written.
    (void)writeFlag(m_settings, Setting::HidePictures, m_picture.IsOpen());
    m_picture.SetOpen(!m_picture.IsOpen());
    Arrange();
}

int PictureSplit::ListNeed() const {
    const int columns = m_grid.model() ? m_grid.model()->columnCount() : 0;
    constexpr int kSlack = 4;
    int need = m_grid.verticalScrollBar()->sizeHint().width() + 2 * m_grid.frameWidth() + handleWidth() + kSlack;
    for (int column = 0; column + 1 < columns; ++column)
        need += m_grid.columnWidth(column);
    // The last may have grown into the free room.
    if (columns > 0)
        need += std::min(m_grid.columnWidth(columns - 1),
                         std::max(m_grid.horizontalHeader()->sectionSizeHint(columns - 1), 180));
    return need;
}

void PictureSplit::Arrange() {
    // Another window may have opened or closed the pictures.
    m_picture.SetOpen(!readFlag(m_settings, Setting::HidePictures));
    const int open = pictureWidth(width(), ListNeed(), readInteger(m_settings, Setting::PictureWidth));
    const int wanted = m_picture.IsOpen() ? open : std::min(open, kClosedPicture);
    m_picture.setVisible(m_isOffered && wanted > 0);
    m_picture.setMinimumWidth(m_picture.IsOpen() ? kLeastPicture : kClosedPicture);
    m_picture.setMaximumWidth(m_picture.IsOpen() ? QWIDGETSIZE_MAX : kClosedPicture);
    if (m_isOffered && wanted > 0)
        setSizes({width() - wanted - handleWidth(), wanted});
}

void PictureSplit::resizeEvent(QResizeEvent* event) {
    QSplitter::resizeEvent(event);
    Arrange();
}

void PictureSplit::showEvent(QShowEvent* event) {
    QSplitter::showEvent(event);
    Arrange();
}

} // namespace tavix
