#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

#include "core/Startup.hpp"

namespace Lanyx {
namespace {

TEST(VtNumber, AcceptsOneToSixtyThree)
{
    EXPECT_EQ(ParseVtNumber("1"), 1);
    EXPECT_EQ(ParseVtNumber("7"), 7);
    EXPECT_EQ(ParseVtNumber("63"), 63);
    EXPECT_EQ(ParseVtNumber("0"), std::nullopt);
    EXPECT_EQ(ParseVtNumber("64"), std::nullopt);
    EXPECT_EQ(ParseVtNumber("-3"), std::nullopt);
    EXPECT_EQ(ParseVtNumber("abc"), std::nullopt);
    EXPECT_EQ(ParseVtNumber(""), std::nullopt);
    EXPECT_EQ(ParseVtNumber("99999999999999999999999"), std::nullopt);
    EXPECT_EQ(ParseVtNumber(nullptr), std::nullopt);
}

TEST(VtNumber, TakesTheLeadingDecimalNumberAsStrtolDoes)
{
    EXPECT_EQ(ParseVtNumber("12x"), 12);
    EXPECT_EQ(ParseVtNumber(" 5"), 5);
    EXPECT_EQ(ParseVtNumber("010"), 10) << "base 10, not octal";
    EXPECT_EQ(ParseVtNumber("0x10"), std::nullopt) << "base 10, not hexadecimal";
}

TEST(TerminalType, VirtualTerminalIsConsoleWithLinuxType)
{
    for (const char* term : {static_cast<const char*>(nullptr), "xterm", "vt102", "linux"})
        for (const char* ssh : {static_cast<const char*>(nullptr), "10.0.0.1 5000 22"}) {
            const TerminalDecision d = DecideTerminalType(true, term, ssh);
            EXPECT_TRUE(d.consoleMode);
            EXPECT_EQ(d.term, "linux");
        }
}

TEST(TerminalType, LinuxTypeOffTheConsoleBecomesVt102)
{
    for (const char* ssh : {static_cast<const char*>(nullptr), "10.0.0.1 5000 22"}) {
        const TerminalDecision d = DecideTerminalType(false, "linux", ssh);
        EXPECT_FALSE(d.consoleMode);
        EXPECT_EQ(d.term, "vt102");
    }
}

TEST(TerminalType, XtermIsConsoleOnlyWithoutSsh)
{
    TerminalDecision local = DecideTerminalType(false, "xterm", nullptr);
    EXPECT_TRUE(local.consoleMode);
    EXPECT_EQ(local.term, std::nullopt);

    TerminalDecision remote = DecideTerminalType(false, "xterm", "10.0.0.1 5000 22");
    EXPECT_FALSE(remote.consoleMode);
    EXPECT_EQ(remote.term, std::nullopt);

    // An empty SSH_CLIENT is still set.
    EXPECT_FALSE(DecideTerminalType(false, "xterm", "").consoleMode);
}

TEST(TerminalType, OtherOrMissingTypesAreLeftAlone)
{
    for (const char* term : {static_cast<const char*>(nullptr), "vt102", "xterm-256color",
                             "screen", "", "Linux"}) {
        const TerminalDecision d = DecideTerminalType(false, term, nullptr);
        EXPECT_FALSE(d.consoleMode) << (term ? term : "(unset)");
        EXPECT_EQ(d.term, std::nullopt) << (term ? term : "(unset)");
    }
}

class PidFile : public ::testing::Test {
protected:
    void SetUp() override
    {
        char pattern[] = "/tmp/lanyx-core-test-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
        path = dir + "/lanyx.pid";
    }
    void TearDown() override { std::filesystem::remove_all(dir); }

    void Write(const std::string& text) { std::ofstream(path) << text; }
    std::string Read() const
    {
        std::ifstream in(path);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    static pid_t DeadPid()
    {
        const pid_t child = fork();
        if (child == 0)
            _exit(0);
        int status = 0;
        waitpid(child, &status, 0);
        return child;
    }

    std::string dir;
    std::string path;
    const pid_t self = 4242;
};

TEST_F(PidFile, MissingFileIsCreatedWithOwnPidAndNoNewline)
{
    EXPECT_EQ(ClaimPidFile(path, self), PidFileResult::Written);
    EXPECT_EQ(Read(), "4242");
}

TEST_F(PidFile, UnusableContentIsReplaced)
{
    for (const std::string content : {"garbage", "", "0", "-17", "\n", "99999999999"}) {
        Write(content);
        EXPECT_EQ(ClaimPidFile(path, self), PidFileResult::Written) << content;
        EXPECT_EQ(Read(), "4242") << content;
    }
}

TEST_F(PidFile, ProcessGoneIsReplaced)
{
    Write(std::to_string(DeadPid()) + "\n");
    EXPECT_EQ(ClaimPidFile(path, self), PidFileResult::Written);
    EXPECT_EQ(Read(), "4242");
}

TEST_F(PidFile, RunningProcessKeepsTheFile)
{
    const std::string other = std::to_string(getppid()) + "\n";
    Write(other);
    EXPECT_EQ(ClaimPidFile(path, self), PidFileResult::HeldByAnother);
    EXPECT_EQ(Read(), other);
}

TEST_F(PidFile, LongerOldContentIsTruncated)
{
    Write("1234567890 trailing text of a damaged file");
    EXPECT_EQ(ClaimPidFile(path, 77), PidFileResult::Written);
    EXPECT_EQ(Read(), "77");
}

TEST_F(PidFile, UnwritablePlaceIsNotAnError)
{
    const std::string missing = dir + "/no/such/folder/lanyx.pid";
    EXPECT_EQ(ClaimPidFile(missing, self), PidFileResult::Written);
    EXPECT_FALSE(std::filesystem::exists(missing));
}

} // namespace
} // namespace Lanyx
