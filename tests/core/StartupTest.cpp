#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

#include "core/Startup.hpp"

namespace Lanyx {
namespace {

TEST(VtNumber, OneToSixtyThreeAsStrtolReadsThem) {
    const std::pair<const char*, std::optional<int>> cases[] = {
        {"1", 1},
        {"63", 63},
        {"0", std::nullopt},
        {"64", std::nullopt},
        {"-3", std::nullopt},
        {"abc", std::nullopt},
        {"", std::nullopt},
        {nullptr, std::nullopt},
        {"99999999999999999999999", std::nullopt},
        {"12x", 12},
        {" 5", 5},
        {"010", 10} /* not octal */,
        {"0x10", std::nullopt},
    };
    for (const auto& [text, number] : cases)
        EXPECT_EQ(ParseVtNumber(text), number) << (text ? text : "(null)");
}

TEST(TerminalType, ConsoleModeAndTheTypeToSet) {
    const char* ssh = "10.0.0.1 5000 22";
    const struct {
        bool onVt;
        const char* term;
        const char* ssh;
        bool console;
        std::optional<std::string> type;
    } cases[] = {
        {true, nullptr, nullptr, true, "linux"},
        {true, "xterm", ssh, true, "linux"},
        {false, "linux", nullptr, false, "vt102"},
        {false, "linux", ssh, false, "vt102"},
        {false, "xterm", nullptr, true, std::nullopt},
        {false, "xterm", ssh, false, std::nullopt},
        {false, "xterm", "", false, std::nullopt} /* set, though empty */,
        {false, "Linux", nullptr, false, std::nullopt},
        {false, nullptr, nullptr, false, std::nullopt},
        {false, "xterm-256color", nullptr, false, std::nullopt},
    };
    for (const auto& c : cases) {
        const TerminalDecision d = DecideTerminalType(c.onVt, c.term, c.ssh);
        EXPECT_EQ(d.consoleMode, c.console)
            << c.onVt << " " << (c.term ? c.term : "-") << " " << (c.ssh ? c.ssh : "-");
        EXPECT_EQ(d.term, c.type) << c.onVt << " " << (c.term ? c.term : "-");
    }
}

class PidFile : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/lanyx-core-test-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
        path = dir + "/lanyx.pid";
    }
    void TearDown() override { std::filesystem::remove_all(dir); }

    void Write(const std::string& text) { std::ofstream(path) << text; }
    std::string Read() const {
        std::ifstream in(path);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    std::string dir;
    std::string path;
};

TEST_F(PidFile, TakenOverUnlessItsProcessRuns) {
    const pid_t dead = fork();
    if (dead == 0)
        _exit(0);
    waitpid(dead, nullptr, 0);
    EXPECT_EQ(ClaimPidFile(path, 4242), PidFileResult::Written);
    EXPECT_EQ(Read(), "4242") << "no newline";
    for (const std::string& content :
         {std::string("garbage"), std::string(""), std::string("-17"), std::string("99999999999"),
          std::to_string(dead) + "\n", std::string("1234567890 trailing text of a damaged file")}) {
        Write(content);
        EXPECT_EQ(ClaimPidFile(path, 77), PidFileResult::Written) << content;
        EXPECT_EQ(Read(), "77") << content;
    }

    const std::string other = std::to_string(getppid()) + "\n";
    Write(other);
    EXPECT_EQ(ClaimPidFile(path, 4242), PidFileResult::HeldByAnother);
    EXPECT_EQ(Read(), other);

    const std::string missing = dir + "/no/such/folder/lanyx.pid";
    EXPECT_EQ(ClaimPidFile(missing, 4242), PidFileResult::Written)
        << "an unwritable place is no error";
}

} // namespace
} // namespace Lanyx
