#include "core/Console.hpp"

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <curses.h>
#include <fcntl.h>
#include <iostream>
#include <linux/kd.h>
#include <linux/vt.h>
#include <sys/ioctl.h>
#include <term.h>
#include <termios.h>
#include <unistd.h>

#include "core/Colors.hpp"
#include "core/EscapeTable.hpp"
#include "core/Globals.hpp"
#include "core/InputLoop.hpp"
#include "core/Startup.hpp"
#include "host/HostRoot.hpp"
#include "host/Log.hpp"
#include "host/UniqueFd.hpp"
#include "keelson/Lib.hpp"
#include "zephora/support.h"

namespace Lanyx {

namespace {

// Nothing written to standard error may disturb the curses screen.
void SilenceStandardError() {
    UniqueFd null(open("/dev/null", O_WRONLY | O_CLOEXEC));
    if (null.Valid())
        dup2(null.Get(), 2);
}

bool IsVirtualTerminal() {
    char type = 0;
    return ioctl(1, KDGKBTYPE, &type) == 0;
}

void ChooseTerminalType() {
    const TerminalDecision decision =
        DecideTerminalType(IsVirtualTerminal(), std::getenv("TERM"), std::getenv("SSH_CLIENT"));
    if (decision.consoleMode)
        consoleMode = true;
    if (decision.term)
        setenv("TERM", decision.term->c_str(), 1);
    setenv("TERMINFO", "/usr/share/terminfo", 0);
    setenv("TERM", "vt102", 0);
}

void StartLogging() {
    Log_SetProductInfo(ProductState_GetName(), ProductState_GetVersion(),
                       ProductState_GetBuildNumberString(), ProductState_GetCompilationOption());
    Log_InitWithSyslogSimpleInt("LANYX", Log_CfgInterface(), "LANYX");
    openlog("LANYX", LOG_PID, LOG_USER);
    setlogmask(0x7F);
    Log(LOG_INFO, "Starting LANYX");
}

void WritePidFile() {
    const std::string path = HostPath("/var/run/lanyx.pid");
    if (ClaimPidFile(path, getpid()) == PidFileResult::HeldByAnother)
        Log(LOG_ERR, "Attempt to run multiple LANYX instances, not updating %s", path.c_str());
}

void SwitchTerminal(int number) {
    UniqueFd console(open("/dev/console", O_RDWR | O_CLOEXEC));
    if (!console.Valid())
        return;
    if (ioctl(console.Get(), VT_ACTIVATE, number) != 0)
        ioctl(console.Get(), VT_WAITACTIVE, number);
}

// Curses shows the cursor at its end only when it believes it hidden, and a child that drew on
// the terminal (the pager) can leave it believing wrong: the terminal is told once more.
void EndCurses() {
    // After the regular end curses is already down, and the palette reset stays the last word.
    if (isendwin())
        return;
    endwin();
    const char* normal = tigetstr("cnorm");
    if (normal && normal != reinterpret_cast<const char*>(-1))
        putp(normal);
    std::fflush(stdout);
}

void StartCurses() {
    // Nobody at a console's terminal could resume it: Ctrl-Z must not stop it (curses only
    // takes the signal over while it has its default action).
    signal(SIGTSTP, SIG_IGN);
    initscr();
    // Without this curses flushes and polls the keyboard before each line it paints: a screen
    // went out in dozens of small writes. Keys are read in their own loop anyway.
    typeahead(-1);
    start_color();
    // Every exit() leaves the terminal in its normal mode.
    std::atexit(EndCurses);
    curs_set(0);
    cbreak();
    noecho();
    keypad(stdscr, TRUE);
    // Nor may Ctrl-S freeze the screen: without flow control it is a key like any other.
    termios modes{};
    if (tcgetattr(0, &modes) == 0) {
        modes.c_iflag &= ~IXON;
        tcsetattr(0, TCSANOW, &modes);
        def_prog_mode();
    }
}

} // namespace

int RunConsole(int argc, char** argv, const FirstFrameFactory& createFirstFrame) {
    Preference_Init();

    std::optional<int> terminalNumber;
    if (argc > 1) {
        terminalNumber = ParseVtNumber(argv[1]);
        if (!terminalNumber)
            Log(LOG_ERR, "Invalid VT specified for LANYX: %s", argv[1]);
    }

    StartSignalThread();
    ReadIdleTimeout();
    SilenceStandardError();
    tcgetattr(1, &savedTermios);
    ChooseTerminalType();
    StartLogging();
    WritePidFile();

    if (terminalNumber) {
        SwitchTerminal(*terminalNumber);
        savedTermios.c_cc[VSUSP] = 0;
        tcsetattr(1, TCSANOW, &savedTermios);
    }

    setlocale(LC_ALL, "en_US.UTF-8");
    StartCurses();
    InitPalette();
    InstallEscapeTable();
    refresh();

    std::unique_ptr<Frame> firstFrame = createFirstFrame();
    try {
        firstFrame->RunModal();
    } catch (const Keelson::Lib::KeelsonException& e) {
        Log(LOG_ERR, "LANYX aborted by exception: %s", e.what());
    }

    firstFrame.reset();
    erase();
    refresh();
    EndCurses();
    // Resets the palette on a Linux console.
    std::cout << "\x1b]R" << std::flush;
    return 0;
}

} // namespace Lanyx
