// The idle limit inside each dialog of the menu and behind F12, and a new limit set in its dialog
// taking effect at once; under accelerated clocks, so these tests run alone (see CMakeLists.txt).
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "harness/Session.hpp"

using namespace LanyxE2E;

namespace {

// 120 seconds of the console's clock are 6 real seconds: room to reach the dialog by keys,
// each of which restarts the clock.
constexpr const char* kSpeed = "+0 x20";

::testing::AssertionResult OpenTroubleshooting(Session& s, const std::string& line) {
    if (auto opened = s.OpenEntry("Troubleshooting Options"); !opened)
        return opened;
    if (auto shown = s.Screen().WaitForText("Troubleshooting Mode Options"); !shown)
        return shown;
    return line.empty() ? s.Settle() : s.OpenEntry(line);
}

// Behind F12 from the welcome screen, then `keys` in the shutdown dialog.
::testing::AssertionResult OpenShutdown(Session& s,
                                        std::initializer_list<std::string_view> keys = {}) {
    if (!s.Key(Keys::F(12)) || !s.Screen().WaitForText("Authentication Required") || !s.Settle())
        return ::testing::AssertionFailure() << "no login box behind F12";
    if (!s.Type("root") || !s.Key(Keys::Enter) || !s.Type(kRootPassword) || !s.Key(Keys::Enter))
        return ::testing::AssertionFailure() << "not typed";
    if (auto shown = s.Screen().WaitForText("<F2> Shut Down  <F11> Restart"); !shown)
        return shown;
    return s.Press(keys);
}

::testing::AssertionResult OpenMenuEntry(Session& s, const std::string& entry,
                                         std::initializer_list<std::string_view> keys) {
    if (auto in = s.LogIn(); !in)
        return in;
    if (auto selected = s.SelectEntry(entry); !selected)
        return selected;
    return s.Press(keys);
}

TEST(DialogIdle, IdleLimitEndsTheSessionInsideEachDialog) {
    struct Case {
        const char* name;
        std::string term;
        std::function<::testing::AssertionResult(Session&)> open;
        const char* shown;
        bool loggedInFirst = true;
        const char* power = "on";
        const char* hostname = "changed-host"; // what the host has after the limit
    };
    const std::vector<Case> cases = {
        {"troubleshooting menu", "xterm-256color",
         [](Session& s) { return OpenTroubleshooting(s, ""); }, "Restart Management Agents"},
        {"shell time-outs", "xterm-256color",
         [](Session& s) { return OpenTroubleshooting(s, "Modify Ostra Shell and SSH"); },
         "Availability timeout"},
        {"console time-out", "xterm-256color",
         [](Session& s) { return OpenTroubleshooting(s, "Modify LANYX idle timeout"); },
         "LANYX idle timeout"},
        {"password", "xterm-256color", [](Session& s) { return s.OpenEntry("Configure Password"); },
         "Old Password:"},
        {"keyboard", "xterm", [](Session& s) { return s.OpenEntry("Configure Keyboard"); },
         "( ) Belgian"},
        {"shutdown", "xterm-256color", [](Session& s) { return OpenShutdown(s); }, "<F2> Shut Down",
         false},
        {"waiting for the host to go down", "xterm-256color",
         [](Session& s) { return OpenShutdown(s, {Keys::F(2)}); }, "Shutdown in progress...", false,
         "off"},
        {"lockdown", "xterm-256color",
         [](Session& s) { return OpenMenuEntry(s, "Configure Lockdown Mode", {Keys::Enter}); },
         "<Space> Toggle Selected", false},
        {"reset question", "xterm-256color",
         [](Session& s) { return OpenMenuEntry(s, "Reset System Configuration", {Keys::Enter}); },
         "Reset System Configuration now?", false},
        // Reset, not restarted.
        {"restart after the reset", "xterm-256color",
         [](Session& s) {
             return OpenMenuEntry(s, "Reset System Configuration", {Keys::Enter, Keys::F(11)});
         },
         "Default settings are restored.", false, "on", "lanyx-lab01"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Session s("default", {.settings = {{"lanyx-timeout", "120"}, {"hostname", "changed-host"}},
                              .term = c.term,
                              .faketime = kSpeed});
        if (c.loggedInFirst) {
            ASSERT_TRUE(s.LogIn());
        }
        ASSERT_TRUE(c.open(s));
        ASSERT_TRUE(s.Screen().WaitForText(c.shown));
        ASSERT_TRUE(
            s.Host().WaitForLine(Record::Syslog, "]: User root logged out due to time out", 20s));
        EXPECT_TRUE(s.AwaitWelcome());
        EXPECT_FALSE(s.Screen().CursorVisible());
        EXPECT_TRUE(s.Host().WaitForLine(
            Record::Audit,
            "action=lanyx.logout user=root service=lanyx success=1 reason=\"Time out\""));
        // Nothing of the dialog was applied.
        EXPECT_TRUE(s.Host().Matching(Record::Syslog, "has changed").empty());
        EXPECT_TRUE(s.Host().Matching(Record::Syslog, "Modified").empty());
        EXPECT_TRUE(s.Host().Matching(Record::Syslog, "Keyboard Layout").empty());
        EXPECT_TRUE(s.Host().Matching(Record::Syslog, "Lockdown mode").empty());
        const nlohmann::json state = s.Host().State();
        EXPECT_EQ(state["power"].value("state", ""), c.power);
        EXPECT_EQ(state["host"].value("hostname", ""), c.hostname);
        EXPECT_TRUE(s.Screen().Running());
    }
}

TEST(DialogIdle, NewConsoleLimitCountsFromTheNextKey) {
    // No limit at the start: the session would stay open for ever.
    Session s("default", {.settings = {{"lanyx-timeout", "0"}}, .faketime = kSpeed});
    ASSERT_TRUE(s.LogIn());
    ASSERT_TRUE(OpenTroubleshooting(s, "Modify LANYX idle timeout"));
    ASSERT_TRUE(s.Screen().WaitForText("Set idle timeout for LANYX access"));
    ASSERT_TRUE(s.Type("1") && s.Key(Keys::Enter));
    ASSERT_TRUE(s.Host().WaitForLine(Record::Syslog, "]: Modified Lanyx timeout to 1 minutes"));
    // A minute of the console's clock is three real seconds.
    ASSERT_TRUE(
        s.Host().WaitForLine(Record::Syslog, "]: User root logged out due to time out", 15s));
    EXPECT_TRUE(s.AwaitWelcome());
}

} // namespace
