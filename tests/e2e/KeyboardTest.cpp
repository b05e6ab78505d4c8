// The keyboard layout choice on the machine's own screen, from the menu and from the login box
// before anyone has logged in: what is ticked, what Enter applies, and the host afterwards.
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "harness/Session.hpp"

using namespace LanyxE2E;
using nlohmann::json;

namespace {

constexpr const char* kMessage = "If you are having difficulty using your keyboard";

// A plain xterm counts as the machine's own screen; the host starts on Croatian, the third layout.
SessionOptions ConsoleScreen() {
    return {.settings = {{"keyboard-layout", "Croatian"}}, .term = "xterm"};
}

json Keyboard(const HostRoot& host) {
    const json state = host.State();
    return {{"layout", state["keyboard"]["layout"]}, {"loaded", state["keyboard"]["loaded"]}};
}

size_t Changes(const HostRoot& host, const std::string& layout) {
    return host.Matching(Record::Syslog, "]: Keyboard Layout changed to " + layout).size();
}

TEST(Keyboard, ChosenFromTheMenu) {
    Session s("default", ConsoleScreen());
    Console& console = s.Screen();
    HostRoot& host = s.Host();
    ASSERT_TRUE(s.LogIn());

    struct Round {
        const char* name;
        std::vector<std::string_view> keys;
        json keyboard;    // afterwards
        std::string pane; // the layout the menu shows afterwards
    };
    const std::vector<Round> rounds = {
        {"Esc changes nothing",
         {Keys::Down, " ", Keys::Escape},
         {{"layout", "Croatian"}, {"loaded", "US Default"}},
         "Croatian"},
        {"Space ticks the selected line",
         {Keys::Down, " ", Keys::Enter},
         {{"layout", "Brazilian"}, {"loaded", "Brazilian"}},
         "Brazilian"},
        // Moving alone ticks nothing: Enter applies the ticked layout again, with its log line.
        {"moving alone ticks nothing",
         {Keys::Down, Keys::Down, Keys::Down, Keys::Enter},
         {{"layout", "Brazilian"}, {"loaded", "Brazilian"}},
         "Brazilian"},
    };
    for (const Round& round : rounds) {
        SCOPED_TRACE(round.name);
        ASSERT_TRUE(s.OpenEntry("Configure Keyboard"));
        ASSERT_TRUE(console.WaitForText(kMessage));
        EXPECT_TRUE(console.Find("<Space> Toggle Selected"));
        EXPECT_TRUE(console.Find("( ) Belgian"));
        for (std::string_view key : round.keys)
            ASSERT_TRUE(s.Press({key}));
        ASSERT_TRUE(console.WaitForTextGone(kMessage));
        ASSERT_TRUE(s.Settle());
        EXPECT_EQ(Keyboard(host), round.keyboard);
        EXPECT_TRUE(console.Find(round.pane)) << console.Describe();
    }
    EXPECT_EQ(Changes(host, "Brazilian"), 2u);
    EXPECT_EQ(Changes(host, "Croatian"), 0u);
}

TEST(Keyboard, TickedLayoutShownAndKeptBySpaceOnIt) {
    Session s("default", ConsoleScreen());
    Console& console = s.Screen();
    ASSERT_TRUE(s.LogIn());
    ASSERT_TRUE(s.OpenEntry("Configure Keyboard"));
    ASSERT_TRUE(console.WaitForText("(o) Croatian"));
    EXPECT_TRUE(console.Find("( ) Brazilian"));
    // Space on the ticked line keeps it ticked; Up at the top and letters change nothing.
    ASSERT_TRUE(s.Press({Keys::Up, "x", Keys::Down, Keys::Down, " "}));
    EXPECT_TRUE(console.Find("(o) Croatian"));
    ASSERT_TRUE(s.Press({Keys::Enter}));
    ASSERT_TRUE(s.Host().WaitForLine(Record::Syslog, "]: Keyboard Layout changed to Croatian"));
}

TEST(Keyboard, ChosenAtTheLoginBeforeAnyoneLogsIn) {
    Session s("default", ConsoleScreen());
    Console& console = s.Screen();
    HostRoot& host = s.Host();
    ASSERT_TRUE(s.OpenLogin());
    EXPECT_TRUE(console.Find("Configured Keyboard (Croatian)"));
    ASSERT_TRUE(s.Press({Keys::Up, Keys::Enter}));
    ASSERT_TRUE(console.WaitForText(kMessage));
    ASSERT_TRUE(s.Press({" ", Keys::Enter}));
    ASSERT_TRUE(console.WaitForText("Configured Keyboard (Belgian)"));
    EXPECT_EQ(Keyboard(host), json({{"layout", "Belgian"}, {"loaded", "Belgian"}}));
    EXPECT_EQ(Changes(host, "Belgian"), 1u);
    // The box is as before: the login goes on from the name line.
    ASSERT_TRUE(s.Press({Keys::Down}));
    ASSERT_TRUE(s.Type("root") && s.Key(Keys::Enter) && s.Type(kRootPassword) &&
                s.Key(Keys::Enter));
    EXPECT_TRUE(console.WaitForText("System Customization"));
}

} // namespace
