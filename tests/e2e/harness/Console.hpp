// A program running on a pseudo-terminal whose output is interpreted by a terminal emulator,
// so a test sees the screen the operator would see.
#pragma once
#include <csignal>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <termios.h>

#include <gtest/gtest.h>

#include "Process.hpp"

namespace LanyxE2E {

using namespace LanyxTest;

// Paths of the built programs (compile definitions of the harness library).
std::string LanyxBinary();

inline std::string Trimmed(std::string text) {
    return text.erase(text.find_last_not_of(' ') + 1);
}

// Bytes an xterm sends for named keys while the program has the keypad in application mode
// (as curses programs do). Raw sequences of other terminals are sent with Send as they are.
namespace Keys {
inline constexpr std::string_view Enter = "\r";
inline constexpr std::string_view Escape = "\x1b";
inline constexpr std::string_view Tab = "\t";
inline constexpr std::string_view Backspace = "\x7f";
inline constexpr std::string_view Up = "\x1bOA";
inline constexpr std::string_view Down = "\x1bOB";
inline constexpr std::string_view Right = "\x1bOC";
inline constexpr std::string_view Left = "\x1bOD";
inline constexpr std::string_view Home = "\x1bOH";
inline constexpr std::string_view End = "\x1bOF";
inline constexpr std::string_view Insert = "\x1b[2~";
inline constexpr std::string_view Delete = "\x1b[3~";
inline constexpr std::string_view PageUp = "\x1b[5~";
inline constexpr std::string_view PageDown = "\x1b[6~";
// F1 .. F12.
std::string_view F(int n);
} // namespace Keys

struct Rgb {
    int red = 0, green = 0, blue = 0;
    bool operator==(const Rgb&) const = default;
};

struct Color {
    enum class Kind { Default, Indexed, Direct };
    Kind kind = Kind::Default;
    int index = -1; // palette index for Indexed
    Rgb rgb;        // what the terminal shows, palette redefinitions included

    bool IsIndex(int i) const { return kind == Kind::Indexed && index == i; }
    bool operator==(const Color&) const = default;
};

struct Cell {
    std::string text; // UTF-8, " " for an empty cell
    Color fg, bg;
    bool bold = false, underline = false, blink = false, reverse = false;
};

std::ostream& operator<<(std::ostream& out, const Color& color);
std::ostream& operator<<(std::ostream& out, const Cell& cell);

struct ConsoleOptions {
    std::vector<std::string> argv;       // argv[0] is the program path; empty: the built lanyx
    std::string hostRoot;                // LANYX_HOST_ROOT; left unset when empty
    std::string term = "xterm-256color"; // TERM; left unset when empty
    int rows = 25, cols = 80;            // 0 x 0 gives a terminal that reports no size
    std::string faketime;                // e.g. "+0 x100": run under libfaketime with this FAKETIME
    bool tracer = false;                 // argv[0] runs the program as its child (strace)
};

// A console for the built lanyx on `root` with the given extra arguments.
ConsoleOptions LanyxOptions(const std::string& root, std::vector<std::string> args = {});

class Console {
public:
    explicit Console(ConsoleOptions options);
    ~Console(); // kills the process group if it still runs
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    pid_t Pid() const { return pid_; }

    // Writes raw bytes to the terminal's input at once.
    void Send(std::string_view bytes);
    // Waits until the program reads its terminal with all its output taken, then sends one key.
    // The console drops keys typed while a screen opens, so keys go through here; a failed wait
    // fails the test.
    bool SendKey(std::string_view key);
    // Each character as a key of its own.
    bool Type(std::string_view text);
    // Waits until the program that has the terminal is blocked reading it (the console's main
    // thread in its key wait; a pager or other child it waits for in its own read) and its
    // output is drained: what the screen shows then stays until the next key or signal.
    ::testing::AssertionResult WaitUntilReading(Duration timeout = 10s);
    // Sends a signal to the program (under a tracer, to the program it runs).
    void Signal(int sig);
    // Sends a signal to the children of the program (a pager it waits for).
    void SignalChildren(int sig);
    // Whether the program or a child of it is blocked writing to the terminal: its output was
    // stopped by flow control (Ctrl-S) and waits for Ctrl-Q.
    bool OutputStopped();
    // Changes the terminal size as a terminal window would: the process gets SIGWINCH.
    void Resize(int rows, int cols);

    // Reads pending output for at most `wait` (0: only what is there).
    void Pump(Duration wait = Duration(0));

    // Waits until the screen shows `text`. Fails early once the process has ended and its
    // output is drained. The failure message holds the screen.
    ::testing::AssertionResult WaitForText(std::string_view text, Duration timeout = 10s);
    // Waits until a whole screen stands with `text` on it (and `absent` gone, when given): curses
    // draws the bottom-right corner of a full-screen box with the refresh that ends the screen.
    ::testing::AssertionResult
    WaitForFullScreen(std::string_view text, std::string_view absent = {}, Duration timeout = 10s);
    // Waits until `text` has gone from the screen.
    ::testing::AssertionResult WaitForTextGone(std::string_view text, Duration timeout = 10s);
    // Waits until `condition` holds while pumping output; runs to the deadline even after the
    // process has ended (the condition may look at files).
    ::testing::AssertionResult WaitFor(const std::function<bool()>& condition,
                                       Duration timeout = 10s, std::string_view what = "condition");

    // Waits for the end, draining the output, and checks that the process exited with `code`.
    ::testing::AssertionResult ExitsWith(int code, Duration timeout = 10s);
    bool Running();
    std::optional<ExitInfo> Exit() const { return exit_; }

    int Rows() const { return rows_; }
    int Cols() const { return cols_; }
    // The screen, rows joined with '\n', trailing blanks of each row removed.
    std::string ScreenText() const;
    // One row (0-based), trailing blanks removed.
    std::string Row(int row) const;
    // `length` cells of a row from `col` (0-based), as shown, trailing blanks removed.
    std::string Text(int row, int col, int length) const;
    Cell CellAt(int row, int col) const;
    // The first position of `text` on the screen (row, column), if shown.
    std::optional<std::pair<int, int>> Find(std::string_view text) const;

    // The colour the program gave palette entry `index`, if it redefined it.
    std::optional<Rgb> Redefined(int index) const;
    bool CursorVisible() const { return cursorVisible_; }
    bool AltScreen() const { return altScreen_; }
    // Terminal modes of the pseudo-terminal as the program left them.
    termios Modes() const;
    // Everything the program wrote, for diagnosis.
    const std::string& Transcript() const { return transcript_; }
    // A printable dump of the screen with the process state, for failure messages.
    std::string Describe() const;
    // What AddressSanitizer and UBSan reported for the program and its children so far; the
    // end of the Console fails the test when there is anything.
    std::string SanitizerReports() const;

private:
    struct Emulator;
    std::string Cells(int row, int col, int length) const; // untrimmed
    ::testing::AssertionResult Await(const std::function<bool()>& condition, Duration timeout,
                                     std::string_view what, bool screenOnly);
    void Reap();
    void Drain();
    void Feed(const char* bytes, size_t length);

    std::unique_ptr<Emulator> vt_;
    pid_t pid_ = -1;
    int master_ = -1;
    int slave_ = -1; // held open so that output written just before the end is never lost
    int rows_, cols_;
    std::optional<ExitInfo> exit_;
    bool cursorVisible_ = true;
    bool altScreen_ = false;
    std::string transcript_;
    std::string pendingEscape_; // an escape sequence cut by the end of a read
    std::string lastWritten_;   // the tail of what went to the emulator
    std::string command_;
    std::string reportFolder_; // where sanitizer reports are written
    bool tracer_ = false;
    std::string terminal_; // the path of the program's side of the terminal
    size_t received_ = 0;  // bytes of output taken so far
    std::optional<std::pair<pid_t, std::string>>
        wakeFrom_; // the reader as a key or signal found it
};

} // namespace LanyxE2E
