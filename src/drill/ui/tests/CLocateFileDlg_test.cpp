#include "base/ui/QtText.h"
#include "drill/ui/CLocateFileDlg.h"

#include <QLabel>
#include <QPushButton>

#include <gtest/gtest.h>

namespace tavix {
namespace {

QPushButton* button(const CLocateFileDlg& dialog, const char* name) {
    return dialog.findChild<QPushButton*>(QLatin1String(name));
}

TEST(CLocateFileDlg, GivesThePlaceThatTheUserChooses) {
    QString chosen;
    CLocateFileDlg dialog({"/data/orders.csv", ""}, nullptr, [&] { return chosen; });
    EXPECT_EQ(button(dialog, "use"), nullptr) << "there is nothing to suggest";
    EXPECT_TRUE(dialog.findChild<QLabel*>(QStringLiteral("file"))->text().contains(QLatin1String("orders.csv")));
    button(dialog, "locate")->click();
    EXPECT_EQ(dialog.result(), QDialog::Rejected) << "the file dialog was cancelled";
    EXPECT_EQ(dialog.GetPlace(), "");
    chosen = QStringLiteral("/new/b\u00E4r.csv");
    button(dialog, "locate")->click();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.GetPlace(), "/new/b\u00E4r.csv");
}

TEST(CLocateFileDlg, OffersTheFileBesideTheRepository) {
    CLocateFileDlg dialog({"/data/orders.csv", "/repository/orders.csv"});
    ASSERT_NE(button(dialog, "use"), nullptr);
    EXPECT_TRUE(button(dialog, "use")->isDefault());
    button(dialog, "use")->click();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.GetPlace(), "/repository/orders.csv");
}

} // namespace
} // namespace tavix
