#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "chart/BarsPicture.h"
#include "chart/ui/DrawingPainter.h"
#include "chart/ui/DrawingWidget.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace tavix {
namespace {

using chart::ActionKind;
using chart::BarsPicture;
using ::testing::ElementsAre;

std::unique_ptr<BarsPicture> cities() {
    return std::make_unique<BarsPicture>(
        "Values",
        std::vector<BarsPicture::Bar>{{"Bern", 6, {ActionKind::DrillValue, "Bern"}},
                                      {"<b>Ulm", 3, {ActionKind::DrillValue, "<b>Ulm"}},
                                      {"Other", 1, {}, true}},
        10, "of 10 records");
}

class Drawn : public ::testing::Test {
  protected:
    Drawn() {
        m_widget.resize(400, 200);
        m_widget.SetPicture(cities());
        QObject::connect(&m_widget, &DrawingWidget::ActionRequested, &m_widget,
                         [this](const chart::Action& action) { m_asked.push_back(action.text.str()); });
        m_widget.show();
        m_widget.setFocus();
    }
    void press(Qt::Key key) { QTest::keyClick(&m_widget, key); }
    std::string described() { return toUtf8(m_widget.accessibleDescription()); }
    QPoint centerOf(std::size_t hit) {
        const chart::Rect& rect = m_widget.GetDrawing().hits[hit].rect;
        return QPointF(rect.x + rect.width / 2, rect.y + rect.height / 2).toPoint();
    }

    DrawingWidget m_widget;
    std::vector<std::string> m_asked;
};

TEST_F(Drawn, KeysWalkOverTheFiguresAndEnterActs) {
    EXPECT_EQ(toUtf8(m_widget.accessibleName()), "Values");
    EXPECT_EQ(described(), "Bern: 6 rows, 60.0 %; <b>Ulm: 3 rows, 30.0 %; Other: 1 row, 10.0 %.");
    press(Qt::Key_Return);
    EXPECT_THAT(m_asked, ElementsAre()) << "nothing is current";
    press(Qt::Key_Right);
    EXPECT_EQ(described(), "Bern: 6 rows, 60.0 %");
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_THAT(m_asked, ElementsAre("<b>Ulm"));
    press(Qt::Key_End);
    press(Qt::Key_Right);
    EXPECT_EQ(m_widget.GetCurrent(), 2) << "the last remains";
    press(Qt::Key_Enter);
    EXPECT_EQ(m_asked.size(), 1U) << "the sum of others has no rows of its own";
    press(Qt::Key_Home);
    press(Qt::Key_Space);
    EXPECT_THAT(m_asked, ElementsAre("<b>Ulm", "Bern"));
    m_widget.SetPicture(nullptr);
    press(Qt::Key_Right);
    press(Qt::Key_Return);
    EXPECT_EQ(m_asked.size(), 2U);
}

TEST_F(Drawn, AClickActsAndThePointerShowsItCan) {
    QTest::mouseMove(&m_widget, centerOf(0));
    QTest::mouseClick(&m_widget, Qt::LeftButton, {}, centerOf(0));
    QTest::mouseClick(&m_widget, Qt::RightButton, {}, centerOf(1));
    QTest::mouseClick(&m_widget, Qt::LeftButton, {}, centerOf(2));
    EXPECT_THAT(m_asked, ElementsAre("Bern"));
}

TEST(DrawingColors, StayApartOnLightAndDark) {
    for (const QPalette& palette : {lightPalette(), darkPalette()}) {
        const int base = palette.color(QPalette::Base).lightness();
        const auto distance = [&](chart::Role role) { return std::abs(colorOf(role, palette).lightness() - base); };
        EXPECT_LT(distance(chart::Role::Faint), distance(chart::Role::Axis));
        EXPECT_LT(distance(chart::Role::Axis), distance(chart::Role::Text));
        EXPECT_GT(distance(chart::Role::Label), 90) << "readable";
        EXPECT_NE(colorOf(chart::Role::Fence, palette), colorOf(chart::Role::Accent, palette));
    }
}

TEST(DrawingPainter, AlignsBoxesToPixels) {
    QImage image(20, 20, QImage::Format_RGB32);
    const QPalette palette = lightPalette();
    image.fill(palette.color(QPalette::Base));
    chart::Drawing drawing{20, 20, {chart::Box{{2.4, 3.4, 5.2, 10}, chart::Role::Accent}}, {}};
    {
        QPainter painter(&image);
        paintDrawing(painter, drawing, palette);
    }
    EXPECT_EQ(image.pixelColor(1, 8), palette.color(QPalette::Base));
    EXPECT_EQ(image.pixelColor(2, 8), colorOf(chart::Role::Accent, palette));
    EXPECT_EQ(image.pixelColor(7, 8), colorOf(chart::Role::Accent, palette));
    EXPECT_EQ(image.pixelColor(8, 8), palette.color(QPalette::Base));
}

} // namespace
} // namespace tavix
