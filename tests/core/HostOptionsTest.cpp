#include <gtest/gtest.h>

#include "HostRoot.hpp"

#include "core/Globals.hpp"
#include "core/InputLoop.hpp"
#include "core/SmartCard.hpp"

namespace Lanyx {
namespace {

class HostOptions : public ::testing::Test {
protected:
    void SetUp() override {
        sessionActive = false;
        cardLogin = false;
        cardUser.clear();
        loginUser.clear();
    }
    bool Logged(const std::string& text) const {
        return !host.Matching(LanyxTest::Record::Syslog, text).empty();
    }

    LanyxTest::HostRoot host{"default"};
};

// Limits that end or never end a session are the end-to-end tests' matter; here, when the option
// is read and what stands in for it.
TEST_F(HostOptions, IdleLimitIsReadAtTheStartOfASessionWith600AsFallback) {
    host.Set("lanyx-timeout", "none");
    ReadIdleTimeout();
    EXPECT_EQ(idleTimeoutSeconds, 600u);
    host.Set("lanyx-timeout", "90");
    SetSessionActive(true);
    EXPECT_EQ(idleTimeoutSeconds, 90u);
    host.Set("lanyx-timeout", "45");
    SetSessionActive(false);
    EXPECT_EQ(idleTimeoutSeconds, 90u) << "only the start of a session reads it";

    host.Fault({"lib", "AdvancedOptionImpl::FindOption", "options unavailable"});
    EXPECT_NO_THROW(ReadIdleTimeout());
    EXPECT_EQ(idleTimeoutSeconds, 600u);
    EXPECT_FALSE(Logged("options unavailable")) << "nothing is logged";
}

TEST_F(HostOptions, CardUserIsFoundOutsideASession) {
    host.Set("smartcard-user", "alice");
    EXPECT_TRUE(HasCardWithUser("alice"));
    EXPECT_FALSE(HasCardWithUser("bob"));
    CheckSmartCard();
    EXPECT_EQ(cardUser, "alice");
    SetLoginUser("alice");
    EXPECT_TRUE(cardLogin);
    SetLoginUser("root");
    EXPECT_FALSE(cardLogin);

    host.Set("smartcard-user", "");
    CheckSmartCard();
    EXPECT_EQ(cardUser, "");
    EXPECT_FALSE(HasCardWithUser(""));

    host.Set("smartcard-user", "alice");
    host.Fault({"lib", "SmartCardInfoImpl::GetToken", "reader gone"});
    EXPECT_EQ(FindCardUser(), "");
    EXPECT_TRUE(Logged("Error trying to lookup smart card tokens."));
}

TEST_F(HostOptions, CardSessionEndsWhenTheCardLeavesPasswordSessionsIgnoreCards) {
    host.Set("smartcard-user", "alice");
    SetLoginUser("alice");
    sessionActive = true;
    CheckSmartCard();
    EXPECT_EQ(cardUser, "") << "the card user is only looked up outside a session";
    host.Set("smartcard-user", "");
    EXPECT_EXIT(CheckSmartCard(), ::testing::ExitedWithCode(0), "");
    EXPECT_TRUE(Logged("Logging out user id 'alice'"));

    SetLoginUser("root");
    CheckSmartCard();
    EXPECT_EQ(loginUser, "root");
    sessionActive = false;
}

} // namespace
} // namespace Lanyx
