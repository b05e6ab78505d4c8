// RunCommand against small tools under a private host root.
#include "host/CommandRunner.hpp"

#include "TestRoot.hpp"

#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

using namespace Lanyx;
using HostTest::LogMark;
using HostTest::WriteScript;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

class RunCommandTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        WriteScript("/bin/status", "exit \"$1\"");
        WriteScript("/bin/selfkill", "kill -\"$1\" $$\nexit 0");
        WriteScript("/bin/bytes", "i=0\nwhile [ $i -lt \"$1\" ]; do printf x; i=$((i+1)); done");
        WriteScript("/bin/both", "printf out-text\nprintf err-text >&2\nexit 3");
        WriteScript("/bin/flood", "exec /bin/dd if=/dev/zero bs=65536 count=32 status=none\n");
        WriteScript("/bin/floodboth", "/bin/dd if=/dev/zero bs=65536 count=16 status=none >&2\n"
                                      "exec /bin/dd if=/dev/zero bs=65536 count=16 status=none");
        WriteScript("/bin/hang", "exec /bin/sleep 60");
        WriteScript("/bin/late", "/bin/sleep 0.3\nexit 7");
        WriteScript("/bin/echoin", "exec /bin/cat");
        WriteScript("/bin/noread", "exit 4");
        WriteScript("/bin/daemonize", "/bin/sleep 30 &\nprintf started\nexit 0");
        HostTest::WriteFile("/bin/plain", "not a program\n");
        std::filesystem::create_symlink(LANYX_TEST_PROBE, HostTest::Under("/bin/probe"));
    }
};

std::chrono::steady_clock::duration Elapsed(std::chrono::steady_clock::time_point start)
{
    return std::chrono::steady_clock::now() - start;
}

TEST_F(RunCommandTest, ExitStatusesComeBackAsTheyAre)
{
    for (const char* status : {"0", "1", "42", "127", "254", "255"}) {
        const char* const argv[] = {"status", status, nullptr};
        EXPECT_EQ(RunCommand("/bin/status", argv), std::stoi(status)) << status;
    }
}

TEST_F(RunCommandTest, ChildThatCannotRunOrEndsOnASignalGivesMinusOne)
{
    const char* const term[] = {"selfkill", "TERM", nullptr};
    EXPECT_EQ(RunCommand("/bin/selfkill", term), -1);
    const char* const kill[] = {"selfkill", "KILL", nullptr};
    EXPECT_EQ(RunCommand("/bin/selfkill", kill), -1);

    const char* const missing[] = {"missing", nullptr};
    EXPECT_EQ(RunCommand("/bin/missing", missing), -1);
    EXPECT_EQ(errno, ENOENT);
    const char* const plain[] = {"plain", nullptr};
    EXPECT_EQ(RunCommand("/bin/plain", plain), -1);
}

TEST_F(RunCommandTest, KillsAtTheTimeOutAndLogsBothLinesInOrder)
{
    const LogMark mark;
    const char* const argv[] = {"hang", nullptr};
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(RunCommand("/bin/hang", argv, nullptr, nullptr, nullptr, nullptr, nullptr, 0, 1), -1);
    EXPECT_GE(Elapsed(start), std::chrono::milliseconds(950));
    EXPECT_LT(Elapsed(start), std::chrono::seconds(20));
    EXPECT_THAT(mark.Lines(), ElementsAre("user.warning Killing process because 1 seconds timeout expired",
                                          "user.err Run Command did not terminate normally"));
}

TEST_F(RunCommandTest, NoTimeOutWaitsForTheChild)
{
    const char* const argv[] = {"late", nullptr};
    for (int timeout : {0, -5}) {
        const LogMark mark;
        EXPECT_EQ(RunCommand("/bin/late", argv, nullptr, nullptr, nullptr, nullptr, nullptr, 0,
                             timeout),
                  7);
        EXPECT_TRUE(mark.Lines().empty());
    }
    // A child that ends well inside its time-out is not touched.
    EXPECT_EQ(RunCommand("/bin/late", argv, nullptr, nullptr, nullptr, nullptr, nullptr, 0, 30), 7);
}

TEST_F(RunCommandTest, CapturesStayWithinTheirCapacity)
{
    char out[300];
    std::memset(out, '#', sizeof out);
    int outLength = 255;
    const char* const thousand[] = {"bytes", "1000", nullptr};
    EXPECT_EQ(RunCommand("/bin/bytes", thousand, out, &outLength), 0);
    EXPECT_EQ(outLength, 255);
    EXPECT_EQ(std::string(out, 255), std::string(255, 'x'));
    EXPECT_EQ(out[255], '#');

    outLength = 255;
    const char* const none[] = {"bytes", "0", nullptr};
    EXPECT_EQ(RunCommand("/bin/bytes", none, out, &outLength), 0);
    EXPECT_EQ(outLength, 0);

    char err[64];
    outLength = 255;
    int errLength = 64;
    const char* const both[] = {"both", nullptr};
    EXPECT_EQ(RunCommand("/bin/both", both, out, &outLength, err, &errLength), 3);
    EXPECT_EQ(std::string(out, outLength), "out-text");
    EXPECT_EQ(std::string(err, errLength), "err-text");
}

TEST_F(RunCommandTest, ChildWritingMoreThanAPipeHoldsIsNotStuck)
{
    // The time-out only bounds the test: a runner that let the pipe fill would be killed here.
    char out[16];
    int outLength = 16;
    const char* const flood[] = {"flood", nullptr};
    EXPECT_EQ(RunCommand("/bin/flood", flood, out, &outLength, nullptr, nullptr, nullptr, 0, 20), 0);
    EXPECT_EQ(outLength, 16);

    // Uncaptured streams are drained too.
    const char* const floodBoth[] = {"floodboth", nullptr};
    EXPECT_EQ(RunCommand("/bin/floodboth", floodBoth, nullptr, nullptr, nullptr, nullptr, nullptr, 0,
                         20),
              0);
}

TEST_F(RunCommandTest, ReturnsWhenTheChildEndsThoughItsOwnChildKeepsTheOutput)
{
    char out[32];
    int outLength = 32;
    const char* const argv[] = {"daemonize", nullptr};
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(RunCommand("/bin/daemonize", argv, out, &outLength), 0);
    EXPECT_LT(Elapsed(start), std::chrono::seconds(10));
    EXPECT_EQ(std::string(out, outLength), "started");
}

TEST_F(RunCommandTest, InputReachesTheChild)
{
    const std::string input("line one\n\0binary\n", 17);
    char out[64];
    int outLength = 64;
    const char* const argv[] = {"echoin", nullptr};
    EXPECT_EQ(RunCommand("/bin/echoin", argv, out, &outLength, nullptr, nullptr, input.data(),
                         static_cast<int>(input.size())),
              0);
    EXPECT_EQ(std::string(out, outLength), input);

    // More than a pipe holds, echoed back while it is written.
    const std::string large(300000, 'i');
    outLength = 64;
    EXPECT_EQ(RunCommand("/bin/echoin", argv, out, &outLength, nullptr, nullptr, large.data(),
                         static_cast<int>(large.size()), 20),
              0);
    EXPECT_EQ(outLength, 64);
}

TEST_F(RunCommandTest, ChildThatIgnoresItsInputDoesNotHurtTheCaller)
{
    const std::string large(300000, 'i');
    const char* const argv[] = {"noread", nullptr};
    EXPECT_EQ(RunCommand("/bin/noread", argv, nullptr, nullptr, nullptr, nullptr, large.data(),
                         static_cast<int>(large.size()), 20),
              4);
    sigset_t pending;
    sigemptyset(&pending);
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
}

TEST_F(RunCommandTest, ChildGetsExactlyThreeDescriptorsAndOneVariable)
{
    // A descriptor the caller left open to children must not reach this one.
    const int leaked = ::open("/dev/null", O_RDONLY);
    ASSERT_GE(leaked, 3);
    char out[256];
    int outLength = 255;
    const char* const fds[] = {"probe", "fds", nullptr};
    EXPECT_EQ(RunCommand("/bin/probe", fds, out, &outLength), 0);
    EXPECT_EQ(std::string(out, outLength), "0\n1\n2\n");
    ::close(leaked);

    outLength = 255;
    const char* const env[] = {"probe", "env", nullptr};
    EXPECT_EQ(RunCommand("/bin/probe", env, out, &outLength), 0);
    EXPECT_EQ(std::string(out, outLength), "PYTHONHOME=/\n");
}

TEST_F(RunCommandTest, ChildKeepsTheSignalsTheCallerBlocked)
{
    sigset_t handled, previous;
    sigemptyset(&handled);
    for (int signal : {SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGWINCH})
        sigaddset(&handled, signal);
    ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &handled, &previous), 0);
    char out[256];
    int outLength = 255;
    const char* const argv[] = {"probe", "sigblk", nullptr};
    const int result = RunCommand("/bin/probe", argv, out, &outLength);
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    ASSERT_EQ(result, 0);

    const std::string line(out, outLength);
    ASSERT_THAT(line, HasSubstr("SigBlk:"));
    const unsigned long long mask = std::stoull(line.substr(line.find(':') + 1), nullptr, 16);
    for (int signal : {SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGWINCH})
        EXPECT_TRUE(mask & (1ULL << (signal - 1))) << signal;
}

TEST_F(RunCommandTest, LeavesNoDescriptorOpen)
{
    auto countOpen = [] {
        int count = 0;
        for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
            ++count;
        return count;
    };
    const int before = countOpen();
    char out[8];
    int outLength = 8;
    const char* const ok[] = {"both", nullptr};
    RunCommand("/bin/both", ok, out, &outLength);
    const char* const missing[] = {"missing", nullptr};
    RunCommand("/bin/missing", missing);
    const char* const hang[] = {"hang", nullptr};
    RunCommand("/bin/hang", hang, nullptr, nullptr, nullptr, nullptr, nullptr, 0, 1);
    EXPECT_EQ(countOpen(), before);
}

TEST_F(RunCommandTest, ShellRunsTheLineThroughTheHostShell)
{
    EXPECT_EQ(RunShell("status 9"), 9);
    EXPECT_EQ(RunShell("exit 0"), 0);
}

} // namespace
