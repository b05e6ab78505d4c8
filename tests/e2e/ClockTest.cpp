// Dimming after a minute without a key, the lighting after it and the idle limit of a session,
// under accelerated clocks. These tests run alone (see CMakeLists.txt): they compare the console's
// clock with the wall clock.
#include <chrono>
#include <csignal>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "harness/Session.hpp"

using namespace LanyxE2E;

namespace {

// One real second is this many seconds for the console.
constexpr const char* kFast = "+0 x100";
constexpr const char* kFaster = "+0 x1000";
// The welcome screen: the version line in the upper half; the key test frame: its title.
constexpr int kVersionRow = 5, kWelcomeColumn = 8, kFrameRow = 1, kFrameColumn = 2;
// The login box: its title.
constexpr int kBoxTitleRow = 7, kBoxTitleColumn = 13;

bool IsDimmed(const Cell& cell) {
    return cell.fg.IsIndex(6) && cell.bg.IsIndex(0);
}

::testing::AssertionResult Dims(Console& console, int row, int col) {
    return console.WaitFor([&] { return IsDimmed(console.CellAt(row, col)); }, 10s, "dimmed");
}

std::string LastKey(const Console& console) {
    return console.Text(3, kFrameColumn, 20);
}

// The whole screen dims; any key lights each cell again in the colours it had, the login box
// above it too, and the waking key is not swallowed.
TEST(Clock, ScreensDimWholeAndAKeyLightsThemAgain) {
    Session s("default", {.faketime = kFast});
    Console& console = s.Screen();
    const auto version = [&] { return console.CellAt(kVersionRow, kWelcomeColumn); };
    ASSERT_TRUE(s.AwaitWelcome());
    EXPECT_TRUE(version().fg.IsIndex(7) && version().bg.IsIndex(6)) << version();
    // Text and blank cells of both halves, the box and the footer.
    const std::pair<int, int> cells[] = {{kVersionRow, kWelcomeColumn},
                                         {6, 10},
                                         {13, kWelcomeColumn},
                                         {14, 10},
                                         {18, 40},
                                         {0, 0},
                                         {23, 2}};
    std::vector<Cell> lit;
    for (const auto& [row, col] : cells)
        lit.push_back(console.CellAt(row, col));
    // The texts dim one after another; the box and the panes with the refresh that ends it.
    ASSERT_TRUE(console.WaitFor(
        [&] {
            return IsDimmed(version()) && IsDimmed(console.CellAt(13, kWelcomeColumn)) &&
                   IsDimmed(console.CellAt(0, 0)) && IsDimmed(console.CellAt(18, 40));
        },
        10s, "the whole screen dimmed, box and lower half too"));
    ASSERT_TRUE(s.Press({"x"}));
    for (size_t i = 0; i < std::size(cells); ++i) {
        const Cell now = console.CellAt(cells[i].first, cells[i].second);
        EXPECT_TRUE(now.fg == lit[i].fg && now.bg == lit[i].bg)
            << cells[i].first << "," << cells[i].second << ": " << now << " instead of " << lit[i]
            << "\n"
            << console.Describe();
    }

    ASSERT_TRUE(s.OpenLogin());
    ASSERT_TRUE(Dims(console, kBoxTitleRow, kBoxTitleColumn));
    ASSERT_TRUE(s.Press({Keys::Down}));
    EXPECT_FALSE(IsDimmed(console.CellAt(kBoxTitleRow, kBoxTitleColumn)))
        << "the login box stays dimmed after a key\n"
        << console.Describe();

    // F4 on a dimmed screen switches to monochrome: standout on the upper half.
    ASSERT_TRUE(s.Key(Keys::Escape));
    ASSERT_TRUE(s.AwaitWelcome());
    ASSERT_TRUE(Dims(console, kVersionRow, kWelcomeColumn));
    s.Key(Keys::F(4));
    EXPECT_TRUE(console.WaitFor([&] { return version().reverse; }, 10s, "the waking key acted on"))
        << version();
}

TEST(Clock, KeysRestartTheIdleClock) {
    // 240 seconds are 2.4 seconds of ours; a key at every dimming (0.6 seconds) keeps the session
    // open past that in total.
    Session s("default",
              {.settings = {{"lanyx-timeout", "240"}}, .faketime = kFast, .keyTestFrame = true});
    Console& console = s.Screen();
    s.Key(Keys::F(9));
    ASSERT_TRUE(console.WaitForText("Session active"));
    const auto start = std::chrono::steady_clock::now();
    for (char key = 'a'; std::chrono::steady_clock::now() - start < 3s;
         key = key == 'a' ? 'n' : 'a') {
        ASSERT_TRUE(Dims(console, kFrameRow, kFrameColumn));
        s.Key(std::string(1, key));
        ASSERT_TRUE(console.WaitFor(
            [&] { return LastKey(console) == "Last key: " + std::to_string(key); }));
        EXPECT_FALSE(IsDimmed(console.CellAt(kFrameRow, kFrameColumn)));
        ASSERT_TRUE(console.Find("Session active"));
    }
}

// The limit as the host sets it ends sessions after a real login (below, and in each dialog in
// the dialog idle test); here, a limit of zero and the default taken when the host state cannot
// be read.
TEST(Clock, IdleLimitOfZeroAndTheDefault) {
    Session s("default",
              {.settings = {{"lanyx-timeout", "0"}}, .faketime = kFaster, .keyTestFrame = true});
    s.Key(Keys::F(9));
    ASSERT_TRUE(s.Screen().WaitForText("Session active"));
    ASSERT_TRUE(Dims(s.Screen(), kFrameRow, kFrameColumn));
    // 1.5 seconds are 1500 seconds of the console's clock, past any default limit.
    EXPECT_FALSE(s.Screen().WaitForText("Session timed out", 1500ms));

    // A damaged state does not stop the start either.
    s.Restart(
        {.prepare = [](HostRoot& host) { host.Write("/var/lib/hostsim/state.json", "garbage"); },
         .faketime = kFaster,
         .keyTestFrame = true});
    const auto start = std::chrono::steady_clock::now();
    s.Key(Keys::F(9));
    ASSERT_TRUE(s.Screen().WaitForText("Session timed out"));
    // 600 seconds of the console's clock are 0.6 seconds of ours.
    EXPECT_GE(std::chrono::steady_clock::now() - start, 550ms);
}

TEST(Clock, IdleLimitInTheLoginBoxEndsTheRoundWithTheLastUser) {
    // A limit of 60 seconds is 3 real seconds at twenty times the speed.
    Session s("default", {.settings = {{"lanyx-timeout", "60"}}, .faketime = "+0 x20"});
    ASSERT_TRUE(s.OpenLogin());
    // An expired account gets past the password, so it is the user the time-out names.
    s.Type("expired");
    s.Key(Keys::Enter);
    s.Type("expired-Pass1");
    s.Key(Keys::Enter);
    ASSERT_TRUE(s.Screen().WaitForText("Password has expired."));
    s.Key(Keys::Enter);
    ASSERT_TRUE(s.Host().WaitForLine(Record::Syslog, "]: User expired logged out due to time out"));
    ASSERT_TRUE(s.AwaitWelcome());
    EXPECT_TRUE(s.Host().WaitForLine(
        Record::Audit,
        "action=lanyx.logout user=expired service=lanyx success=1 reason=\"Time out\""));
    // The welcome screen is lit again and takes F2 once more.
    const Cell version = s.Screen().CellAt(kVersionRow, kWelcomeColumn);
    EXPECT_TRUE(version.fg.IsIndex(7) && version.bg.IsIndex(6)) << version;
    EXPECT_TRUE(s.OpenLogin());
}

} // namespace
