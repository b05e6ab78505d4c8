// The console's spine on simulated hosts: start-up, keys, exit paths, signals, pid file, argument
// and the top-level handler. Most tests run the welcome screen; those that must see key codes or
// enter a session run the bare key test frame.
#include <csignal>
#include <string>

#include <termios.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "harness/Session.hpp"

using namespace LanyxE2E;

namespace {

constexpr const char* kPidFile = "/var/run/lanyx.pid";
constexpr int kKeyRow = 3, kReloadRow = 5, kSessionRow = 7, kTextColumn = 2;

// What a row of the key test frame shows from the text column on.
std::string FrameText(const Console& console, int row) {
    return console.Text(row, kTextColumn, 40);
}

// Lines of the system log written by the process with this pid.
std::string Tag(const Console& console, const char* level) {
    return std::string("user.") + level + " LANYX[" + std::to_string(console.Pid()) + "]: ";
}

SessionOptions KeyFrame() {
    return SessionOptions{.keyTestFrame = true};
}

// Sends a key to the key test frame and checks the code it read.
::testing::AssertionResult ShowsCode(Session& s, std::string_view key, int code) {
    if (!s.Key(key))
        return ::testing::AssertionFailure() << "key not sent";
    const std::string expected = "Last key: " + std::to_string(code);
    return s.Screen().WaitFor([&] { return FrameText(s.Screen(), kKeyRow) == expected; }, 10s,
                              expected);
}

::testing::AssertionResult EntersSession(Session& s) {
    s.Key(Keys::F(9));
    return s.Screen().WaitForText("Session active");
}

// The welcome screen reads keys: any key reloads it, so a new host name shows.
::testing::AssertionResult TakesKeys(Session& s, Console& console, const std::string& newName) {
    s.Host().Set("hostname", newName);
    console.SendKey("x");
    return console.WaitForText("https://" + newName + "/");
}

// ---------------------------------------------------------------- start-up

TEST(Spine, StartIsLoggedThePaletteRedefinedAndThePidFileKept) {
    Session s;
    ASSERT_TRUE(s.AwaitWelcome());
    EXPECT_TRUE(s.Host().WaitForLine(Record::Syslog, Tag(s.Screen(), "info") + "Starting LANYX"));
    // Logging is up before the first debug-level message could pass the mask.
    EXPECT_TRUE(s.Host().Matching(Record::Syslog, ".debug LANYX[").empty());
    // clang-format off
    const std::pair<int, Rgb> palette[] = {
        {1, {255, 0, 0}}, {2, {170, 170, 170}}, {3, {255, 204, 0}}, {6, {85, 85, 85}}, {7, {255, 255, 255}}};
    // clang-format on
    for (const auto& [index, rgb] : palette)
        EXPECT_EQ(s.Screen().Redefined(index), rgb) << "colour " << index;
    // Black, and colours the console does not use, stay as the terminal has them.
    for (int index : {0, 4, 5})
        EXPECT_FALSE(s.Screen().Redefined(index)) << "colour " << index;

    // The pid file names the process (no newline). What the start does with a stale file is
    // checked in memory; here, a second instance finds it held, leaves it and runs on.
    const std::string firstPid = std::to_string(s.Screen().Pid());
    EXPECT_EQ(s.Host().Read(kPidFile), firstPid);
    Console second(LanyxOptions(s.Host().Path()));
    ASSERT_TRUE(s.Host().WaitForLine(Record::Syslog,
                                     Tag(second, "err") +
                                         "Attempt to run multiple LANYX instances, not updating "));
    EXPECT_NE(s.Host().Matching(Record::Syslog, "Attempt to run multiple")[0].find("lanyx.pid"),
              std::string::npos);
    EXPECT_TRUE(TakesKeys(s, second, "second-instance"));
    EXPECT_EQ(s.Host().Read(kPidFile), firstPid);
}

// ---------------------------------------------------------------- keys

TEST(Spine, KeysArriveThroughTheEscapeTable) {
    Session s("default", KeyFrame());
    // clang-format off
    const std::pair<std::string_view, int> keys[] = {
        {"\x1bOY", 276}, {"\x7f", 263}, {"\x1b[A", 259}, {"\x1b" "1", 265}, {"\x1b@", 276},
        {"\x1b!", 275}, {"\x1b[11~", 265}, {"\x1b[24~", 276}, {"\x1b[M", 265}, {"\x1b[X", 276},
        {"\x1bOP", 265}, {"\x1bOW", 272}, {"\x1bOB", 258}, {"\x1b[D", 260}, {"\x1bh", 262},
        {"\x1bk", 360}, {"\x1b+", 331}, {"\x1b-", 330}, {"\x1b?", 339}, {"\x1b/", 338},
        {"\x1b[2~", 331}, {"\x1b[3~", 330}, {"\x1b[1~", 262}, {"\x1b[4~", 360}, {"\x1b[5~", 339},
        {"\x1b[6~", 338}, {Keys::F(11), 275}, {Keys::Up, 259}, {Keys::Enter, 10}, {Keys::Tab, 9},
        {"\x08", 8}, {Keys::Escape, 27}, {"\x13", 19} /* no flow control: Ctrl-S is a key */};
    // clang-format on
    for (const auto& [bytes, code] : keys) {
        SCOPED_TRACE("key " + std::to_string(code));
        // A plain key in between, so that each key's own code has to appear.
        ASSERT_TRUE(ShowsCode(s, "y", 121));
        ASSERT_TRUE(ShowsCode(s, bytes, code));
    }
    // Ctrl-Z does not stop the console: nobody at its terminal could resume it.
    s.Screen().Send("\x1a");
    EXPECT_TRUE(ShowsCode(s, "a", 97));
    EXPECT_TRUE(s.Screen().Running());
}

// ---------------------------------------------------------------- exit paths

// Esc R counts as a resize; a resize ends the process, logging the new size when it is known.
TEST(Spine, ResizeEndsTheProcess) {
    struct Case {
        int rows, cols;
        std::string_view key; // none: the terminal itself is resized to 100 x 30
        std::string logged;
    };
    const Case cases[] = {{25, 80, "\x1bR", "Resized window to 80x25"},
                          {0, 0, "\x1bR", ""},
                          {25, 80, "", "Resized window to 100x30"}};
    Session s;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.cols) + "x" + std::to_string(c.rows) +
                     (c.key.empty() ? " resized" : " Esc R"));
        s.Restart({.rows = c.rows, .cols = c.cols});
        Console& console = s.Screen();
        ASSERT_TRUE(s.Settle());
        if (c.key.empty())
            console.Resize(30, 100);
        else
            s.Key(c.key);
        ASSERT_TRUE(console.ExitsWith(0));
        ASSERT_TRUE(s.Host().WaitForLine(Record::Syslog, Tag(console, "info") + "Starting LANYX"));
        if (c.logged.empty())
            EXPECT_TRUE(
                s.Host().Matching(Record::Syslog, Tag(console, "info") + "Resized window").empty());
        else
            EXPECT_TRUE(s.Host().WaitForLine(Record::Syslog, Tag(console, "info") + c.logged));
        EXPECT_TRUE(console.Modes().c_lflag & ICANON) << "terminal modes restored";
        EXPECT_TRUE(console.CursorVisible());
    }
}

// SIGUSR2 asks for an exit; outside a session it is taken at once.
TEST(Spine, TerminatingSignalsEndWithStatusZeroAndRestoreTheTerminal) {
    Session s;
    for (int signal : {SIGTERM, SIGINT, SIGQUIT, SIGUSR2}) {
        SCOPED_TRACE(sigabbrev_np(signal));
        s.Restart();
        Console& console = s.Screen();
        ASSERT_TRUE(s.AwaitWelcome());
        ASSERT_FALSE(console.Modes().c_lflag & ICANON);
        ASSERT_TRUE(console.AltScreen());
        console.Signal(signal);
        ASSERT_TRUE(console.ExitsWith(0));
        const termios modes = console.Modes();
        EXPECT_TRUE(modes.c_lflag & ICANON);
        EXPECT_TRUE(modes.c_lflag & ECHO);
        EXPECT_FALSE(console.AltScreen());
        EXPECT_TRUE(console.CursorVisible());
    }
    EXPECT_TRUE(s.Host().Matching(Record::Syslog, "Resized window").empty());
}

// The key test frame counts the reloads it is given; an exit request in a session waits for its
// end; an exception reaches the top-level handler.
TEST(Spine, ReloadExitRequestAndExceptionReachTheFrame) {
    Session s("default", KeyFrame());
    ASSERT_TRUE(s.Settle());
    for (const char* shown : {"Reloaded 1", "Reloaded 2"}) {
        s.Screen().Signal(SIGUSR1);
        ASSERT_TRUE(s.Screen().WaitForText(shown));
    }
    EXPECT_EQ(s.Screen().Find("Reloaded 2"),
              std::make_optional(std::make_pair(kReloadRow, kTextColumn)));
    // A session that ends without a request leaves the loop going.
    ASSERT_TRUE(EntersSession(s));
    s.Key(Keys::F(8));
    ASSERT_TRUE(s.Screen().WaitForTextGone("Session active"));
    ASSERT_TRUE(ShowsCode(s, "a", 97));

    ASSERT_TRUE(EntersSession(s));
    s.Screen().Signal(SIGUSR2);
    // The loop goes on: keys after the request still arrive.
    ASSERT_TRUE(ShowsCode(s, "b", 98));
    EXPECT_EQ(FrameText(s.Screen(), kSessionRow), "Session active");
    s.Key(Keys::F(8));
    EXPECT_TRUE(s.Screen().ExitsWith(0));

    // An exception, in a session or outside one, ends in the top-level handler.
    for (bool inSession : {false, true}) {
        SCOPED_TRACE(inSession ? "in a session" : "outside a session");
        s.Restart(KeyFrame());
        if (inSession) {
            ASSERT_TRUE(EntersSession(s));
            s.Key("\x1b"
                  "0"); // F10 from the escape table
        } else {
            s.Key(Keys::F(10));
        }
        Console& console = s.Screen();
        ASSERT_TRUE(console.ExitsWith(0));
        EXPECT_TRUE(s.Host().WaitForLine(
            Record::Syslog, Tag(console, "err") + "LANYX aborted by exception: first frame test"));
        // Only this way out resets the palette.
        EXPECT_NE(console.Transcript().find("\x1b]R"), std::string::npos);
        EXPECT_TRUE(console.Modes().c_lflag & ICANON);
    }
}

// ---------------------------------------------------------------- argument

TEST(Spine, TerminalNumberArgument) {
    // Of the valid numbers only the highest: a switch attempt must not move a real machine's
    // display. How the text is read is checked in memory; here, what a taken and a refused number
    // do.
    const std::vector<std::vector<std::string>> cases = {{}, {"63"}, {"64"}, {"abc"}};
    Session s;
    int round = 0;
    for (const auto& args : cases) {
        const bool given = !args.empty();
        const bool valid = given && args[0].ends_with("63");
        SCOPED_TRACE(given ? "argument " + args[0] : "no argument");
        if (given)
            s.Restart({.args = args});
        if (given && !valid) {
            // Logged before the log is opened under its own name, so only level and text are fixed.
            const std::string text = "Invalid VT specified for LANYX: " + args[0];
            ASSERT_TRUE(s.Host().WaitForLine(Record::Syslog, text));
            EXPECT_NE(s.Host().Matching(Record::Syslog, text).back().find(" user.err "),
                      std::string::npos);
        } else {
            ASSERT_TRUE(
                s.Host().WaitForLine(Record::Syslog, Tag(s.Screen(), "info") + "Starting LANYX"));
        }
        // The suspend character is cleared on the terminal only when a number was taken.
        ASSERT_TRUE(s.Settle());
        EXPECT_EQ(s.Screen().Modes().c_cc[VSUSP], valid ? 0 : '\x1a');
        EXPECT_TRUE(TakesKeys(s, s.Screen(), "argument-" + std::to_string(++round)));
    }
    EXPECT_EQ(s.Host().Matching(Record::Syslog, "Invalid VT specified").size(), 2u);
}

} // namespace
