// The idle limit inside the dialogs of the troubleshooting menu, the password change and the
// keyboard layout, and a new limit set in its dialog taking effect at once; under accelerated
// clocks, so these tests run alone (see CMakeLists.txt).
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "harness/Session.hpp"

using namespace LanyxE2E;

namespace {

// 120 seconds of the console's clock are 6 real seconds: room to reach the dialog by keys,
// each of which restarts the clock.
constexpr const char* kSpeed = "+0 x20";

::testing::AssertionResult OpenTroubleshooting(Session& s, const std::string& line)
{
    if (auto opened = s.OpenEntry("Troubleshooting Options"); !opened)
        return opened;
    if (auto shown = s.Screen().WaitForText("Troubleshooting Mode Options"); !shown)
        return shown;
    return line.empty() ? s.Settle() : s.OpenEntry(line);
}

TEST(DialogIdle, IdleLimitEndsTheSessionInsideEachDialog)
{
    struct Case {
        const char* name;
        std::string term;
        std::function<::testing::AssertionResult(Session&)> open;
        const char* shown;
    };
    const std::vector<Case> cases = {
        {"troubleshooting menu", "xterm-256color", [](Session& s) { return OpenTroubleshooting(s, ""); },
         "Restart Management Agents"},
        {"shell time-outs", "xterm-256color",
         [](Session& s) { return OpenTroubleshooting(s, "Modify Ostra Shell and SSH"); }, "Availability timeout"},
        {"console time-out", "xterm-256color",
         [](Session& s) { return OpenTroubleshooting(s, "Modify LANYX idle timeout"); }, "LANYX idle timeout"},
        {"password", "xterm-256color", [](Session& s) { return s.OpenEntry("Configure Password"); }, "Old Password:"},
        {"keyboard", "xterm", [](Session& s) { return s.OpenEntry("Configure Keyboard"); }, "( ) Belgian"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Session s("default", {.settings = {{"lanyx-timeout", "120"}}, .term = c.term, .faketime = kSpeed});
        ASSERT_TRUE(s.LogIn());
        ASSERT_TRUE(c.open(s));
        ASSERT_TRUE(s.Screen().WaitForText(c.shown));
        ASSERT_TRUE(s.Host().WaitForLine(Record::Syslog, "]: User root logged out due to time out", 20s));
        EXPECT_TRUE(s.AwaitWelcome());
        EXPECT_FALSE(s.Screen().CursorVisible());
        EXPECT_TRUE(s.Host().WaitForLine(Record::Audit,
                                         "action=lanyx.logout user=root service=lanyx success=1 reason=\"Time out\""));
        // Nothing of the dialog was applied.
        EXPECT_TRUE(s.Host().Matching(Record::Syslog, "has changed").empty());
        EXPECT_TRUE(s.Host().Matching(Record::Syslog, "Modified").empty());
        EXPECT_TRUE(s.Host().Matching(Record::Syslog, "Keyboard Layout").empty());
        EXPECT_TRUE(s.Screen().Running());
    }
}

TEST(DialogIdle, NewConsoleLimitCountsFromTheNextKey)
{
    // No limit at the start: the session would stay open for ever.
    Session s("default", {.settings = {{"lanyx-timeout", "0"}}, .faketime = kSpeed});
    ASSERT_TRUE(s.LogIn());
    ASSERT_TRUE(OpenTroubleshooting(s, "Modify LANYX idle timeout"));
    ASSERT_TRUE(s.Screen().WaitForText("Set idle timeout for LANYX access"));
    ASSERT_TRUE(s.Type("1") && s.Key(Keys::Enter));
    ASSERT_TRUE(s.Host().WaitForLine(Record::Syslog, "]: Modified Lanyx timeout to 1 minutes"));
    // A minute of the console's clock is three real seconds.
    ASSERT_TRUE(s.Host().WaitForLine(Record::Syslog, "]: User root logged out due to time out", 15s));
    EXPECT_TRUE(s.AwaitWelcome());
}

} // namespace
