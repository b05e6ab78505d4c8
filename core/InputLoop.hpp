// The input loop's process-wide machinery: signals arrive through a pipe written by a
// dedicated thread, so that everything that reacts to one runs on the main thread between
// two key reads.
#pragma once
#include <csignal>
#include <string>
#include <sys/time.h>

namespace Lanyx {

// Results of WaitForInput besides key codes (0 or more).
enum InputResult : int {
    InputNothing = -1,      // failed poll, curses ERR, unknown pipe byte
    InputTimedOut = -2,     // the poll time-out passed
    InputReload = -3,       // SIGUSR1
    InputExitRequest = -4,  // SIGUSR2
    InputResized = -5,      // SIGWINCH
    InputTerminate = -6,    // SIGINT, SIGQUIT, SIGTERM
    InputTerminalGone = -7, // the keyboard's terminal hung up; no key can come any more
};

extern int signalPipe[2];
extern sigset_t handledSignals;

// The pipe byte for a handled signal (1 to 4), 0 for any other.
int SignalByte(int signal);
// The WaitForInput result for a byte read from the pipe.
int PipeByteResult(int byte);

// Pipe, blocked signals, and the thread that turns them into pipe bytes. Must run before any
// other thread or child exists, so that all of them inherit the block. Ends the process with
// status 1 when the pipe or the thread cannot be made.
void StartSignalThread();

// Waits for a key or a pipe byte; null `timeout` waits for ever. A key code, or an InputResult.
int WaitForInput(const timeval* timeout);

// Reads the idle limit from the host's advanced option; 600 when it cannot be had.
void ReadIdleTimeout();
void SetSessionActive(bool active);
void SetLoginUser(const std::string& user);
// A card may have come or gone: note its user outside a session, end a card session whose
// card has left.
void CheckSmartCard();
// Tells curses the terminal's new size; the caller ends the process afterwards.
void HandleResize();

} // namespace Lanyx
