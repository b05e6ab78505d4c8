// The harness checked against a small curses program and the shell, so that a failing console
// test can be trusted to point at the console.
#include <chrono>
#include <csignal>
#include <string>

#include <gtest/gtest.h>

#include "harness/Console.hpp"

using namespace LanyxE2E;

namespace {

ConsoleOptions Probe(std::vector<std::string> args = {}) {
    ConsoleOptions options;
    options.argv.push_back(E2E_KEYPROBE);
    options.argv.insert(options.argv.end(), args.begin(), args.end());
    return options;
}

ConsoleOptions Shell(const std::string& script) {
    ConsoleOptions options;
    options.argv = {"/bin/sh", "-c", script};
    return options;
}

} // namespace

TEST(HarnessConsole, KeysArriveAsCursesDecodesThem) {
    Console probe(Probe());
    ASSERT_TRUE(probe.WaitForText("probe ready"));
    // One refresh may reach the terminal in several reads.
    ASSERT_TRUE(probe.WaitForText("size 80x25"));
    EXPECT_EQ(probe.Row(1), "size 80x25");
    const std::pair<std::string_view, int> keys[] = {
        {Keys::F(1), 265},     {Keys::F(5), 269},      {Keys::F(12), 276},
        {Keys::Up, 259},       {Keys::Home, 262},      {Keys::Delete, 330},
        {Keys::PageDown, 338}, {Keys::Backspace, 263}, {Keys::Enter, 10}};
    for (const auto& [bytes, code] : keys) {
        probe.Send(bytes);
        ASSERT_TRUE(probe.WaitForText("key " + std::to_string(code)))
            << "for bytes of key " << code;
    }
}

TEST(HarnessConsole, CellsCarryColoursAttributesAndPalette) {
    Console probe(Probe());
    ASSERT_TRUE(probe.WaitForText("rev"));
    const Cell dim = probe.CellAt(2, 0);
    EXPECT_TRUE(dim.text == "d" && dim.fg.IsIndex(6) && dim.bg.IsIndex(0)) << dim;
    // The program redefined colour 6; the cell reports what the terminal shows.
    EXPECT_EQ(dim.fg.rgb, (Rgb{85, 85, 85})) << dim;
    EXPECT_EQ(probe.Redefined(6), (Rgb{85, 85, 85}));
    EXPECT_FALSE(probe.Redefined(5));
    const Cell rev = probe.CellAt(3, 0);
    EXPECT_TRUE(rev.reverse) << rev;
    EXPECT_FALSE(probe.CellAt(0, 0).reverse);
    EXPECT_EQ(probe.CellAt(0, 0).fg.kind, Color::Kind::Default);
    // The full last row does not scroll the screen.
    EXPECT_EQ(probe.CellAt(24, 0).text, "─");
    EXPECT_EQ(probe.CellAt(24, 79).text, "─");
}

TEST(HarnessConsole, EndsAreReportedAndTheTerminalModesShown) {
    Console probe(Probe());
    ASSERT_TRUE(probe.WaitForText("probe ready"));
    EXPECT_TRUE(probe.AltScreen());
    EXPECT_FALSE(probe.CursorVisible());
    EXPECT_FALSE(probe.Modes().c_lflag & ICANON);
    probe.Send("q");
    ASSERT_TRUE(probe.ExitsWith(0));
    EXPECT_FALSE(probe.AltScreen());
    EXPECT_TRUE(probe.CursorVisible());
    EXPECT_TRUE(probe.Modes().c_lflag & ICANON);

    Console unclean(Probe());
    unclean.SendKey("x");
    ASSERT_TRUE(unclean.ExitsWith(3));
    EXPECT_FALSE(unclean.Modes().c_lflag & ICANON);

    Console sleeper(Shell("echo sleeping; exec sleep 30"));
    ASSERT_TRUE(sleeper.WaitForText("sleeping"));
    sleeper.Signal(SIGTERM);
    const auto info = sleeper.WaitForExit();
    ASSERT_TRUE(info);
    EXPECT_EQ(info->Signal(), SIGTERM);
    EXPECT_FALSE(sleeper.ExitsWith(0)) << "a death by signal is not an exit status";

    // A text that never comes fails at once when nothing more can arrive, and says why.
    Console quick(Shell("printf 'hello there\\n'; exit 4"));
    ASSERT_TRUE(quick.ExitsWith(4));
    const auto start = std::chrono::steady_clock::now();
    const auto missing = quick.WaitForText("never shown", 10s);
    EXPECT_FALSE(missing);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    EXPECT_NE(std::string(missing.message()).find("hello there"), std::string::npos)
        << missing.message();
    EXPECT_NE(std::string(missing.message()).find("exited with status 4"), std::string::npos)
        << missing.message();
}

TEST(HarnessConsole, OutputBeyondTheTerminalBufferIsDrained) {
    Console probe(Probe());
    probe.SendKey("b");
    ASSERT_TRUE(probe.ExitsWith(5));
    EXPECT_TRUE(probe.WaitForText("line 2999"));
}

// Keys sent with SendKey wait until the program reads: none is lost to a flush of the input,
// and a child that has the terminal gets them.
TEST(HarnessConsole, SendKeyWaitsForTheReaderItselfOrItsChild) {
    Console probe(Probe());
    ASSERT_TRUE(probe.SendKey("f"));
    ASSERT_TRUE(probe.SendKey("a"));
    EXPECT_TRUE(probe.WaitForText("key 97"));
    EXPECT_TRUE(probe.Find("flushed"));

    ASSERT_TRUE(probe.SendKey("p"));
    ASSERT_TRUE(probe.Type("yes"));
    ASSERT_TRUE(probe.SendKey("\r"));
    ASSERT_TRUE(probe.WaitForText("back 0"));
    EXPECT_NE(probe.Transcript().find("answer yes"), std::string::npos);
    ASSERT_TRUE(probe.WaitUntilReading());
}
