// The console's spine on simulated hosts: start-up, keys, exit paths, signals, pid file,
// argument, top-level handler, dimming and the idle limit of a session. Most tests run the
// welcome screen; those that must see key codes or enter a session run the bare key test frame.
#include <chrono>
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

std::string Trimmed(std::string text)
{
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    return text;
}

// What a row of the frame shows from the text column on (the box border left out).
std::string FrameText(const Console& console, int row) { return Trimmed(console.Text(row, kTextColumn, 40)); }

bool IsDimmed(const Cell& cell) { return cell.fg.IsIndex(6) && cell.bg.IsIndex(0); }
bool IsLit(const Cell& cell) { return cell.fg.IsIndex(7) && cell.bg.IsIndex(0); }

// The console with the bare key test frame in place of the welcome screen, so that every key
// code, the way into a session and the idle limit can be seen from outside.
ConsoleOptions KeyTestOptions(const std::string& root, std::vector<std::string> args = {})
{
    ConsoleOptions options = LanyxOptions(root, std::move(args));
    options.env.emplace_back("LANYX_KEY_TEST_FRAME", "1");
    return options;
}

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

// Keys typed while a frame opens are dropped on purpose, so the frame's appearance alone does
// not say that input is read: a harmless key is repeated until the frame shows it.
::testing::AssertionResult AwaitInput(Console& console)
{
    return console.WaitFor(
        [&] {
            if (FrameText(console, kKeyRow) == "Last key: 120")
                return true;
            console.Send("x");
            console.Pump(200ms);
            return FrameText(console, kKeyRow) == "Last key: 120";
        },
        10s, "the frame taking keys");
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

bool IsWelcomeLit(const Cell& cell) { return cell.fg.IsIndex(7) && cell.bg.IsIndex(6); }

::testing::AssertionResult AwaitWelcome(Console& console)
{
    return console.WaitForFullScreen(kWelcomeReady);
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
        EXPECT_TRUE(AwaitWelcome(*console));
        return console;
    }

    // The welcome screen reads keys: any key reloads it, so a new host name shows. Keys typed
    // while a reload ends are dropped on purpose, so the key is repeated until it takes effect.
    ::testing::AssertionResult TakesKeys(Console& console, const std::string& newName)
    {
        root.Set("hostname", newName);
        const std::string line = "https://" + newName + "/";
        return console.WaitFor(
            [&] {
                if (console.Find(line))
                    return true;
                console.Send("x");
                console.Pump(200ms);
                return console.Find(line).has_value();
            },
            10s, "a key reloading the welcome screen");
    }

    std::unique_ptr<Console> Start(std::vector<std::string> args = {}, const std::string& faketime = "",
                                   const std::string& term = "xterm-256color")
    {
        ConsoleOptions options = KeyTestOptions(root.Path(), std::move(args));
        options.faketime = faketime;
        options.term = term;
        return std::make_unique<Console>(options);
    }

    // Starts the console and waits until its frame takes keys.
    std::unique_ptr<Console> StartFrame(std::vector<std::string> args = {}, const std::string& faketime = "",
                                        const std::string& term = "xterm-256color")
    {
        auto console = Start(std::move(args), faketime, term);
        EXPECT_TRUE(console->WaitForText("Last key: none"));
        EXPECT_TRUE(AwaitInput(*console));
        return console;
    }

    ::testing::AssertionResult ShowsLastKey(Console& console, int code)
    {
        const std::string expected = "Last key: " + std::to_string(code);
        return console.WaitFor([&] { return FrameText(console, kKeyRow) == expected; }, 10s,
                               "row " + std::to_string(kKeyRow) + " showing \"" + expected + "\"");
    }

    // Lines of the system log written by the process with this pid.
    std::string Tag(const Console& console, const char* level) const
    {
        return std::string("user.") + level + " LANYX[" + std::to_string(console.Pid()) + "]: ";
    }

    HostRoot root;
};

// ---------------------------------------------------------------- start-up

TEST_F(Spine, StartShowsTheWelcomeScreenAndLogsTheStart)
{
    auto console = StartWelcome();
    EXPECT_EQ(console->Find(kWelcomeReady), std::make_optional(std::make_pair(13, kWelcomeColumn)));
    EXPECT_TRUE(root.WaitForLine(Record::Syslog, Tag(*console, "info") + "Starting LANYX"));
    // Logging is up before the first debug-level message could pass the mask.
    EXPECT_TRUE(root.Matching(Record::Syslog, ".debug LANYX[").empty());

    // White on dark grey above, on amber below, inside a box over the whole terminal.
    const Cell version = console->CellAt(kVersionRow, kWelcomeColumn);
    EXPECT_TRUE(IsWelcomeLit(version)) << version;
    EXPECT_FALSE(version.reverse) << version;
    EXPECT_TRUE(console->CellAt(18, 40).bg.IsIndex(3)) << console->CellAt(18, 40);
    EXPECT_EQ(console->CellAt(0, 0).text, "┌") << console->Describe();
    EXPECT_EQ(console->CellAt(24, 79).text, "┘") << console->Describe();
    EXPECT_FALSE(console->CursorVisible());
}

TEST_F(Spine, PaletteIsRedefinedOnAColourTerminal)
{
    auto console = StartWelcome();
    EXPECT_EQ(console->Redefined(1), (Rgb{255, 0, 0}));
    EXPECT_EQ(console->Redefined(2), (Rgb{170, 170, 170}));
    EXPECT_EQ(console->Redefined(3), (Rgb{255, 204, 0}));
    EXPECT_EQ(console->Redefined(6), (Rgb{85, 85, 85}));
    EXPECT_EQ(console->Redefined(7), (Rgb{255, 255, 255}));
    EXPECT_FALSE(console->Redefined(0)) << "black stays as the terminal has it";
    EXPECT_FALSE(console->Redefined(4));
    EXPECT_FALSE(console->Redefined(5));
}

// "linux" on something that is no virtual terminal becomes "vt102": no colour, standout instead.
TEST_F(Spine, MonochromeTerminalShowsDarkZonesInStandout)
{
    int round = 0;
    for (const char* term : {"linux", ""}) {
        SCOPED_TRACE(std::string("TERM=") + term);
        auto console = StartWelcome({}, "", term);
        const Cell version = console->CellAt(kVersionRow, kWelcomeColumn);
        EXPECT_TRUE(version.reverse) << version;
        EXPECT_EQ(version.fg.kind, Color::Kind::Default) << version;
        EXPECT_EQ(version.bg.kind, Color::Kind::Default) << version;
        EXPECT_FALSE(console->CellAt(13, kWelcomeColumn).reverse) << "amber has no standout";
        EXPECT_FALSE(console->Redefined(6)) << "no colour is redefined";
        EXPECT_TRUE(TakesKeys(*console, "mono-" + std::to_string(++round)));
    }
}

// The welcome screen cannot stand without the state (its own test follows that end); the start
// up to the first frame does not depend on it.
TEST_F(Spine, DamagedStateDoesNotStopTheStart)
{
    root.WriteFile("/var/lib/hostsim/state.json", "{ this is not json");
    auto console = StartFrame();
    EXPECT_TRUE(root.WaitForLine(Record::Syslog, Tag(*console, "info") + "Starting LANYX"));
    console->Send("a");
    EXPECT_TRUE(ShowsLastKey(*console, 97));
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

TEST_F(Spine, EscapeRIsAResizeThatEndsTheProcess)
{
    auto console = StartWelcome();
    console->Send("\x1bR");
    ASSERT_TRUE(console->ExitsWith(0));
    EXPECT_TRUE(root.WaitForLine(Record::Syslog, Tag(*console, "info") + "Resized window to 80x25"));
    EXPECT_TRUE(console->Modes().c_lflag & ICANON) << "terminal modes restored";
    EXPECT_TRUE(console->CursorVisible());
}

TEST_F(Spine, EscapeRWithoutAKnownSizeEndsWithoutTheResizeLine)
{
    ConsoleOptions options = LanyxOptions(root.Path());
    options.rows = 0;
    options.cols = 0;
    Console console(options);
    ASSERT_TRUE(AwaitWelcome(console));
    console.Send("\x1bR");
    ASSERT_TRUE(console.ExitsWith(0));
    EXPECT_TRUE(root.WaitForLine(Record::Syslog, "Starting LANYX"));
    EXPECT_TRUE(root.Matching(Record::Syslog, "Resized window").empty());
}

TEST_F(Spine, TerminalResizeLogsTheNewSizeAndEnds)
{
    auto console = StartWelcome();
    console->Resize(30, 100);
    ASSERT_TRUE(console->ExitsWith(0));
    EXPECT_TRUE(root.WaitForLine(Record::Syslog, Tag(*console, "info") + "Resized window to 100x30"));
    EXPECT_TRUE(console->Modes().c_lflag & ECHO);
}

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

INSTANTIATE_TEST_SUITE_P(Signals, TerminatingSignal, ::testing::Values(SIGTERM, SIGINT, SIGQUIT),
                         [](const auto& info) { return std::string(sigabbrev_np(info.param)); });

TEST_F(Spine, ExitRequestOutsideASessionEnds)
{
    auto console = StartWelcome();
    console->Signal(SIGUSR2);
    EXPECT_TRUE(console->ExitsWith(0));
}

TEST_F(Spine, ExitRequestInASessionWaitsForItsEnd)
{
    auto console = StartFrame();
    console->Send(Keys::F(9));
    ASSERT_TRUE(console->WaitForText("Session active"));
    console->Signal(SIGUSR2);
    // The loop goes on: keys after the request still arrive.
    for (int code : {97, 98, 99}) {
        console->Send(std::string(1, static_cast<char>(code)));
        ASSERT_TRUE(ShowsLastKey(*console, code));
    }
    EXPECT_TRUE(console->Running());
    EXPECT_EQ(FrameText(*console, kSessionRow), "Session active");
    console->Send(Keys::F(8));
    EXPECT_TRUE(console->ExitsWith(0));
}

TEST_F(Spine, SessionEndWithoutExitRequestGoesOn)
{
    auto console = StartFrame();
    console->Send(Keys::F(9));
    ASSERT_TRUE(console->WaitForText("Session active"));
    console->Send(Keys::F(8));
    ASSERT_TRUE(console->WaitForTextGone("Session active"));
    console->Send("a");
    EXPECT_TRUE(ShowsLastKey(*console, 97));
    EXPECT_TRUE(console->Running());
}

TEST_F(Spine, ReloadSignalReloadsTheWelcomeScreen)
{
    auto console = StartWelcome();
    for (const char* name : {"first-reload", "second-reload"}) {
        root.Set("hostname", name);
        console->Signal(SIGUSR1);
        ASSERT_TRUE(console->WaitForText(std::string("https://") + name + "/"));
        EXPECT_EQ(console->Find(std::string("https://") + name + "/"), std::make_optional(std::make_pair(14, kWelcomeColumn)));
    }
    EXPECT_TRUE(TakesKeys(*console, "after-reloads"));
    EXPECT_TRUE(console->Running());
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
    auto console = StartFrame();
    console->Send(Keys::F(10));
    ASSERT_TRUE(console->ExitsWith(0));
    EXPECT_TRUE(root.WaitForLine(Record::Syslog, Tag(*console, "err") + "LANYX aborted by exception: first frame test"));
    // Only this way out resets the palette.
    EXPECT_NE(console->Transcript().find("\x1b]R"), std::string::npos);
    EXPECT_TRUE(console->Modes().c_lflag & ICANON);
}

TEST_F(Spine, ExceptionInASessionReachesTheTopLevelHandler)
{
    auto console = StartFrame();
    console->Send(Keys::F(9));
    ASSERT_TRUE(console->WaitForText("Session active"));
    console->Send("\x1b" "0"); // F10 from the escape table
    ASSERT_TRUE(console->ExitsWith(0));
    EXPECT_TRUE(root.WaitForLine(Record::Syslog, "LANYX aborted by exception: first frame test"));
}

// ---------------------------------------------------------------- pid file

TEST_F(Spine, PidFileIsWrittenWithoutNewline)
{
    auto console = StartWelcome();
    const std::string expected = std::to_string(console->Pid());
    EXPECT_TRUE(console->WaitFor([&] { return root.ReadFile(kPidFile) == expected; }, 10s, "pid file naming the process"))
        << "pid file holds \"" << root.ReadFile(kPidFile) << "\"";
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
    EXPECT_EQ(root.ReadFile(kPidFile), firstPid);
    // The second instance runs on.
    EXPECT_TRUE(TakesKeys(*second, "second-instance"));
    EXPECT_EQ(root.ReadFile(kPidFile), firstPid);
}

TEST_F(Spine, StalePidFileIsOverwritten)
{
    // The contents themselves are the unit tests' matter; here, the start that replaces them.
    for (const std::string& stale : {std::string("garbage"), std::to_string(DeadPid()) + "\n"}) {
        SCOPED_TRACE("pid file holding \"" + stale + "\"");
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

// ---------------------------------------------------------------- argument

TEST_F(Spine, InvalidTerminalNumberIsLoggedAndIgnored)
{
    for (const char* arg : {"0", "64", "abc", "-1"}) {
        SCOPED_TRACE(std::string("argument ") + arg);
        auto console = StartWelcome({arg});
        // Logged before the log is opened under its own name, so only level and text are fixed.
        const std::string text = std::string("Invalid VT specified for LANYX: ") + arg;
        ASSERT_TRUE(root.WaitForLine(Record::Syslog, text));
        const auto lines = root.Matching(Record::Syslog, text);
        EXPECT_NE(lines.back().find(" user.err "), std::string::npos) << lines.back();
        // Without a terminal number the suspend character stays.
        EXPECT_EQ(console->Modes().c_cc[VSUSP], '\x1a');
        EXPECT_TRUE(TakesKeys(*console, std::string("argument-") + (arg[0] == '-' ? "minus" : arg)));
        console->Signal(SIGTERM);
        ASSERT_TRUE(console->ExitsWith(0));
    }
}

TEST_F(Spine, TerminalNumberInRangeIsAccepted)
{
    // Only the highest number: a switch attempt must not move a real machine's display.
    for (const char* arg : {"63", "063"}) {
        SCOPED_TRACE(std::string("argument ") + arg);
        auto console = StartWelcome({arg});
        ASSERT_TRUE(root.WaitForLine(Record::Syslog, Tag(*console, "info") + "Starting LANYX"));
        // The suspend character is cleared on the terminal when a number was given.
        EXPECT_EQ(console->Modes().c_cc[VSUSP], 0);
        EXPECT_TRUE(TakesKeys(*console, std::string("argument-") + (arg[0] == '-' ? "minus" : arg)));
        console->Signal(SIGTERM);
        ASSERT_TRUE(console->ExitsWith(0));
    }
    EXPECT_TRUE(root.Matching(Record::Syslog, "Invalid VT specified").empty());
}

TEST_F(Spine, NoArgumentLeavesSuspendCharacter)
{
    auto console = StartWelcome();
    EXPECT_EQ(console->Modes().c_cc[VSUSP], '\x1a');
    EXPECT_TRUE(root.Matching(Record::Syslog, "Invalid VT specified").empty());
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

TEST_F(Spine, SessionEndsAtTheIdleLimit)
{
    root.Set("lanyx-timeout", "120");
    auto console = StartFrame({}, kFast);
    const auto start = std::chrono::steady_clock::now();
    console->Send(Keys::F(9));
    ASSERT_TRUE(console->WaitForText("Session active"));
    // Dimmed first, at one minute.
    EXPECT_TRUE(console->WaitFor([&] { return IsDimmed(console->CellAt(1, kTextColumn)); }, 10s, "dimmed title"));
    ASSERT_TRUE(console->WaitForText("Session timed out"));
    // 120 seconds of the console's clock are 1.2 seconds of ours; it cannot be sooner.
    EXPECT_GE(std::chrono::steady_clock::now() - start, 1100ms);
    EXPECT_EQ(FrameText(*console, kSessionRow), "Session timed out");
    // Outside the session the frame takes keys again.
    console->Send("a");
    EXPECT_TRUE(ShowsLastKey(*console, 97));
    EXPECT_TRUE(console->Running());
}

TEST_F(Spine, IdleLimitZeroNeverEndsTheSession)
{
    root.Set("lanyx-timeout", "0");
    auto console = StartFrame({}, kFaster);
    console->Send(Keys::F(9));
    ASSERT_TRUE(console->WaitForText("Session active"));
    ASSERT_TRUE(console->WaitFor([&] { return IsDimmed(console->CellAt(1, kTextColumn)); }, 10s, "dimmed title"));
    // 1.5 seconds are 1500 seconds of the console's clock, past any default limit.
    EXPECT_FALSE(console->WaitForText("Session timed out", 1500ms));
    EXPECT_EQ(FrameText(*console, kSessionRow), "Session active");
    console->Send("a");
    EXPECT_TRUE(ShowsLastKey(*console, 97));
}

TEST_F(Spine, DamagedStateGivesTheDefaultIdleLimit)
{
    root.WriteFile("/var/lib/hostsim/state.json", "garbage");
    auto console = StartFrame({}, kFaster);
    const auto start = std::chrono::steady_clock::now();
    console->Send(Keys::F(9));
    ASSERT_TRUE(console->WaitForText("Session active"));
    ASSERT_TRUE(console->WaitForText("Session timed out"));
    // 600 seconds of the console's clock are 0.6 seconds of ours.
    EXPECT_GE(std::chrono::steady_clock::now() - start, 550ms);
}

TEST_F(Spine, KeysRestartTheIdleClock)
{
    // 240 seconds are 2.4 seconds of ours; a key at every dimming (0.6 seconds) keeps the session
    // open past that in total, with room to spare on a loaded machine.
    root.Set("lanyx-timeout", "240");
    auto console = StartFrame({}, kFast);
    console->Send(Keys::F(9));
    ASSERT_TRUE(console->WaitForText("Session active"));
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
