#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <pthread.h>
#include <unistd.h>

#include "HostRoot.hpp"
#include "core/InputLoop.hpp"

namespace Lanyx {
namespace {

// A failure would be logged; nothing may reach the machine.
auto* const programHost = LanyxTest::AddProgramHost();

// Standard input is replaced by an empty pipe, so that WaitForInput sees no key and only the
// signal pipe can wake it.
class SignalPipe : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        StartSignalThread();
        int quiet[2];
        ASSERT_EQ(pipe(quiet), 0);
        dup2(quiet[0], 0);
        close(quiet[0]);
        quietWriter = quiet[1];
    }
    static void TearDownTestSuite() { close(quietWriter); }

    // The next pipe result within a bounded time.
    static int NextResult() {
        const timeval limit{10, 0};
        return WaitForInput(&limit);
    }

    static inline int quietWriter = -1;
};

TEST_F(SignalPipe, HandledSignalsAreBlockedInEveryThread) {
    sigset_t current;
    ASSERT_EQ(pthread_sigmask(SIG_BLOCK, nullptr, &current), 0);
    for (int signal : {SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGWINCH})
        EXPECT_EQ(sigismember(&current, signal), 1) << signal;
    EXPECT_EQ(sigismember(&current, SIGHUP), 0);
}

// What each signal does is checked end to end; here, two signals while nobody reads are both
// kept, in order. Sent to the process, as from outside: the signal thread takes them.
TEST_F(SignalPipe, SignalsArriveAsTheirResultsInOrder) {
    ASSERT_EQ(kill(getpid(), SIGUSR2), 0);
    ASSERT_EQ(kill(getpid(), SIGWINCH), 0);
    EXPECT_EQ(NextResult(), InputExitRequest);
    EXPECT_EQ(NextResult(), InputResized);
}

TEST_F(SignalPipe, StrayByteTimeoutAndHangUp) {
    const char stray = 9;
    ASSERT_EQ(write(signalPipe[1], &stray, 1), 1);
    EXPECT_EQ(NextResult(), InputNothing);

    const timeval brief{0, 20000};
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(WaitForInput(&brief), InputTimedOut);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(15));

    // A keyboard whose other end is gone is reported, not spun on.
    int gone[2];
    ASSERT_EQ(pipe(gone), 0);
    close(gone[1]);
    const int quiet = dup(0);
    dup2(gone[0], 0);
    close(gone[0]);
    EXPECT_EQ(NextResult(), InputTerminalGone);
    dup2(quiet, 0);
    close(quiet);
}

} // namespace
} // namespace Lanyx
