// The console's spine on simulated hosts: start-up, keys, exit paths, signals, pid file,
// argument, top-level handler, dimming and the idle limit of a session. Most tests run the
// welcome screen; those that must see key codes or enter a session run the bare key test frame.
#include <chrono>
#include <functional>
#include <csignal>
#include <memory>
#include <string>

#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "harness/Console.hpp"
#include "harness/HostRoot.hpp"

using namespace LanyxE2E;

namespace {

constexpr const char* kPidFile = "/var/run/lanyx.pid";
constexpr int kKeyRow = 3, kReloadRow = 5, kSessionRow = 7, kTextColumn = 2;
// The welcome screen: the version line in the upper half, the addresses in the lower one.
constexpr int kVersionRow = 5, kWelcomeColumn = 8;
constexpr const char* kWelcomeReady = "To manage this host, go to:";
// Accelerated clocks: one real second is this many seconds for the console.
constexpr const char* kFast = "+0 x100";
constexpr const char* kFaster = "+0 x1000";

// What a row of the frame shows from the text column on (the box border left out).
std::string FrameText(const Console& console, int row)
{
    std::string text = console.Text(row, kTextColumn, 40);
    return text.erase(text.find_last_not_of(' ') + 1);
}

bool IsDimmed(const Cell& cell) { return cell.fg.IsIndex(6) && cell.bg.IsIndex(0); }
bool IsLit(const Cell& cell) { return cell.fg.IsIndex(7) && cell.bg.IsIndex(0); }
bool IsWelcomeLit(const Cell& cell) { return cell.fg.IsIndex(7) && cell.bg.IsIndex(6); }

// A pid that belonged to a process that has ended.
pid_t DeadPid()
{
    const pid_t pid = fork();
    if (pid == 0)
        _exit(0);
    int status = 0;
    waitpid(pid, &status, 0);
    return pid;
}

// Keys typed while a screen opens or reloads are dropped on purpose, so a screen's appearance
// alone does not say that input is read: a harmless key is repeated until its effect shows.
::testing::AssertionResult RepeatUntil(Console& console, const std::function<bool()>& shown, const std::string& what)
{
    return console.WaitFor(
        [&] {
            if (shown())
                return true;
            console.Send("x");
            console.Pump(200ms);
            return shown();
        },
        10s, what);
}

// Ends the dimming of the frame with a key and returns its code. Dimming drops keys typed while
// it happens, so a key that is dropped is followed by the next letter until one lights the screen;
// the caller then checks that the lighting key itself shows.
int WakeWithKey(Console& console, char first)
{
    char key = first;
    for (int attempt = 0; attempt < 20; ++attempt, ++key) {
        console.Send(std::string(1, key));
        if (console.WaitFor([&] { return IsLit(console.CellAt(1, kTextColumn)); }, 300ms, "lit"))
            return key;
    }
    ADD_FAILURE() << "no key lit the screen\n" << console.Describe();
    return key;
}

class Spine : public ::testing::Test {
protected:
    // The console with the welcome screen, as it runs on a host.
    std::unique_ptr<Console> StartWelcome(std::vector<std::string> args = {}, const std::string& faketime = "",
                                          const std::string& term = "xterm-256color")
    {
        ConsoleOptions options = LanyxOptions(root.Path(), std::move(args));
        options.faketime = faketime;
        options.term = term;
        auto console = std::make_unique<Console>(options);
        EXPECT_TRUE(console->WaitForFullScreen(kWelcomeReady));
        return console;
    }

    // The welcome screen reads keys: any key reloads it, so a new host name shows.
    ::testing::AssertionResult TakesKeys(Console& console, const std::string& newName)
    {
        root.Set("hostname", newName);
        return RepeatUntil(console, [&] { return console.Find("https://" + newName + "/").has_value(); },
                           "a key reloading the welcome screen");
    }

    // The console with the bare key test frame in place of the welcome screen, so that every key
    // code, the way into a session and the idle limit can be seen from outside; returned once
    // the frame takes keys.
    std::unique_ptr<Console> StartFrame(const std::string& faketime = "")
    {
        ConsoleOptions options = LanyxOptions(root.Path());
        options.env.emplace_back("LANYX_KEY_TEST_FRAME", "1");
        options.faketime = faketime;
        auto console = std::make_unique<Console>(options);
        EXPECT_TRUE(console->WaitForText("Last key: none"));
        EXPECT_TRUE(RepeatUntil(*console, [&] { return FrameText(*console, kKeyRow) == "Last key: 120"; },
                                "the frame taking keys"));
        return console;
    }

    ::testing::AssertionResult ShowsLastKey(Console& console, int code)
    {
        const std::string expected = "Last key: " + std::to_string(code);
        return console.WaitFor([&] { return FrameText(console, kKeyRow) == expected; }, 10s,
                               "row " + std::to_string(kKeyRow) + " showing \"" + expected + "\"");
    }

    ::testing::AssertionResult EntersSession(Console& console)
    {
        console.Send(Keys::F(9));
        return console.WaitForText("Session active");
    }

    // Lines of the system log written by the process with this pid.
    std::string Tag(const Console& console, const char* level) const
    {
        return std::string("user.") + level + " LANYX[" + std::to_string(console.Pid()) + "]: ";
    }

    HostRoot root;
};

// ---------------------------------------------------------------- start-up

TEST_F(Spine, StartIsLoggedAndThePaletteRedefined)
{
    auto console = StartWelcome();
    EXPECT_TRUE(root.WaitForLine(Record::Syslog, Tag(*console, "info") + "Starting LANYX"));
    // Logging is up before the first debug-level message could pass the mask.
    EXPECT_TRUE(root.Matching(Record::Syslog, ".debug LANYX[").empty());
    EXPECT_TRUE(IsWelcomeLit(console->CellAt(kVersionRow, kWelcomeColumn)));
    const std::pair<int, Rgb> palette[] = {
        {1, {255, 0, 0}}, {2, {170, 170, 170}}, {3, {255, 204, 0}}, {6, {85, 85, 85}}, {7, {255, 255, 255}}};
    for (const auto& [index, rgb] : palette)
        EXPECT_EQ(console->Redefined(index), rgb) << "colour " << index;
    // Black, and colours the console does not use, stay as the terminal has them.
    for (int index : {0, 4, 5})
        EXPECT_FALSE(console->Redefined(index)) << "colour " << index;
}

// ---------------------------------------------------------------- keys

TEST_F(Spine, KeysArriveThroughTheEscapeTable)
{
    auto console = StartFrame();
    const std::pair<std::string_view, int> keys[] = {
        {"\x1bOY", 276},   {"\x7f", 263},     {"\x1b[A", 259},   {"\x1b" "1", 265},  {"\x1b@", 276},
        {"\x1b!", 275},    {"\x1b[11~", 265}, {"\x1b[24~", 276}, {"\x1b[M", 265},    {"\x1b[X", 276},
        {"\x1bOP", 265},   {"\x1bOW", 272},   {"\x1bOB", 258},   {"\x1b[D", 260},    {"\x1bh", 262},
        {"\x1bk", 360},    {"\x1b+", 331},    {"\x1b-", 330},    {"\x1b?", 339},     {"\x1b/", 338},
        {"\x1b[2~", 331},  {"\x1b[3~", 330},  {"\x1b[1~", 262},  {"\x1b[4~", 360},   {"\x1b[5~", 339},
        {"\x1b[6~", 338},  {Keys::F(11), 275}, {Keys::Up, 259},  {Keys::Enter, 10},  {Keys::Tab, 9},
        {"\x08", 8},       {Keys::Escape, 27}};
    for (const auto& [bytes, code] : keys) {
        SCOPED_TRACE("key " + std::to_string(code));
        // A plain key in between, so that each key's own code has to appear.
        console->Send("y");
        ASSERT_TRUE(ShowsLastKey(*console, 121));
        console->Send(bytes);
        ASSERT_TRUE(ShowsLastKey(*console, code));
    }
    EXPECT_TRUE(console->Running());
}

// ---------------------------------------------------------------- exit paths

// Esc R counts as a resize; a resize ends the process, logging the new size when it is known.
TEST_F(Spine, ResizeEndsTheProcess)
{
    struct Case {
        int rows, cols;
        std::string_view key; // none: the terminal itself is resized to 100 x 30
        std::string logged;
    };
    const Case cases[] = {{25, 80, "\x1bR", "Resized window to 80x25"},
                          {0, 0, "\x1bR", ""},
                          {25, 80, "", "Resized window to 100x30"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.cols) + "x" + std::to_string(c.rows) + (c.key.empty() ? " resized" : " Esc R"));
        ConsoleOptions options = LanyxOptions(root.Path());
        options.rows = c.rows;
        options.cols = c.cols;
        Console console(options);
        ASSERT_TRUE(console.WaitForFullScreen(kWelcomeReady));
        if (c.key.empty())
            console.Resize(30, 100);
        else
            console.Send(c.key);
        ASSERT_TRUE(console.ExitsWith(0));
        ASSERT_TRUE(root.WaitForLine(Record::Syslog, Tag(console, "info") + "Starting LANYX"));
        if (c.logged.empty())
            EXPECT_TRUE(root.Matching(Record::Syslog, Tag(console, "info") + "Resized window").empty());
        else
            EXPECT_TRUE(root.WaitForLine(Record::Syslog, Tag(console, "info") + c.logged));
        EXPECT_TRUE(console.Modes().c_lflag & ICANON) << "terminal modes restored";
        EXPECT_TRUE(console.CursorVisible());
    }
}

// SIGUSR2 asks for an exit; outside a session it is taken at once.
class TerminatingSignal : public Spine, public ::testing::WithParamInterface<int> {};

TEST_P(TerminatingSignal, EndsWithStatusZeroAndRestoresTheTerminal)
{
    auto console = StartWelcome();
    ASSERT_FALSE(console->Modes().c_lflag & ICANON);
    ASSERT_TRUE(console->AltScreen());
    console->Signal(GetParam());
    ASSERT_TRUE(console->ExitsWith(0));
    const termios modes = console->Modes();
    EXPECT_TRUE(modes.c_lflag & ICANON);
    EXPECT_TRUE(modes.c_lflag & ECHO);
    EXPECT_FALSE(console->AltScreen());
    EXPECT_TRUE(console->CursorVisible());
    EXPECT_TRUE(root.Matching(Record::Syslog, "Resized window").empty());
}

INSTANTIATE_TEST_SUITE_P(Signals, TerminatingSignal, ::testing::Values(SIGTERM, SIGINT, SIGQUIT, SIGUSR2),
                         [](const auto& info) { return std::string(sigabbrev_np(info.param)); });

TEST_F(Spine, ExitRequestInASessionWaitsForItsEnd)
{
    auto console = StartFrame();
    // A session that ends without a request leaves the loop going.
    ASSERT_TRUE(EntersSession(*console));
    console->Send(Keys::F(8));
    ASSERT_TRUE(console->WaitForTextGone("Session active"));
    console->Send("a");
    ASSERT_TRUE(ShowsLastKey(*console, 97));

    ASSERT_TRUE(EntersSession(*console));
    console->Signal(SIGUSR2);
    // The loop goes on: keys after the request still arrive.
    for (int code : {98, 99}) {
        console->Send(std::string(1, static_cast<char>(code)));
        ASSERT_TRUE(ShowsLastKey(*console, code));
    }
    EXPECT_EQ(FrameText(*console, kSessionRow), "Session active");
    console->Send(Keys::F(8));
    EXPECT_TRUE(console->ExitsWith(0));
}

// The key test frame counts the reloads it is given.
TEST_F(Spine, ReloadSignalReachesTheFrameThatHasTheInput)
{
    auto console = StartFrame();
    console->Signal(SIGUSR1);
    ASSERT_TRUE(console->WaitForText("Reloaded 1"));
    EXPECT_EQ(console->Find("Reloaded 1"), std::make_optional(std::make_pair(kReloadRow, kTextColumn)));
    console->Signal(SIGUSR1);
    ASSERT_TRUE(console->WaitForText("Reloaded 2"));
    console->Send("a");
    EXPECT_TRUE(ShowsLastKey(*console, 97));
}

TEST_F(Spine, ExceptionReachesTheTopLevelHandler)
{
    for (bool inSession : {false, true}) {
        SCOPED_TRACE(inSession ? "in a session" : "outside a session");
        auto console = StartFrame();
        if (inSession) {
            ASSERT_TRUE(EntersSession(*console));
            console->Send("\x1b" "0"); // F10 from the escape table
        } else {
            console->Send(Keys::F(10));
        }
        ASSERT_TRUE(console->ExitsWith(0));
        EXPECT_TRUE(root.WaitForLine(Record::Syslog,
                                     Tag(*console, "err") + "LANYX aborted by exception: first frame test"));
        // Only this way out resets the palette.
        EXPECT_NE(console->Transcript().find("\x1b]R"), std::string::npos);
        EXPECT_TRUE(console->Modes().c_lflag & ICANON);
    }
}

// ---------------------------------------------------------------- pid file

TEST_F(Spine, PidFileNamesTheProcessWithoutNewline)
{
    // Absent, unreadable or naming a dead process: the start writes its own pid over it.
    for (const std::string& stale : {std::string(), std::string("garbage"), std::to_string(DeadPid()) + "\n"}) {
        SCOPED_TRACE("pid file holding \"" + stale + "\"");
        if (!stale.empty())
            root.WriteFile(kPidFile, stale);
        auto console = StartWelcome();
        const std::string expected = std::to_string(console->Pid());
        EXPECT_TRUE(console->WaitFor([&] { return root.ReadFile(kPidFile) == expected; }, 10s, "pid file rewritten"))
            << "pid file holds \"" << root.ReadFile(kPidFile) << "\"";
        console->Signal(SIGTERM);
        ASSERT_TRUE(console->ExitsWith(0));
    }
    EXPECT_TRUE(root.Matching(Record::Syslog, "Attempt to run multiple").empty());
}

TEST_F(Spine, PidFileOfARunningInstanceIsKept)
{
    auto first = StartWelcome();
    const std::string firstPid = std::to_string(first->Pid());
    ASSERT_TRUE(first->WaitFor([&] { return root.ReadFile(kPidFile) == firstPid; }));

    auto second = StartWelcome();
    EXPECT_TRUE(root.WaitForLine(Record::Syslog,
                                 Tag(*second, "err") + "Attempt to run multiple LANYX instances, not updating "));
    const auto line = root.Matching(Record::Syslog, "Attempt to run multiple LANYX instances");
    ASSERT_FALSE(line.empty());
    EXPECT_NE(line[0].find("lanyx.pid"), std::string::npos) << line[0];
    // The second instance runs on.
    EXPECT_TRUE(TakesKeys(*second, "second-instance"));
    EXPECT_EQ(root.ReadFile(kPidFile), firstPid);
}

// ---------------------------------------------------------------- argument

TEST_F(Spine, TerminalNumberArgument)
{
    // Of the valid numbers only the highest: a switch attempt must not move a real machine's display.
    const std::vector<std::vector<std::string>> cases = {{}, {"63"}, {"063"}, {"0"}, {"64"}, {"abc"}, {"-1"}};
    int round = 0;
    for (const auto& args : cases) {
        const bool given = !args.empty();
        const bool valid = given && args[0].ends_with("63");
        SCOPED_TRACE(given ? "argument " + args[0] : "no argument");
        auto console = StartWelcome(args);
        if (given && !valid) {
            // Logged before the log is opened under its own name, so only level and text are fixed.
            const std::string text = "Invalid VT specified for LANYX: " + args[0];
            ASSERT_TRUE(root.WaitForLine(Record::Syslog, text));
            EXPECT_NE(root.Matching(Record::Syslog, text).back().find(" user.err "), std::string::npos);
        } else {
            ASSERT_TRUE(root.WaitForLine(Record::Syslog, Tag(*console, "info") + "Starting LANYX"));
        }
        // The suspend character is cleared on the terminal only when a number was taken.
        EXPECT_EQ(console->Modes().c_cc[VSUSP], valid ? 0 : '\x1a');
        EXPECT_TRUE(TakesKeys(*console, "argument-" + std::to_string(++round)));
        console->Signal(SIGTERM);
        ASSERT_TRUE(console->ExitsWith(0));
    }
    EXPECT_EQ(root.Matching(Record::Syslog, "Invalid VT specified").size(), 4u);
}

// ---------------------------------------------------------------- dimming and the idle limit

TEST_F(Spine, ScreenDimsAfterAMinuteAndTheNextKeyIsDelivered)
{
    auto console = StartWelcome({}, kFast);
    const auto version = [&] { return console->CellAt(kVersionRow, kWelcomeColumn); };
    ASSERT_TRUE(IsWelcomeLit(version())) << version();
    // The texts dim one after another; the box and the panes with the refresh that ends it.
    ASSERT_TRUE(console->WaitFor(
        [&] {
            return IsDimmed(version()) && IsDimmed(console->CellAt(13, kWelcomeColumn)) &&
                   IsDimmed(console->CellAt(0, 0)) && IsDimmed(console->CellAt(18, 40));
        },
        10s, "the whole screen dimmed, box and lower half too"));

    // F4 wakes the screen and, being delivered, switches it to monochrome: standout on the
    // upper half. Dimming drops keys typed while it happens, so F4 is sent until one lands.
    bool woke = false;
    for (int attempt = 0; attempt < 20 && !woke; ++attempt) {
        console->Send(Keys::F(4));
        woke = console->WaitFor([&] { return !IsDimmed(version()); }, 300ms, "lit");
    }
    ASSERT_TRUE(woke) << console->Describe();
    EXPECT_TRUE(console->WaitFor([&] { return version().reverse; }, 10s, "the waking key acted on"))
        << "the key that ends the dimming is not swallowed: " << version();
    EXPECT_TRUE(console->Running());
}

// The limit as the host sets it ends sessions after a real login (the menu's own test); here,
// a limit of zero and the default taken when the host state cannot be read.
TEST_F(Spine, IdleLimitOfZeroAndTheDefault)
{
    root.Set("lanyx-timeout", "0");
    {
        auto console = StartFrame(kFaster);
        ASSERT_TRUE(EntersSession(*console));
        ASSERT_TRUE(console->WaitFor([&] { return IsDimmed(console->CellAt(1, kTextColumn)); }, 10s, "dimmed title"));
        // 1.5 seconds are 1500 seconds of the console's clock, past any default limit.
        EXPECT_FALSE(console->WaitForText("Session timed out", 1500ms));
        EXPECT_EQ(FrameText(*console, kSessionRow), "Session active");
        console->Signal(SIGTERM);
        ASSERT_TRUE(console->ExitsWith(0));
    }

    // A damaged state does not stop the start either.
    root.WriteFile("/var/lib/hostsim/state.json", "garbage");
    auto console = StartFrame(kFaster);
    EXPECT_TRUE(root.WaitForLine(Record::Syslog, Tag(*console, "info") + "Starting LANYX"));
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(EntersSession(*console));
    ASSERT_TRUE(console->WaitForText("Session timed out"));
    // 600 seconds of the console's clock are 0.6 seconds of ours.
    EXPECT_GE(std::chrono::steady_clock::now() - start, 550ms);
    // Outside the session the frame takes keys again.
    console->Send("a");
    EXPECT_TRUE(ShowsLastKey(*console, 97));
}

TEST_F(Spine, KeysRestartTheIdleClock)
{
    // 240 seconds are 2.4 seconds of ours; a key at every dimming (0.6 seconds) keeps the session
    // open past that in total, with room to spare on a loaded machine.
    root.Set("lanyx-timeout", "240");
    auto console = StartFrame(kFast);
    ASSERT_TRUE(EntersSession(*console));
    const auto start = std::chrono::steady_clock::now();
    char first = 'a';
    while (std::chrono::steady_clock::now() - start < 3s) {
        ASSERT_TRUE(console->WaitFor([&] { return IsDimmed(console->CellAt(1, kTextColumn)); }, 10s, "dimmed"));
        const int key = WakeWithKey(*console, first);
        ASSERT_TRUE(ShowsLastKey(*console, key));
        ASSERT_EQ(FrameText(*console, kSessionRow), "Session active");
        first = first == 'a' ? 'n' : 'a';
    }
}

} // namespace
