#include "source/ConnectionText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavix::source {
namespace {

TEST(ConnectionText, IsANameOrSettingsAndKeepsSecretsToItself) {
    const struct {
        const char* given;
        const char* text;
        const char* shown;
        bool holdsPassword;
    } kCases[] = {
        {" shop ", "DSN=shop", "DSN=shop", false},
        {"DSN=shop;", "DSN=shop", "DSN=shop", false},
        {"dsn = my shop ; UID=me;;Port=5", "dsn=my shop;UID=me;Port=5", "dsn=my shop;Port=5", false},
        {"DSN=s;pwd={a;b}}=c};X=1", "DSN=s;pwd={a;b}}=c};X=1", "DSN=s;X=1", true},
        {"DSN=s;PassWord=;Port=1;port=2", "DSN=s;PassWord=;Port=1", "DSN=s;Port=1", true},
        {"DSN=s;pqopt={sslmode=on password=x}", "DSN=s;pqopt={sslmode=on password=x}", "DSN=s", true},
        {"Driver={My Driver};AccessToken=1;Username=u", "Driver=My Driver;AccessToken=1;Username=u", "Driver=My Driver",
         true},
    };
    for (const auto& one : kCases) {
        const auto parsed = ConnectionText::parse(one.given);
        ASSERT_TRUE(parsed) << one.given << ": " << parsed.error().text;
        EXPECT_EQ(parsed->text(), one.text);
        EXPECT_EQ(parsed->publicText(), one.shown);
        EXPECT_EQ(parsed->holdsPassword(), one.holdsPassword) << one.given;
    }
    const std::string longest(20'000, 'x');
    for (const char* wrong : {"", "  ", ";", "a;b", "DSN=s;x", "=x", "DSN={a", "DSN={a}b", "{x}=1", longest.c_str()})
        EXPECT_FALSE(ConnectionText::parse(wrong)) << wrong;
    EXPECT_FALSE(ConnectionText::parse(std::string_view("DSN=\0", 5)));
    const auto secret = ConnectionText::parse("DSN=s;PWD=hidden;broken");
    ASSERT_FALSE(secret);
    EXPECT_THAT(secret.error().text, ::testing::Not(::testing::HasSubstr("hidden")));
}

TEST(ConnectionText, AValueWithSpecialCharactersIsReadBackAsItWas) {
    for (const std::string value : {"p;w{}='\"ss", "}", "{", " x", "x ", "a=b", "\u00FC!"}) {
        ConnectionText text = *ConnectionText::parse("DSN=s");
        text.set("PWD", value);
        const auto again = ConnectionText::parse(text.text());
        ASSERT_TRUE(again) << text.text();
        EXPECT_EQ(*again->find("pwd"), value);
    }
}

} // namespace
} // namespace tavix::source
