#include "base/LoginName.h"
#include "doc/SourceLogins.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace tavix {
namespace {

using source::Credentials;

/// Answers questions about sources, and records each one as "source user refusal".
class SourceLoginsTest : public ::testing::Test {
  protected:
    SourceLoginsTest() {
        logins.SetAsk([this](const SourceLogins::Question& question) {
            asked.push_back(question.source + ' ' + question.user + ' ' + question.refusal);
            return answer;
        });
    }
    ~SourceLoginsTest() override {
        ::unsetenv("TAVIX_SOURCE_USER_SHOP");
        ::unsetenv("TAVIX_SOURCE_PASSWORD_SHOP");
    }
    /// "user/password", or "-".
    std::string give(const std::string& source, const std::string& refusal = {}) {
        const auto given = ask(source, refusal);
        return given ? given->user + '/' + given->password : "-";
    }

    SourceLogins logins;
    source::AskCredentials ask = logins.ForSession();
    std::optional<Credentials> answer;
    std::vector<std::string> asked;
};

TEST_F(SourceLoginsTest, NobodyIsAskedBeforeAServerRefusesAndTheAnswerIsKeptForItsSource) {
    EXPECT_EQ("-", give("shop"));
    EXPECT_TRUE(asked.empty());
    answer = Credentials{"ada", "secret"};
    EXPECT_EQ("ada/secret", give("shop", "no password"));
    EXPECT_EQ(std::vector<std::string>{"shop " + loginName() + " no password"}, asked);
    EXPECT_EQ("ada/secret", give("shop"));
    EXPECT_EQ("-", give("other"));
    EXPECT_EQ(1U, asked.size());
    // When the server refuses the answer, the next question proposes the same user.
    answer = Credentials{"ada", "better"};
    EXPECT_EQ("ada/better", give("shop", "wrong password"));
    EXPECT_EQ("shop ada wrong password", asked.back());
    EXPECT_EQ("ada/better", give("shop"));
    EXPECT_FALSE(logins.TakeDeclined());
    logins.Clear();
    EXPECT_EQ("-", give("shop"));
}

TEST_F(SourceLoginsTest, TheEnvironmentAnswersFirst) {
    ::setenv("TAVIX_SOURCE_USER_SHOP", "grace", 1);
    ::setenv("TAVIX_SOURCE_PASSWORD_SHOP", "env", 1);
    EXPECT_EQ("grace/env", give("shop"));
    answer = Credentials{"grace", "typed"};
    EXPECT_EQ("grace/typed", give("shop", "refused"));
    EXPECT_EQ("shop grace refused", asked.back());
    EXPECT_EQ("grace/typed", give("shop"));
}

TEST_F(SourceLoginsTest, WhoGivesNoAnswerIsRememberedOnceAndAskedAgainNextTime) {
    answer = Credentials{"ada", "secret"};
    (void)give("shop", "no password");
    answer.reset();
    EXPECT_EQ("-", give("shop", "wrong password"));
    EXPECT_EQ("shop", logins.TakeDeclined());
    EXPECT_FALSE(logins.TakeDeclined());
    EXPECT_EQ("-", give("shop")) << "a refused answer was kept";
    EXPECT_EQ("-", give("shop", "no password"));
    EXPECT_EQ(3U, asked.size());
    // Another attempt clears the declined source.
    EXPECT_EQ("-", give("other"));
    EXPECT_FALSE(logins.TakeDeclined());
    logins.SetAsk(nullptr);
    EXPECT_EQ("-", give("shop", "no password"));
}

} // namespace
} // namespace tavix
