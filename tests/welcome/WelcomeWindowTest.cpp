// The welcome screen on a curses screen that writes to nowhere, against a simulated host; the
// screens behind F2 and F12 are stand-ins that the tests control.
#include <gtest/gtest.h>

#include "CursesScreen.hpp"
#include "WelcomeTestRoot.hpp"
#include "core/Globals.hpp"
#include "core/InputLoop.hpp"
#include "core/Keys.hpp"
#include "core/StringFactory.hpp"
#include "keelson/Lib.hpp"
#include "text/en_US_Factory.hpp"
#include "welcome/WelcomeWindow.hpp"

namespace Lanyx {
namespace {

using nlohmann::json;
using WelcomeTest::auditPath;
using WelcomeTest::Matching;
using WelcomeTest::ResetState;
using WelcomeTest::syslogPath;

// Tall enough for the warning text, which needs 29 lines.
const auto* const screen = Testing::AddCursesScreen(31, 100, "xterm-256color");

// A login that answers at once.
class FakeLogin : public Frame {
public:
    FakeLogin(Frame* owner, bool accept, const char* user)
        : Frame(owner, 10, 5, 40, 8, 3, 0), accept(accept), user(user) {}
    bool Execute() override {
        if (accept)
            loginUser = user;
        return accept;
    }

private:
    bool accept;
    const char* user;
};

struct Calls {
    int logins = 0;
    int menus = 0;
    int shutdowns = 0;
    bool sessionDuringMenu = false;
    bool sessionDuringShutdown = true;
};

class WelcomeWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        ResetState();
        SetStringFactorySource(&GetStringFactory);
        sessionActive = false;
        exitPending = false;
        loginUser.clear();
        adapterAlertSent = false;
    }

    // Hooks whose login accepts `user` (or refuses with null) and whose menu does `menu`.
    SessionHooks Hooks(const char* user, std::function<void()> menu = {}) {
        SessionHooks hooks;
        hooks.createLoginDialog = [this, user](Frame* owner) -> std::unique_ptr<Frame> {
            ++calls.logins;
            return std::make_unique<FakeLogin>(owner, user != nullptr, user ? user : "");
        };
        hooks.runSystemCustomization = [this, menu](Frame*) {
            ++calls.menus;
            calls.sessionDuringMenu = sessionActive;
            if (menu)
                menu();
        };
        hooks.runShutdown = [this](Frame*) {
            ++calls.shutdowns;
            calls.sessionDuringShutdown = sessionActive;
        };
        return hooks;
    }

    Calls calls;
};

TEST_F(WelcomeWindowTest, DefaultLayoutShowsTheHost) {
    WelcomeWindow window;
    EXPECT_EQ(window.GetManagementText(), nullptr) << "nothing exists before the first reload";
    window.Reload();
    ASSERT_NE(window.GetManagementText(), nullptr);
    EXPECT_EQ(
        window.GetManagementText()->GetText(),
        "To manage this host, go to:\nhttps://lanyx-lab01/ \nhttps://192.168.10.21/ (STATIC)\n"
        "https://[fe80::250:56ff:fe6a:1001]/ \n");
    EXPECT_EQ(window.GetVersionText()->GetText(), en_US_Factory().GetString(2));
    EXPECT_EQ(window.GetVendorText()->GetText(), "Northwind Systems NX-2840 Rack Server");
    EXPECT_EQ(window.GetHardwareText()->GetText(),
              "2 x Tessellate(R) Core Gold 6430 @ 2.10GHz\n127.7 GiB Memory");
    EXPECT_EQ(window.GetWarningText()->GetText(), "");
    EXPECT_EQ(window.GetFooterText()->GetText(),
              "<F2> {color:dark-grey}Customize System/View Logs{/color}{align:right}<F12> "
              "{color:dark-grey}Shut Down/Restart{/color}{/align}");
    EXPECT_EQ(window.GetCustomText(), nullptr);
}

TEST_F(WelcomeWindowTest, WarningsAndTheirOrder) {
    ResetState([](json& state) {
        state["network"]["interfaces"][0]["ipv4"]["mode"] = "dhcp";
        state["hardware"]["cpu"]["packages"] = 1;
    });
    WelcomeWindow window;
    window.Reload();
    EXPECT_EQ(window.GetHardwareText()->GetText(),
              "Tessellate(R) Core Gold 6430 @ 2.10GHz\n127.7 GiB Memory")
        << "a single package shows no count";
    EXPECT_EQ(window.GetWarningText()->GetText(), en_US_Factory().GetString(140));
    WelcomeTest::ChangeState([](json& state) { state["bootOption"]["auditMode"] = true; });
    window.Reload();
    EXPECT_EQ(window.GetWarningText()->GetText(), en_US_Factory().GetString(141))
        << "audit mode outweighs the missing server";
    // Without a management interface the earlier warning stays.
    WelcomeTest::ChangeState([](json& state) {
        state["bootOption"]["auditMode"] = false;
        state["network"]["managementInterface"] = "";
    });
    window.Reload();
    EXPECT_EQ(window.GetWarningText()->GetText(), en_US_Factory().GetString(141));
    EXPECT_NE(window.GetManagementText()->GetText().find("https://0.0.0.0/ (STATIC)"),
              std::string::npos);
}

TEST_F(WelcomeWindowTest, FailuresBeforeTheFirstFillAndAfterIt) {
    WelcomeTest::SetLibFault("DnsConfigImpl::GetHostname", "name service down");
    WelcomeWindow window;
    EXPECT_NO_THROW(window.Reload());
    EXPECT_EQ(window.GetManagementText(), nullptr) << "the texts stay unbuilt";
    ASSERT_NE(window.GetFooterText(), nullptr);
    ResetState();
    window.Reload();
    ASSERT_NE(window.GetManagementText(), nullptr);
    // A dimmed screen stays dimmed through a reload.
    window.SetActive(false);
    window.Reload();
    EXPECT_FALSE(window.GetManagementText()->IsActive());
    WelcomeTest::SetLibFault("DnsConfigImpl::GetHostname", "name service down");
    window.Reload();
    EXPECT_EQ(window.GetManagementText()->GetText(), "");
    EXPECT_EQ(window.GetVendorText()->GetText(), "Northwind Systems NX-2840 Rack Server");
    EXPECT_TRUE(Matching(syslogPath, "name service down").empty()) << "nothing is logged";
}

TEST_F(WelcomeWindowTest, CustomMessageTakesTheWholeScreenAndGivesItBack) {
    ResetState([](json& state) { state["welcomeMessage"] = "Host {hostname}"; });
    WelcomeWindow window;
    window.Reload();
    ASSERT_NE(window.GetCustomText(), nullptr);
    EXPECT_EQ(window.GetFooterText(), nullptr);
    EXPECT_EQ(window.GetChildren().size(), 1u);
    WelcomeTest::ChangeState([](json& state) { state["welcomeMessage"] = ""; });
    window.Reload();
    EXPECT_EQ(window.GetCustomText(), nullptr);
    ASSERT_NE(window.GetManagementText(), nullptr);
    EXPECT_EQ(window.GetChildren().size(), 2u);
}

TEST_F(WelcomeWindowTest, SessionAfterF2EndsWithTheLogoutRecords) {
    WelcomeWindow window(Hooks("root"));
    window.Reload();
    window.HandleKey(Keys::F2);
    EXPECT_EQ(calls.menus, 1);
    EXPECT_TRUE(calls.sessionDuringMenu);
    EXPECT_FALSE(sessionActive);
    const auto logout = Matching(syslogPath, "User root logged out");
    ASSERT_EQ(logout.size(), 1u);
    EXPECT_NE(logout[0].find("user.info "), std::string::npos) << logout[0];
    EXPECT_EQ(Matching(auditPath, "action=lanyx.logout user=root service=lanyx success=1 "
                                  "reason=\"Session closed\"")
                  .size(),
              1u);

    // F12 runs the shutdown outside a session.
    window.HandleKey(Keys::F12);
    EXPECT_EQ(calls.shutdowns, 1);
    EXPECT_FALSE(calls.sessionDuringShutdown);
    EXPECT_EQ(Matching(syslogPath, "logged out").size(), 1u);
}

TEST_F(WelcomeWindowTest, TimeOutInTheSessionOrTheLoginIsCaughtHere) {
    WelcomeWindow window(Hooks("root", [] { throw LanyxTimeout(); }));
    window.Reload();
    window.SetActive(false); // as RunModal leaves the owner of a timed-out session
    window.HandleKey(Keys::F2);
    EXPECT_TRUE(window.IsActive()) << "drawn active again";
    EXPECT_FALSE(sessionActive);
    EXPECT_EQ(Matching(syslogPath, "User root logged out due to time out").size(), 1u);
    EXPECT_EQ(Matching(syslogPath, "User root logged out").size(), 1u)
        << "no line of a closed session";
    EXPECT_EQ(Matching(auditPath, "user=root service=lanyx success=1 reason=\"Time out\"").size(),
              1u);

    // In the login, the last user is named.
    loginUser = "earlier";
    SessionHooks hooks;
    hooks.createLoginDialog = [](Frame*) -> std::unique_ptr<Frame> { throw LanyxTimeout(); };
    WelcomeWindow login(hooks);
    login.Reload();
    login.HandleKey(Keys::F12);
    EXPECT_EQ(Matching(syslogPath, "User earlier logged out due to time out").size(), 1u);
    EXPECT_EQ(
        Matching(auditPath, "user=earlier service=lanyx success=1 reason=\"Time out\"").size(), 1u);
}

TEST_F(WelcomeWindowTest, CancelledLoginLeavesNoRecords) {
    WelcomeWindow window(Hooks(nullptr));
    window.Reload();
    window.HandleKey(Keys::F2);
    window.HandleKey(Keys::F12);
    EXPECT_EQ(calls.logins, 2);
    EXPECT_EQ(calls.menus + calls.shutdowns, 0);
    EXPECT_FALSE(sessionActive);
    EXPECT_TRUE(WelcomeTest::RecordLines(auditPath).empty());
    EXPECT_TRUE(Matching(syslogPath, "logged out").empty());
}

// An exit request that arrived during a session, or while a login was open, ends the process
// once the round is over.
TEST_F(WelcomeWindowTest, ExitRequestEndsTheProcessAfterTheRound) {
    WelcomeWindow window(Hooks("root", [] { exitPending = true; }));
    window.Reload();
    EXPECT_EXIT(window.HandleKey(Keys::F2), ::testing::ExitedWithCode(0), "");
    WelcomeWindow cancelled(Hooks(nullptr));
    cancelled.Reload();
    exitPending = true;
    EXPECT_EXIT(cancelled.HandleKey(Keys::F12), ::testing::ExitedWithCode(0), "");
    exitPending = false;
}

} // namespace
} // namespace Lanyx
