// The keyboard layout choice on the machine's own screen from the menu: what is ticked, what
// Enter applies, and the host afterwards. The choice from the login box is the login test's.
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "harness/Session.hpp"

using namespace LanyxE2E;
using nlohmann::json;

namespace {

constexpr const char* kMessage = "If you are having difficulty using your keyboard";

size_t Changes(const HostRoot& host, const std::string& layout) {
    return host.Matching(Record::Syslog, "]: Keyboard Layout changed to " + layout).size();
}

TEST(Keyboard, ChosenFromTheMenu) {
    // A plain xterm counts as the machine's own screen; the host starts on Croatian, the third
    // layout.
    Session s("default", {.settings = {{"keyboard-layout", "Croatian"}}, .term = "xterm"});
    Console& console = s.Screen();
    HostRoot& host = s.Host();
    ASSERT_TRUE(s.LogIn());

    struct Round {
        const char* name;
        std::vector<std::string_view> keys;
        std::string layout, loaded; // afterwards; the layout is also what the menu shows
    };
    // clang-format off
    const std::vector<Round> rounds = {
        {"Esc changes nothing", {Keys::Down, " ", Keys::Escape}, "Croatian", "US Default"},
        // Up at the top and letters change nothing; Space on the ticked line keeps it ticked.
        {"Space on the ticked line", {Keys::Up, "x", Keys::Down, Keys::Down, " ", Keys::Enter}, "Croatian", "Croatian"},
        {"Space ticks the selected line", {Keys::Down, " ", Keys::Enter}, "Brazilian", "Brazilian"},
        // Moving alone ticks nothing: Enter applies the ticked layout again, with its log line.
        {"moving alone ticks nothing", {Keys::Down, Keys::Down, Keys::Down, Keys::Enter}, "Brazilian", "Brazilian"},
    };
    // clang-format on
    std::string ticked = "Croatian";
    for (const Round& round : rounds) {
        SCOPED_TRACE(round.name);
        ASSERT_TRUE(s.OpenEntry("Configure Keyboard"));
        ASSERT_TRUE(console.WaitForText(kMessage));
        EXPECT_TRUE(console.Find("<Space> Toggle Selected"));
        EXPECT_TRUE(console.Find("(o) " + ticked)) << console.Describe();
        EXPECT_TRUE(console.Find("( ) Belgian"));
        for (std::string_view key : round.keys)
            ASSERT_TRUE(s.Press({key}));
        ASSERT_TRUE(console.WaitForTextGone(kMessage));
        ASSERT_TRUE(s.Settle());
        const json keyboard = host.State()["keyboard"];
        EXPECT_EQ(keyboard["layout"], round.layout);
        EXPECT_EQ(keyboard["loaded"], round.loaded);
        EXPECT_TRUE(console.Find(round.layout)) << console.Describe();
        ticked = round.layout;
    }
    EXPECT_EQ(Changes(host, "Brazilian"), 2u);
    EXPECT_EQ(Changes(host, "Croatian"), 1u);
}

} // namespace
