#include "host/tests/HostOverSample.h"

#include <QApplication>
#include <QLineEdit>
#include <QTabBar>
#include <QTest>
#include <QTimer>

namespace Veldra::Solenne::Tavix {
namespace {

using tavix::toUtf8;
using ::testing::ElementsAre;

class RecordedSite final : public TavixKeyboardSite {
  public:
    void OnNoMoreTabStops(FocusNavigation request) override { requests.push_back(request); }
    std::vector<FocusNavigation> requests;
};

TEST_F(HostOverSample, TabLeavesAtBothEndsAndNowhereElse) {
    RecordedSite site;
    m_host.SetKeyboardSite(&site);
    ASSERT_TRUE(load());
    ASSERT_TRUE(m_host.SelectTable("Warehouse", "ODBC", "crm", "public", "customers"));
    ASSERT_TRUE(m_host.TabInto(FocusNavigation::First));
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_host.HasFocus(); }));
    EXPECT_TRUE(tree(0).hasFocus());
    EXPECT_TRUE(m_host.TranslateAccelerator(key(NativeKey::Tab)));
    EXPECT_FALSE(tree(0).hasFocus());
    EXPECT_THAT(site.requests, ElementsAre());
    EXPECT_TRUE(m_host.TranslateAccelerator(key(NativeKey::Tab, NativeModifier::Shift)));
    EXPECT_TRUE(tree(0).hasFocus());
    EXPECT_THAT(site.requests, ElementsAre());
    EXPECT_TRUE(m_host.TranslateAccelerator(key(NativeKey::Tab, NativeModifier::Shift)));
    EXPECT_THAT(site.requests, ElementsAre(FocusNavigation::Previous));

    ASSERT_TRUE(m_host.TabInto(FocusNavigation::Last));
    EXPECT_FALSE(tree(0).hasFocus());
    EXPECT_TRUE(m_host.TranslateAccelerator(key(NativeKey::Tab)));
    EXPECT_THAT(site.requests, ElementsAre(FocusNavigation::Previous, FocusNavigation::Next));
    m_host.SetKeyboardSite(nullptr);
    m_host.TranslateAccelerator(key(NativeKey::Tab));
    EXPECT_EQ(2U, site.requests.size());
}

TEST_F(HostOverSample, TabReachesTheRowOfPagesAlsoWhenTheReportPaneHasNoControl) {
    RecordedSite site;
    m_host.SetKeyboardSite(&site);
    ASSERT_TRUE(load());
    auto& pages = *m_view->findChild<QWidget*>(QStringLiteral("navigator"))->findChild<QTabBar*>();
    pages.setCurrentIndex(2);
    ASSERT_TRUE(isShown("emptyView"));
    ASSERT_TRUE(m_host.TabInto(FocusNavigation::First));
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_host.HasFocus(); }));
    EXPECT_TRUE(tree(2).hasFocus());
    EXPECT_TRUE(m_host.TranslateAccelerator(key(NativeKey::Tab)));
    EXPECT_TRUE(pages.hasFocus());
    EXPECT_THAT(site.requests, ElementsAre());
    EXPECT_TRUE(m_host.TranslateAccelerator(key(NativeKey::Tab)));
    EXPECT_THAT(site.requests, ElementsAre(FocusNavigation::Next));
    ASSERT_TRUE(m_host.TabInto(FocusNavigation::Last));
    EXPECT_TRUE(pages.hasFocus());
    EXPECT_TRUE(m_host.TranslateAccelerator(key(NativeKey::Tab, NativeModifier::Shift)));
    EXPECT_TRUE(tree(2).hasFocus());
    EXPECT_TRUE(m_host.TranslateAccelerator(key(NativeKey::Tab, NativeModifier::Shift)));
    EXPECT_THAT(site.requests, ElementsAre(FocusNavigation::Next, FocusNavigation::Previous));
}

TEST_F(HostOverSample, ASizeIsInPixelsOfTheScreen) {
    NativeMessage message = {.Message = NativeMessageId::Size, .LParam = (480 << 16) | 640};
    EXPECT_TRUE(m_host.WndProc(message));
    EXPECT_EQ(QSize(640, 480), m_view->size() * m_view->devicePixelRatio());
}

TEST_F(HostOverSample, AnyCharacterCanBeTyped) {
    ASSERT_TRUE(load());
    ASSERT_TRUE(m_host.SelectTable("Warehouse", "ODBC", "crm", "public", "customers"));
    m_host.SetInternalFocus();
    QLineEdit edit(m_view);
    edit.show();
    edit.setFocus();
    ASSERT_EQ(&edit, m_view->focusWidget());
    const auto type = [this](std::uintptr_t codePoint) {
        return m_host.ConvertMessage({.Message = NativeMessageId::Character, .WParam = codePoint});
    };
    for (const char32_t each : std::u32string(U"a\u00E9,% \u6771\U0001F600"))
        EXPECT_TRUE(type(each)) << static_cast<std::uint32_t>(each);
    for (const std::uintptr_t each : {0U, 8U, 0x7fU, 0x85U, 0xd800U, 0xdfffU, 0x110000U, 0xffffffffU})
        EXPECT_FALSE(type(each)) << each;
    EXPECT_EQ("a\u00E9,% \u6771\U0001F600", toUtf8(edit.text()));
    NativeMessage message = {.Message = NativeMessageId::Character, .WParam = '*'};
    EXPECT_TRUE(m_host.WndProc(message));
    EXPECT_TRUE(edit.text().endsWith(u'*'));
}

TEST_F(HostOverSample, KeysOfAShellReachShortcutsToo) {
    ASSERT_TRUE(load());
    ASSERT_TRUE(m_host.SelectTable("Warehouse", "ODBC", "crm", "public", "customers"));
    ASSERT_TRUE(m_host.TabInto(FocusNavigation::First));
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_host.HasFocus(); }));
    report()->findChild<QTabBar*>(QStringLiteral("tabStrip"))->setCurrentIndex(5);
    grid("tableNotes").setFocus();
    QString opened;
    QTimer::singleShot(0, qApp, [&opened] {
        if (QWidget* dialog = QApplication::activeModalWidget()) {
            opened = dialog->metaObject()->className();
            dialog->close();
        }
    });
    EXPECT_TRUE(m_host.TranslateAccelerator(key(NativeKey::Insert)));
    EXPECT_EQ("tavix::CNoteDlg", toUtf8(opened));
}

TEST_F(HostOverSample, MessagesReachTheControlThatHasTheKeyboard) {
    ASSERT_TRUE(load());
    ASSERT_TRUE(m_host.SelectTable("Warehouse", "ODBC", "crm", "public", "customers"));
    m_host.SetInternalFocus();
    EXPECT_TRUE(m_host.TranslateAccelerator(key(NativeKey::Right)));
    EXPECT_TRUE(m_host.ConvertMessage(key(NativeKey::Down)));
    EXPECT_NE("customers", selected(0));
    EXPECT_FALSE(m_host.ConvertMessage(key(0)));
    EXPECT_FALSE(m_host.ConvertMessage(key(0xffffffff)));
    NativeMessage up = key(NativeKey::Down);
    up.Message = NativeMessageId::KeyUp;
    EXPECT_FALSE(m_host.TranslateAccelerator(up));

    NativeMessage message;
    message.Message = 32771;
    EXPECT_TRUE(m_host.WndProc(message));
    EXPECT_NE(0, message.Result);
    message = {.Message = NativeMessageId::Size, .LParam = (480 << 16) | 640};
    EXPECT_TRUE(m_host.WndProc(message));
    EXPECT_EQ(QSize(640, 480), m_view->size());
    message = {.Message = NativeMessageId::Command, .WParam = 57600};
    EXPECT_TRUE(m_host.WndProc(message));
    EXPECT_FALSE(m_host.HasReport());
    message = {.Message = 1};
    EXPECT_FALSE(m_host.WndProc(message));
}

TEST_F(HostOverSample, PrivateMessagesAskForTheLastStopAndCloseTheInformation) {
    const auto send = [this](std::uint32_t number) {
        NativeMessage message;
        message.Message = number;
        EXPECT_TRUE(m_host.WndProc(message));
        return message.Result;
    };
    EXPECT_EQ(0, send(32771)) << "nothing is open";
    ASSERT_TRUE(load());
    ASSERT_TRUE(m_host.SelectTable("Warehouse", "ODBC", "crm", "public", "customers"));
    auto& strip = *report()->findChild<QTabBar*>(QStringLiteral("tabStrip"));
    for (int tab = 0; tab < strip.count(); ++tab) {
        strip.setCurrentIndex(tab);
        EXPECT_NE(0, send(32771)) << tab;
    }
    EXPECT_EQ(0, send(32772)) << "nothing to close is no failure";
    EXPECT_FALSE(isShown("tableInformation"));
    ASSERT_TRUE(m_host.ExecuteCommand(32810));
    ASSERT_TRUE(isShown("tableInformation"));
    send(32772);
    EXPECT_FALSE(isShown("tableInformation"));
    EXPECT_FALSE(m_host.ExecuteUpdateUICommand(32810).Checked);
}

} // namespace
} // namespace Veldra::Solenne::Tavix
