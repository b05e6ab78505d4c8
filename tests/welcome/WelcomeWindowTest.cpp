// The welcome screen on a curses screen that writes to nowhere, against a simulated host; the
// screens behind F2 and F12 are stand-ins that the tests control.
#include <gtest/gtest.h>

#include "CursesScreen.hpp"
#include "HostRoot.hpp"
#include "core/Globals.hpp"
#include "core/InputLoop.hpp"
#include "core/Keys.hpp"
#include "core/StringFactory.hpp"
#include "keelson/Lib.hpp"
#include "text/en_US_Factory.hpp"
#include "welcome/WelcomeWindow.hpp"

namespace Lanyx {
namespace {

using LanyxTest::Record;
using nlohmann::json;

auto* const program = LanyxTest::AddProgramHost("default");

size_t Logged(Record record, const std::string& text) {
    return program->Host().Matching(record, text).size();
}

// Tall enough for the warning text, which needs 29 lines.
const auto* const screen = Testing::AddCursesScreen(31, 100, "xterm-256color");

// A login that answers at once: accepts `user`, or refuses when there is none.
class FakeLogin : public Frame {
public:
    FakeLogin(Frame* owner, const char* user) : Frame(owner, 10, 5, 40, 8, 3, 0), user(user) {}
    bool Execute() override {
        if (user)
            loginUser = user;
        return user != nullptr;
    }

private:
    const char* user;
};

struct Calls {
    int logins = 0, menus = 0, shutdowns = 0;
    bool sessionDuringMenu = false, sessionDuringShutdown = true;
};

class WelcomeWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        program->Reset();
        SetStringFactorySource(&GetStringFactory);
        sessionActive = false;
        exitPending = false;
        loginUser.clear();
        adapterAlertSent = false;
    }

    // Hooks whose login answers for `user` and whose menu does `menu`.
    SessionHooks Hooks(const char* user, std::function<void()> menu = {}) {
        SessionHooks hooks;
        hooks.createLoginDialog = [this, user](Frame* owner) -> std::unique_ptr<Frame> {
            ++calls.logins;
            return std::make_unique<FakeLogin>(owner, user);
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

TEST_F(WelcomeWindowTest, WarningsAndTheirOrder) {
    program->Reset([](json& state) {
        state["network"]["interfaces"][0]["ipv4"]["mode"] = "dhcp";
        state["hardware"]["cpu"]["packages"] = 1;
    });
    WelcomeWindow window;
    window.Reload();
    EXPECT_EQ(window.GetHardwareText()->GetText(),
              "Tessellate(R) Core Gold 6430 @ 2.10GHz\n127.7 GiB Memory")
        << "a single package shows no count";
    EXPECT_EQ(window.GetWarningText()->GetText(), en_US_Factory().GetString(140));
    program->Host().Edit([](json& state) { state["bootOption"]["auditMode"] = true; });
    window.Reload();
    EXPECT_EQ(window.GetWarningText()->GetText(), en_US_Factory().GetString(141))
        << "audit mode outweighs the missing server";
    // Without a management interface the earlier warning stays.
    program->Host().Edit([](json& state) {
        state["bootOption"]["auditMode"] = false;
        state["network"]["managementInterface"] = "";
    });
    window.Reload();
    EXPECT_EQ(window.GetWarningText()->GetText(), en_US_Factory().GetString(141));
    EXPECT_NE(window.GetManagementText()->GetText().find("https://0.0.0.0/ (STATIC)"),
              std::string::npos);
}

// The logout records of a session are checked end to end; here, what runs inside a session and
// that a refused login leaves no records.
TEST_F(WelcomeWindowTest, F2RunsTheMenuInASessionAndF12TheShutdownOutsideOne) {
    for (const char* user : {"root", static_cast<const char*>(nullptr)}) {
        calls = {};
        WelcomeWindow window(Hooks(user));
        window.Reload();
        window.HandleKey(Keys::F2);
        window.HandleKey(Keys::F12);
        EXPECT_EQ(calls.logins, 2);
        EXPECT_EQ(calls.menus, user ? 1 : 0);
        EXPECT_TRUE(calls.sessionDuringMenu || !user);
        EXPECT_EQ(calls.shutdowns, user ? 1 : 0);
        EXPECT_FALSE(calls.sessionDuringShutdown && user);
        EXPECT_FALSE(sessionActive);
        EXPECT_EQ(Logged(Record::Syslog, "logged out"), user ? 1u : 0u);
        program->Reset();
    }
    EXPECT_TRUE(program->Host().Lines(Record::Audit).empty());
}

TEST_F(WelcomeWindowTest, TimeOutInTheSessionIsCaughtHere) {
    WelcomeWindow window(Hooks("root", [] { throw LanyxTimeout(); }));
    window.Reload();
    window.SetActive(false); // as RunModal leaves the owner of a timed-out session
    window.HandleKey(Keys::F2);
    EXPECT_TRUE(window.IsActive()) << "drawn active again";
    EXPECT_FALSE(sessionActive);
    EXPECT_EQ(Logged(Record::Syslog, "User root logged out due to time out"), 1u);
    EXPECT_EQ(Logged(Record::Syslog, "User root logged out"), 1u) << "no line of a closed session";
    EXPECT_EQ(Logged(Record::Audit, "user=root service=lanyx success=1 reason=\"Time out\""), 1u);
}

} // namespace
} // namespace Lanyx
