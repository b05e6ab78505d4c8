// The idle limit in the menu, inside each of its dialogs and behind F12, and a new limit set in
// its dialog taking effect at once; under accelerated clocks, so these tests run alone (see
// CMakeLists.txt).
#include <chrono>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "harness/Session.hpp"

using namespace LanyxE2E;
using Steps = std::vector<std::string>;

namespace {

// 120 seconds of the console's clock are 6 real seconds: room to reach the dialog by keys,
// each of which restarts the clock.
constexpr const char* kSpeed = "+0 x20";

// A session through `steps` (Session::Walk), then `keys`.
std::function<::testing::AssertionResult(Session&)>
Walk(Steps steps, std::initializer_list<std::string_view> keys = {}) {
    std::vector<std::string_view> after(keys);
    return [steps, after](Session& s) {
        if (auto walked = s.Walk(steps); !walked)
            return walked;
        for (std::string_view key : after)
            if (auto pressed = s.Press({key}); !pressed)
                return pressed;
        return ::testing::AssertionSuccess();
    };
}

TEST(DialogIdle, IdleLimitEndsTheSessionInsideEachDialog) {
    struct Case {
        const char* name;
        std::string term;
        std::function<::testing::AssertionResult(Session&)> open;
        const char* shown;
        const char* power = "on";
        const char* hostname = "changed-host"; // what the host has after the limit
    };
    const std::string xterm = "xterm-256color";
    // clang-format off
    const std::vector<Case> cases = {
        {"main menu", xterm, Walk({"@login"}), "Configure Password"},
        {"troubleshooting menu", xterm, Walk({"@login", "Troubleshooting Options"}), "Restart Management Agents"},
        {"shell time-outs", xterm, Walk({"@login", "Troubleshooting Options", "Modify Ostra Shell and SSH"}), "Availability timeout"},
        {"console time-out", xterm, Walk({"@login", "Troubleshooting Options", "Modify LANYX idle timeout"}), "LANYX idle timeout"},
        {"password", xterm, Walk({"@login", "Configure Password"}), "Old Password:"},
        {"keyboard", "xterm", Walk({"@login", "Configure Keyboard"}), "( ) Belgian"},
        {"shutdown", xterm, Walk({"@shutdown"}), "<F2> Shut Down"},
        {"waiting for the host to go down", xterm, Walk({"@shutdown"}, {Keys::F(2)}), "Shutdown in progress...", "off"},
        {"lockdown", xterm, Walk({"@login", "=Configure Lockdown Mode"}, {Keys::Enter}), "<Space> Toggle Selected"},
        {"reset question", xterm, Walk({"@login", "=Reset System Configuration"}, {Keys::Enter}),
         "Reset System Configuration now?"},
        // Reset, not restarted.
        {"restart after the reset", xterm, Walk({"@login", "=Reset System Configuration"}, {Keys::Enter, Keys::F(11)}),
         "Default settings are restored.", "on", "lanyx-lab01"},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto start = std::chrono::steady_clock::now();
        Session s("default", {.settings = {{"lanyx-timeout", "120"}, {"hostname", "changed-host"}},
                              .term = c.term,
                              .faketime = kSpeed});
        ASSERT_TRUE(c.open(s));
        ASSERT_TRUE(s.Screen().WaitForText(c.shown));
        ASSERT_TRUE(
            s.Host().WaitForLine(Record::Syslog, "]: User root logged out due to time out", 20s));
        // The limit runs from the last key, typed after the start: it cannot end any sooner.
        EXPECT_GE(std::chrono::steady_clock::now() - start, 5900ms);
        EXPECT_TRUE(s.AwaitWelcome());
        EXPECT_FALSE(s.Screen().CursorVisible());
        EXPECT_TRUE(s.Host().WaitForLine(
            Record::Audit,
            "action=lanyx.logout user=root service=lanyx success=1 reason=\"Time out\""));
        // Nothing of the dialog was applied.
        for (const char* line : {"has changed", "Modified", "Keyboard Layout", "Lockdown mode"})
            EXPECT_TRUE(s.Host().Matching(Record::Syslog, line).empty()) << line;
        const nlohmann::json state = s.Host().State();
        EXPECT_EQ(state["power"].value("state", ""), c.power);
        EXPECT_EQ(state["host"].value("hostname", ""), c.hostname);
        EXPECT_TRUE(s.Screen().Running());
    }
}

TEST(DialogIdle, NewConsoleLimitCountsFromTheNextKey) {
    // No limit at the start: the session would stay open for ever.
    Session s("default", {.settings = {{"lanyx-timeout", "0"}}, .faketime = kSpeed});
    ASSERT_TRUE(s.Walk({"@login", "Troubleshooting Options", "Modify LANYX idle timeout"}));
    ASSERT_TRUE(s.Screen().WaitForText("Set idle timeout for LANYX access"));
    ASSERT_TRUE(s.Type("1") && s.Key(Keys::Enter));
    ASSERT_TRUE(s.Host().WaitForLine(Record::Syslog, "]: Modified Lanyx timeout to 1 minutes"));
    // A minute of the console's clock is three real seconds.
    ASSERT_TRUE(
        s.Host().WaitForLine(Record::Syslog, "]: User root logged out due to time out", 15s));
    EXPECT_TRUE(s.AwaitWelcome());
}

} // namespace
