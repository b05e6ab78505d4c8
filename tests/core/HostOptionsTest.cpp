#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/Globals.hpp"
#include "core/InputLoop.hpp"
#include "core/SmartCard.hpp"

namespace Lanyx {
namespace {

// A fresh simulated host per test, changed through the hostsim command as an operator of the
// tests would.
class HostOptions : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/lanyx-core-host-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        root = pattern;
        Hostsim("create " + root + "/host --force");
        root += "/host";
        setenv("LANYX_HOST_ROOT", root.c_str(), 1);
        sessionActive = false;
        cardLogin = false;
        cardUser.clear();
        loginUser.clear();
    }
    void TearDown() override {
        std::filesystem::remove_all(std::filesystem::path(root).parent_path());
    }

    static void Hostsim(const std::string& arguments) {
        const std::string command =
            std::string(HOSTSIM_COMMAND) + " " + arguments + " >/dev/null 2>&1";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
    }
    void Set(const std::string& name, const std::string& value) {
        Hostsim("set " + root + " " + name + " '" + value + "'");
    }
    void Fault(const std::string& operation, const std::string& text) {
        Hostsim("fault " + root + " lib " + operation + " '" + text + "'");
    }
    std::string Syslog() const {
        std::ifstream in(root + "/var/log/syslog.log");
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }

    std::string root;
};

// Limits that end or never end a session are the end-to-end tests' matter; here, when the option
// is read and what stands in for it.
TEST_F(HostOptions, IdleLimitIsReadAtTheStartOfASessionWith600AsFallback) {
    Set("lanyx-timeout", "none");
    ReadIdleTimeout();
    EXPECT_EQ(idleTimeoutSeconds, 600u);
    Set("lanyx-timeout", "90");
    SetSessionActive(true);
    EXPECT_EQ(idleTimeoutSeconds, 90u);
    Set("lanyx-timeout", "45");
    SetSessionActive(false);
    EXPECT_EQ(idleTimeoutSeconds, 90u) << "only the start of a session reads it";

    Fault("AdvancedOptionImpl::FindOption", "options unavailable");
    EXPECT_NO_THROW(ReadIdleTimeout());
    EXPECT_EQ(idleTimeoutSeconds, 600u);
    EXPECT_EQ(Syslog().find("options unavailable"), std::string::npos) << "nothing is logged";
}

TEST_F(HostOptions, CardUserIsFoundOutsideASession) {
    Set("smartcard-user", "alice");
    EXPECT_TRUE(HasCardWithUser("alice"));
    EXPECT_FALSE(HasCardWithUser("bob"));
    CheckSmartCard();
    EXPECT_EQ(cardUser, "alice");
    SetLoginUser("alice");
    EXPECT_TRUE(cardLogin);
    SetLoginUser("root");
    EXPECT_FALSE(cardLogin);

    Set("smartcard-user", "");
    CheckSmartCard();
    EXPECT_EQ(cardUser, "");
    EXPECT_FALSE(HasCardWithUser(""));

    Set("smartcard-user", "alice");
    Fault("SmartCardInfoImpl::GetToken", "reader gone");
    EXPECT_EQ(FindCardUser(), "");
    EXPECT_NE(Syslog().find("Error trying to lookup smart card tokens."), std::string::npos);
}

TEST_F(HostOptions, CardSessionEndsWhenTheCardLeavesPasswordSessionsIgnoreCards) {
    Set("smartcard-user", "alice");
    SetLoginUser("alice");
    sessionActive = true;
    CheckSmartCard();
    EXPECT_EQ(cardUser, "") << "the card user is only looked up outside a session";
    Set("smartcard-user", "");
    EXPECT_EXIT(CheckSmartCard(), ::testing::ExitedWithCode(0), "");
    EXPECT_NE(Syslog().find("Logging out user id 'alice'"), std::string::npos);

    SetLoginUser("root");
    CheckSmartCard();
    EXPECT_EQ(loginUser, "root");
    sessionActive = false;
}

} // namespace
} // namespace Lanyx
