#include "core/Frame.hpp"

#include <algorithm>
#include <cstdlib>
#include <sys/time.h>

#include "core/Globals.hpp"
#include "core/InputLoop.hpp"
#include "core/Keys.hpp"
#include "host/Log.hpp"

namespace Lanyx {

namespace {

constexpr time_t dimSeconds = 60;

timeval AddSeconds(const timeval& t, time_t seconds) {
    timeval result = t;
    result.tv_sec += seconds;
    return result;
}

bool IsPast(const timeval& now, const timeval& moment) {
    return timercmp(&now, &moment, >);
}

// What is left until `moment`, never negative.
timeval Until(const timeval& now, const timeval& moment) {
    if (!IsPast(moment, now))
        return timeval{0, 0};
    timeval left;
    timersub(&moment, &now, &left);
    return left;
}

} // namespace

Frame::Frame(Frame* owner, int x, int y, int width, int height, int background, int foreground)
    : Window(x, y, width, height, background, foreground), owner(owner),
      strings(FetchStringFactory("en_US")) {}

bool Frame::RunModal() {
    activeFrame = nullptr;
    if (owner) {
        owner->SetActive(false);
        owner->Update();
    }
    SetActive(true);
    activeFrame = this;
    bool result = false;
    try {
        result = Execute();
    } catch (const LanyxTimeout&) {
        activeFrame = nullptr;
        throw;
    }
    if (owner) {
        owner->SetActive(true);
        owner->Update();
        activeFrame = owner;
    } else {
        activeFrame = nullptr;
    }
    return result;
}

int Frame::ReadKey(bool enforceIdleLimit) {
    const bool enforce = enforceIdleLimit && idleTimeoutSeconds != 0;
    timeval start;
    gettimeofday(&start, nullptr);
    const timeval dimTime = AddSeconds(start, dimSeconds);
    const timeval limitTime =
        AddSeconds(start, std::max<time_t>(static_cast<time_t>(idleTimeoutSeconds), dimSeconds));
    bool dimmed = false;

    for (;;) {
        timeval now;
        gettimeofday(&now, nullptr);
        if (enforce && IsPast(now, limitTime)) {
            activeFrame = nullptr;
            throw LanyxTimeout();
        }
        if (!dimmed && IsPast(now, dimTime)) {
            SetActive(false);
            Update();
            dimmed = true;
        }

        int result;
        if (!dimmed) {
            const timeval wait = Until(now, dimTime);
            result = WaitForInput(&wait);
        } else if (enforce) {
            const timeval wait = Until(now, limitTime);
            result = WaitForInput(&wait);
        } else {
            result = WaitForInput(nullptr);
        }

        if (result == InputReload) {
            if (activeFrame)
                activeFrame->Reload();
            CheckSmartCard();
            continue;
        }
        if (result == InputExitRequest) {
            if (!sessionActive)
                std::exit(0);
            exitPending = true;
            continue;
        }
        if (result == InputResized || result == Keys::Resize) {
            HandleResize();
            std::exit(0);
        }
        if (result == InputTerminate)
            std::exit(0);
        if (result == InputTerminalGone) {
            Log(LOG_INFO, "Terminal closed, exiting");
            std::exit(0);
        }
        if (result < 0)
            continue;

        if (dimmed) {
            clearok(curscr, TRUE);
            SetActive(true);
            Update();
        }
        return result;
    }
}

} // namespace Lanyx
