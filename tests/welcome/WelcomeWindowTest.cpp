// The welcome screen on a curses screen that writes to nowhere, against a simulated host; the
// screens behind F2 and F12 are stand-ins that the tests control.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

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
class OffscreenCurses : public ::testing::Environment {
public:
    void SetUp() override
    {
        setenv("LINES", "31", 1);
        setenv("COLUMNS", "100", 1);
        output = std::fopen("/dev/null", "w");
        input = std::fopen("/dev/null", "r");
        screen = newterm("xterm-256color", output, input);
        ASSERT_NE(screen, nullptr);
        set_term(screen);
        start_color();
        SetStringFactorySource(&GetStringFactory);
    }
    void TearDown() override
    {
        endwin();
        delscreen(screen);
        std::fclose(output);
        std::fclose(input);
    }

private:
    SCREEN* screen = nullptr;
    FILE* output = nullptr;
    FILE* input = nullptr;
};

const auto* const curses = ::testing::AddGlobalTestEnvironment(new OffscreenCurses);

// A login that answers at once.
class FakeLogin : public Frame {
public:
    FakeLogin(Frame* owner, bool accept, const char* user)
        : Frame(owner, 10, 5, 40, 8, 3, 0), accept(accept), user(user) {}
    bool Execute() override
    {
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
    void SetUp() override
    {
        ResetState();
        sessionActive = false;
        exitPending = false;
        loginUser.clear();
        adapterAlertSent = false;
    }

    // Hooks whose login accepts `user` (or refuses with null) and whose menu does `menu`.
    SessionHooks Hooks(const char* user, std::function<void()> menu = {})
    {
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

TEST_F(WelcomeWindowTest, DefaultLayoutShowsTheHost)
{
    WelcomeWindow window;
    EXPECT_EQ(window.GetManagementText(), nullptr) << "nothing exists before the first reload";
    window.Reload();
    ASSERT_NE(window.GetManagementText(), nullptr);
    EXPECT_EQ(window.GetManagementText()->GetText(),
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

TEST_F(WelcomeWindowTest, SingleCpuPackageShowsNoCount)
{
    ResetState([](json& state) { state["hardware"]["cpu"]["packages"] = 1; });
    WelcomeWindow window;
    window.Reload();
    EXPECT_EQ(window.GetHardwareText()->GetText(), "Tessellate(R) Core Gold 6430 @ 2.10GHz\n127.7 GiB Memory");
}

TEST_F(WelcomeWindowTest, DhcpWithoutServerWarnsAndAuditModeOutweighsIt)
{
    ResetState([](json& state) {
        json& ipv4 = state["network"]["interfaces"][0]["ipv4"];
        ipv4["mode"] = "dhcp";
        ipv4["address"] = "0.0.0.0";
        ipv4["dhcpServer"] = "0.0.0.0";
        state["network"]["ipv6Enabled"] = false;
    });
    WelcomeWindow window;
    window.Reload();
    EXPECT_EQ(window.GetManagementText()->GetText(),
              "To manage this host, go to:\nhttps://lanyx-lab01/ \nhttps://0.0.0.0/ (Waiting for DHCP...)");
    EXPECT_EQ(window.GetWarningText()->GetText(), en_US_Factory().GetString(140));

    WelcomeTest::ChangeState([](json& state) { state["bootOption"]["auditMode"] = true; });
    window.Reload();
    EXPECT_EQ(window.GetWarningText()->GetText(), en_US_Factory().GetString(141));

    // A server answers and audit mode ends: the warning goes.
    WelcomeTest::ChangeState([](json& state) {
        state["bootOption"]["auditMode"] = false;
        state["network"]["interfaces"][0]["ipv4"]["dhcpServer"] = "192.168.10.254";
    });
    window.Reload();
    EXPECT_EQ(window.GetWarningText()->GetText(), "");
    EXPECT_NE(window.GetManagementText()->GetText().find("(DHCP)"), std::string::npos);
}

TEST_F(WelcomeWindowTest, NoManagementInterfaceKeepsAnEarlierWarning)
{
    ResetState([](json& state) { state["network"]["interfaces"][0]["ipv4"]["mode"] = "dhcp"; });
    WelcomeWindow window;
    window.Reload();
    ASSERT_EQ(window.GetWarningText()->GetText(), en_US_Factory().GetString(140));
    WelcomeTest::ChangeState([](json& state) { state["network"]["managementInterface"] = ""; });
    window.Reload();
    EXPECT_EQ(window.GetWarningText()->GetText(), en_US_Factory().GetString(140));
    EXPECT_NE(window.GetManagementText()->GetText().find("https://0.0.0.0/ (STATIC)"), std::string::npos)
        << window.GetManagementText()->GetText();
}

TEST_F(WelcomeWindowTest, NoAdapterReplacesTheAddressesAndAlertsOnce)
{
    ResetState([](json& state) { state["pnics"] = json::array(); });
    WelcomeWindow window;
    window.Reload();
    window.Reload();
    EXPECT_EQ(window.GetManagementText()->GetText(),
              "No compatible network adapter found. Please consult the product's Hardware Compatibility "
              "Guide (HCG) for a list of supported adapters.");
    EXPECT_EQ(WelcomeTest::State()["systemAlerts"], json::array({"No compatible network adapter found."}));
    EXPECT_TRUE(adapterAlertSent);
}

TEST_F(WelcomeWindowTest, LibraryFailureEmptiesOnlyTheManagementText)
{
    WelcomeWindow window;
    window.Reload();
    WelcomeTest::SetLibFault("DnsConfigImpl::GetHostname", "name service down");
    window.Reload();
    EXPECT_EQ(window.GetManagementText()->GetText(), "");
    EXPECT_EQ(window.GetVendorText()->GetText(), "Northwind Systems NX-2840 Rack Server");
    EXPECT_TRUE(Matching(syslogPath, "name service down").empty()) << "nothing is logged";
}

TEST_F(WelcomeWindowTest, FailureBeforeTheFirstFillLeavesTheTextsUnbuilt)
{
    WelcomeTest::SetLibFault("DnsConfigImpl::GetHostname", "name service down");
    WelcomeWindow window;
    EXPECT_NO_THROW(window.Reload());
    EXPECT_EQ(window.GetManagementText(), nullptr);
    ASSERT_NE(window.GetFooterText(), nullptr);
    WelcomeTest::ResetState();
    window.Reload();
    ASSERT_NE(window.GetManagementText(), nullptr);
    EXPECT_NE(window.GetManagementText()->GetText().find("192.168.10.21"), std::string::npos);
}

TEST_F(WelcomeWindowTest, CustomMessageTakesTheWholeScreenAndGivesItBack)
{
    ResetState([](json& state) { state["welcomeMessage"] = "Host {hostname} at {ip}"; });
    WelcomeWindow window;
    window.Reload();
    ASSERT_NE(window.GetCustomText(), nullptr);
    EXPECT_EQ(window.GetManagementText(), nullptr);
    EXPECT_EQ(window.GetFooterText(), nullptr);
    EXPECT_EQ(window.GetCustomText()->Format(), "Host lanyx-lab01.lab.example.test at 192.168.10.21");
    EXPECT_EQ(window.GetChildren().size(), 1u);

    WelcomeTest::ChangeState([](json& state) { state["welcomeMessage"] = ""; });
    window.Reload();
    EXPECT_EQ(window.GetCustomText(), nullptr);
    ASSERT_NE(window.GetManagementText(), nullptr);
    EXPECT_EQ(window.GetChildren().size(), 2u);
}

TEST_F(WelcomeWindowTest, WelcomeMessageFailureReachesTheCaller)
{
    WelcomeTest::SetLibFault("SystemInfoImpl::GetWelcomeMessage", "no message store");
    WelcomeWindow window;
    EXPECT_THROW(window.Reload(), Keelson::Lib::KeelsonException);
}

TEST_F(WelcomeWindowTest, ReloadKeepsADimmedScreenDimmed)
{
    WelcomeWindow window;
    window.Reload();
    window.SetActive(false);
    window.Reload();
    EXPECT_FALSE(window.IsActive());
    EXPECT_FALSE(window.GetManagementText()->IsActive());
}

TEST_F(WelcomeWindowTest, SessionAfterF2EndsWithTheLogoutRecords)
{
    WelcomeWindow window(Hooks("root"));
    window.Reload();
    window.HandleKey(Keys::F2);
    EXPECT_EQ(calls.logins, 1);
    EXPECT_EQ(calls.menus, 1);
    EXPECT_TRUE(calls.sessionDuringMenu);
    EXPECT_FALSE(sessionActive);
    const auto logout = Matching(syslogPath, "User root logged out");
    ASSERT_EQ(logout.size(), 1u);
    EXPECT_NE(logout[0].find("user.info "), std::string::npos) << logout[0];
    const auto audit = Matching(auditPath, "action=lanyx.logout");
    ASSERT_EQ(audit.size(), 1u);
    EXPECT_NE(audit[0].find("action=lanyx.logout user=root service=lanyx success=1 reason=\"Session closed\""),
              std::string::npos)
        << audit[0];
}

TEST_F(WelcomeWindowTest, TimeOutInTheSessionIsCaughtHere)
{
    WelcomeWindow window(Hooks("root", [] { throw LanyxTimeout(); }));
    window.Reload();
    window.SetActive(false); // as RunModal leaves the owner of a timed-out session
    window.HandleKey(Keys::F2);
    EXPECT_TRUE(window.IsActive()) << "drawn active again";
    EXPECT_FALSE(sessionActive);
    EXPECT_EQ(Matching(syslogPath, "User root logged out due to time out").size(), 1u);
    EXPECT_EQ(Matching(syslogPath, "User root logged out").size(), 1u) << "no line of a closed session";
    const auto audit = Matching(auditPath, "action=lanyx.logout");
    ASSERT_EQ(audit.size(), 1u);
    EXPECT_NE(audit[0].find("success=1 reason=\"Time out\""), std::string::npos) << audit[0];
}

TEST_F(WelcomeWindowTest, TimeOutInTheLoginNamesTheLastUser)
{
    loginUser = "earlier";
    SessionHooks hooks;
    hooks.createLoginDialog = [](Frame*) -> std::unique_ptr<Frame> { throw LanyxTimeout(); };
    WelcomeWindow window(hooks);
    window.Reload();
    window.HandleKey(Keys::F12);
    EXPECT_EQ(Matching(syslogPath, "User earlier logged out due to time out").size(), 1u);
    EXPECT_EQ(Matching(auditPath, "user=earlier service=lanyx success=1 reason=\"Time out\"").size(), 1u);
}

TEST_F(WelcomeWindowTest, CancelledLoginLeavesNoRecords)
{
    WelcomeWindow window(Hooks(nullptr));
    window.Reload();
    window.HandleKey(Keys::F2);
    window.HandleKey(Keys::F12);
    EXPECT_EQ(calls.logins, 2);
    EXPECT_EQ(calls.menus + calls.shutdowns, 0);
    EXPECT_TRUE(Matching(syslogPath, "logged out").empty());
    EXPECT_TRUE(WelcomeTest::RecordLines(auditPath).empty());
}

TEST_F(WelcomeWindowTest, ShutdownAfterF12RunsOutsideASession)
{
    WelcomeWindow window(Hooks("root"));
    window.Reload();
    window.HandleKey(Keys::F12);
    EXPECT_EQ(calls.shutdowns, 1);
    EXPECT_EQ(calls.menus, 0);
    EXPECT_FALSE(calls.sessionDuringShutdown);
    EXPECT_TRUE(Matching(syslogPath, "logged out").empty());
}

// An exit request that arrived during a session, or while a login was open, ends the process
// once the round is over.
TEST_F(WelcomeWindowTest, ExitRequestEndsTheProcessAfterTheRound)
{
    WelcomeWindow window(Hooks("root", [] { exitPending = true; }));
    window.Reload();
    EXPECT_EXIT(window.HandleKey(Keys::F2), ::testing::ExitedWithCode(0), "");
    WelcomeWindow cancelled(Hooks(nullptr));
    cancelled.Reload();
    exitPending = true;
    EXPECT_EXIT(cancelled.HandleKey(Keys::F12), ::testing::ExitedWithCode(0), "");
}

TEST_F(WelcomeWindowTest, WithoutALoginScreenF2DoesNothing)
{
    WelcomeWindow window;
    window.Reload();
    window.HandleKey(Keys::F2);
    EXPECT_FALSE(sessionActive);
    EXPECT_TRUE(WelcomeTest::RecordLines(auditPath).empty());
}

} // namespace
} // namespace Lanyx
