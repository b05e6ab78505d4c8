// RunCommand against small tools under a private host root.
#include "host/CommandRunner.hpp"

#include "ProgramRoot.hpp"
#include "host/HostRoot.hpp"

#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

using namespace Lanyx;
using HostTest::Host;
using ::testing::ElementsAre;

namespace {

class RunCommandTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        Host().WriteScript("/bin/status", "exit \"$1\"");
        Host().WriteScript("/bin/selfkill", "kill -TERM $$\nexit 0");
        Host().WriteScript("/bin/bytes",
                           "i=0\nwhile [ $i -lt \"$1\" ]; do printf x; i=$((i+1)); done");
        Host().WriteScript("/bin/both", "printf out-text\nprintf err-text >&2\nexit 3");
        Host().WriteScript("/bin/flood", "/bin/dd if=/dev/zero bs=65536 count=16 status=none >&2\n"
                                         "exec /bin/dd if=/dev/zero bs=65536 count=16 status=none");
        Host().WriteScript("/bin/hang", "exec /bin/sleep 60");
        Host().WriteScript("/bin/echoin", "exec /bin/cat");
        Host().WriteScript("/bin/noread", "exit 4");
        Host().WriteScript("/bin/daemonize", "/bin/sleep 30 &\nprintf started\nexit 0");
        Host().Write("/bin/plain", "not a program\n");
        for (const char* tool : {"ls", "grep", "printenv"})
            std::filesystem::create_symlink(std::string("/usr/bin/") + tool,
                                            Host().File("/bin/") + tool);
    }

    // Runs <root>/bin/<first word> with the words as its vector, capturing 255 bytes of stdout.
    static std::string Run(std::vector<const char*> argv, int* result = nullptr) {
        char out[300];
        std::memset(out, '#', sizeof out);
        int outLength = 255;
        const std::string path = std::string("/bin/") + argv.front();
        argv.push_back(nullptr);
        const int status = RunCommand(path.c_str(), argv.data(), out, &outLength);
        EXPECT_EQ(out[255], '#') << "written beyond the capacity";
        if (result)
            *result = status;
        return std::string(out, outLength);
    }
};

int OpenDescriptors() {
    int count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
}

TEST_F(RunCommandTest, ResultIsTheExitStatusOrMinusOne) {
    using Case = std::tuple<const char*, const char*, int>;
    for (const auto& [tool, argument, expected] :
         {Case{"status", "0", 0}, Case{"status", "42", 42}, Case{"status", "255", 255},
          Case{"selfkill", nullptr, -1}, Case{"missing", nullptr, -1},
          Case{"plain", nullptr, -1}}) {
        int result = 0;
        Run(argument ? std::vector{tool, argument} : std::vector{tool}, &result);
        EXPECT_EQ(result, expected) << tool << ' ' << (argument ? argument : "");
    }
    EXPECT_EQ(RunShell("status 9"), 9);
}

TEST_F(RunCommandTest, KillsAtTheTimeOutLogsBothLinesAndLeavesNothingOpen) {
    const int before = OpenDescriptors();
    Host().Mark();
    const char* const argv[] = {"hang", nullptr};
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(RunCommand("/bin/hang", argv, nullptr, nullptr, nullptr, nullptr, nullptr, 0, 1), -1);
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(elapsed, std::chrono::milliseconds(950));
    EXPECT_LT(elapsed, std::chrono::seconds(20));
    EXPECT_THAT(Host().Messages(),
                ElementsAre("user.warning Killing process because 1 seconds timeout expired",
                            "user.err Run Command did not terminate normally"));
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(RunCommandTest, CapturesStayWithinTheirCapacity) {
    EXPECT_EQ(Run({"bytes", "1000"}), std::string(255, 'x'));

    char out[64], err[64];
    int outLength = 64, errLength = 64;
    const char* const both[] = {"both", nullptr};
    EXPECT_EQ(RunCommand("/bin/both", both, out, &outLength, err, &errLength), 3);
    EXPECT_EQ(std::string(out, outLength), "out-text");
    EXPECT_EQ(std::string(err, errLength), "err-text");
}

// The time-outs only bound the test: a runner that let a pipe fill would be killed at them.
TEST_F(RunCommandTest, StreamsBeyondAPipeNeitherBlockNorHurtTheCaller) {
    const char* const flood[] = {"flood", nullptr};
    EXPECT_EQ(RunCommand("/bin/flood", flood, nullptr, nullptr, nullptr, nullptr, nullptr, 0, 20),
              0);

    const std::string large(300000, 'i');
    char out[64];
    int outLength = 64;
    const char* const echo[] = {"echoin", nullptr};
    EXPECT_EQ(RunCommand("/bin/echoin", echo, out, &outLength, nullptr, nullptr, large.data(),
                         static_cast<int>(large.size()), 20),
              0);
    EXPECT_EQ(outLength, 64);

    const char* const noread[] = {"noread", nullptr};
    EXPECT_EQ(RunCommand("/bin/noread", noread, nullptr, nullptr, nullptr, nullptr, large.data(),
                         static_cast<int>(large.size()), 20),
              4);
    sigset_t pending;
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);

    // Its own child keeps the output open; the runner still returns when the tool ends.
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Run({"daemonize"}), "started");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST_F(RunCommandTest, ChildGetsThreeDescriptorsOneVariableAndTheBlockedSignals) {
    const int leaked = ::open("/dev/null", O_RDONLY);
    ASSERT_GE(leaked, 3);
    // 3 is the listing's own handle on the folder.
    EXPECT_EQ(Run({"ls", "/proc/self/fd"}), "0\n1\n2\n3\n");
    ::close(leaked);
    EXPECT_EQ(Run({"printenv"}), "PYTHONHOME=/\n");

    const int handled[] = {SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGWINCH};
    sigset_t block, previous;
    sigemptyset(&block);
    for (int signal : handled)
        sigaddset(&block, signal);
    ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &block, &previous), 0);
    const std::string line = Run({"grep", "SigBlk", "/proc/self/status"});
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    ASSERT_EQ(line.rfind("SigBlk:", 0), 0u) << line;
    const unsigned long long mask = std::stoull(line.substr(7), nullptr, 16);
    for (int signal : handled)
        EXPECT_TRUE(mask & (1ULL << (signal - 1))) << signal << " in " << line;
}

} // namespace

// Each lookup takes the root as it is now: a second root made by a test is not the first again.
TEST(HostPath, FollowsTheCurrentRootAndLeavesDevicesAlone) {
    for (int round = 0; round < 2; ++round) {
        const LanyxTest::HostRoot root("");
        EXPECT_EQ(HostPath("/var/run/lanyx.pid"), root.Path() + "/var/run/lanyx.pid") << round;
    }
    EXPECT_EQ(HostPath("/bin/sh"), Host().Path() + "/bin/sh") << "the program's root again";
    for (const char* kept : {"/dev/tty1", "/usr/share/terminfo/x/xterm", "relative/path", ""})
        EXPECT_EQ(HostPath(kept), kept);
}
