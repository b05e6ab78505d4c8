#include "core/InputLoop.hpp"

#include <cerrno>
#include <cstdlib>
#include <curses.h>
#include <memory>
#include <poll.h>
#include <pthread.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "core/Globals.hpp"
#include "core/SmartCard.hpp"
#include "host/Log.hpp"
#include "keelson/Adv.hpp"

namespace Lanyx {

int signalPipe[2] = {-1, -1};
sigset_t handledSignals;

namespace {

constexpr uint32_t defaultIdleTimeoutSeconds = 600;

void* SignalThread(void*) {
    for (;;) {
        int signal = 0;
        if (sigwait(&handledSignals, &signal) != 0) {
            LogErrno("sigwait() failed");
            continue;
        }
        const char byte = static_cast<char>(SignalByte(signal));
        while (write(signalPipe[1], &byte, 1) < 0 && errno == EINTR) {
        }
    }
    return nullptr;
}

} // namespace

int SignalByte(int signal) {
    switch (signal) {
    case SIGUSR1:
        return 1;
    case SIGUSR2:
        return 2;
    case SIGWINCH:
        return 3;
    case SIGINT:
    case SIGQUIT:
    case SIGTERM:
        return 4;
    default:
        return 0;
    }
}

int PipeByteResult(int byte) {
    return byte >= 1 && byte <= 4 ? -2 - byte : InputNothing;
}

void StartSignalThread() {
    if (pipe(signalPipe) != 0) {
        LogErrno("pipe() failed");
        std::exit(1);
    }
    sigemptyset(&handledSignals);
    for (int signal : {SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGWINCH})
        sigaddset(&handledSignals, signal);
    // pthread functions report through their result, not errno.
    if (int error = pthread_sigmask(SIG_BLOCK, &handledSignals, nullptr); error != 0) {
        errno = error;
        LogErrno("pthread_sigmask() failed");
    }
    pthread_t thread;
    if (int error = pthread_create(&thread, nullptr, SignalThread, nullptr); error != 0) {
        errno = error;
        LogErrno("pthread_create() failed");
        std::exit(1);
    }
}

int WaitForInput(const timeval* timeout) {
    // Curses may already hold keys that came in one read with an escape sequence; poll on the
    // descriptor cannot see those, and would wait for the key after them.
    wtimeout(stdscr, 0);
    const int held = wgetch(stdscr);
    wtimeout(stdscr, -1);
    if (held != ERR)
        return held;

    pollfd fds[2] = {{0, POLLIN, 0}, {signalPipe[0], POLLIN, 0}};
    const int milliseconds =
        timeout ? static_cast<int>(timeout->tv_sec * 1000 + timeout->tv_usec / 1000) : -1;
    const int ready = poll(fds, 2, milliseconds);
    if (ready < 0) {
        LogErrno("poll() failed");
        return InputNothing;
    }
    if (ready == 0)
        return InputTimedOut;
    // Without this the loop would spin for ever on a terminal that has gone away.
    const bool hungUp = fds[0].revents & (POLLHUP | POLLERR | POLLNVAL);
    if (fds[0].revents & POLLIN) {
        wtimeout(stdscr, 0);
        const int key = wgetch(stdscr);
        wtimeout(stdscr, -1);
        return key == ERR && hungUp ? InputTerminalGone : key;
    }
    if (hungUp)
        return InputTerminalGone;
    if (fds[1].revents & POLLIN) {
        unsigned char byte = 0;
        ssize_t got;
        while ((got = read(signalPipe[0], &byte, 1)) < 0 && errno == EINTR) {
        }
        return got == 1 ? PipeByteResult(byte) : InputNothing;
    }
    return InputNothing;
}

void ReadIdleTimeout() {
    idleTimeoutSeconds = defaultIdleTimeoutSeconds;
    try {
        std::unique_ptr<Keelson::Adv::AdvancedOption> option(
            TesselCtl::Adv::AdvancedOptionImpl::FindOption("/UserVars/LanyxTimeOut"));
        if (auto* integer = dynamic_cast<Keelson::Adv::AdvancedIntegerOption*>(option.get())) {
            const int64_t value = integer->GetValue();
            // A negative setting cannot be a limit; it reads as none.
            idleTimeoutSeconds = value < 0            ? 0
                                 : value > UINT32_MAX ? UINT32_MAX
                                                      : static_cast<uint32_t>(value);
        }
    } catch (const Keelson::Lib::KeelsonException&) {
        idleTimeoutSeconds = defaultIdleTimeoutSeconds;
    }
}

void SetSessionActive(bool active) {
    sessionActive = active;
    if (active)
        ReadIdleTimeout();
}

void SetLoginUser(const std::string& user) {
    loginUser = user;
    cardLogin = HasCardWithUser(user);
}

void CheckSmartCard() {
    if (!sessionActive) {
        cardUser = FindCardUser();
        if (!cardUser.empty())
            Log(LOG_INFO, "Found smart card with user id '%s'", cardUser.c_str());
    } else if (cardLogin && !HasCardWithUser(loginUser)) {
        Log(LOG_INFO, "Logging out user id '%s'", loginUser.c_str());
        std::exit(0);
    }
}

void HandleResize() {
    winsize size{};
    if (ioctl(0, TIOCGWINSZ, &size) != 0 || size.ws_row == 0 || size.ws_col == 0)
        return;
    resizeterm(size.ws_row, size.ws_col);
    Log(LOG_INFO, "Resized window to %dx%d", size.ws_col, size.ws_row);
    refresh();
}

} // namespace Lanyx
