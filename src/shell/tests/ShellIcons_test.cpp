#include "shell/ShellIcons.h"
#include "shell/ShellStyle.h"

#include <QImage>

#include <gtest/gtest.h>

#include <vector>

namespace tavix::shell {
namespace {

int paintedPixels(const QImage& image) {
    int painted = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            painted += qAlpha(image.pixel(x, y)) > 100 ? 1 : 0;
    }
    return painted;
}

TEST(ShellIcons, PicturesOfDialogsAreOursAndEachKindHasItsOwn) {
    const ShellStyle style;
    std::vector<QImage> seen;
    for (const QStyle::StandardPixmap pixmap :
         {QStyle::SP_MessageBoxInformation, QStyle::SP_MessageBoxQuestion, QStyle::SP_MessageBoxWarning,
          QStyle::SP_MessageBoxCritical, QStyle::SP_LineEditClearButton, QStyle::SP_FileDialogToParent,
          QStyle::SP_FileDialogBack, QStyle::SP_ArrowForward, QStyle::SP_FileDialogNewFolder,
          QStyle::SP_FileDialogListView, QStyle::SP_FileDialogDetailedView, QStyle::SP_DirIcon, QStyle::SP_FileIcon,
          QStyle::SP_DirHomeIcon, QStyle::SP_ComputerIcon, QStyle::SP_DriveHDIcon}) {
        ASSERT_TRUE(iconOfDialog(pixmap)) << pixmap;
        const QImage image = style.standardIcon(pixmap, nullptr, nullptr).pixmap(40, 40).toImage();
        EXPECT_EQ(shellIcon(*iconOfDialog(pixmap)).pixmap(40, 40).toImage(), image) << pixmap;
        EXPECT_GT(paintedPixels(image), 40) << pixmap;
        for (const QImage& other : seen)
            EXPECT_NE(other, image) << pixmap;
        seen.push_back(image);
    }
    EXPECT_FALSE(iconOfDialog(QStyle::SP_MediaPlay));
}

} // namespace
} // namespace tavix::shell
