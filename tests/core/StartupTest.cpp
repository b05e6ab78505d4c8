#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

#include "HostRoot.hpp"
#include "core/Startup.hpp"

namespace Lanyx {
namespace {

// Nothing the core writes may reach the machine.
auto* const programHost = LanyxTest::AddProgramHost();

// The range edges and the log of a refused number are the end-to-end tests' matter; here, how the
// text is read.
TEST(VtNumber, OneToSixtyThreeAsStrtolReadsThem) {
    const std::pair<const char*, std::optional<int>> cases[] = {
        {"1", 1}, {"12x", 12}, {" 5", 5},     {"010", 10} /* not octal */,     {"0x10", {}},
        {"", {}}, {"-3", {}},  {nullptr, {}}, {"99999999999999999999999", {}},
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
        {true, "xterm", ssh, true, "linux"},
        {false, "linux", nullptr, false, "vt102"},
        {false, "linux", ssh, false, "vt102"},
        {false, "xterm", nullptr, true, {}},
        {false, "xterm", ssh, false, {}},
        {false, "xterm", "", false, {}} /* set, empty */,
        {false, "Linux", nullptr, false, {}},
        {false, nullptr, nullptr, false, {}},
        {false, "xterm-256color", nullptr, false, {}},
    };
    for (const auto& c : cases) {
        const TerminalDecision d = DecideTerminalType(c.onVt, c.term, c.ssh);
        EXPECT_EQ(d.consoleMode, c.console)
            << c.onVt << " " << (c.term ? c.term : "-") << " " << (c.ssh ? c.ssh : "-");
        EXPECT_EQ(d.term, c.type) << c.onVt << " " << (c.term ? c.term : "-");
    }
}

TEST(PidFile, TakenOverUnlessItsProcessRuns) {
    const std::string path = programHost->Host().File("/var/run/lanyx.pid");
    const auto Write = [&](const std::string& text) { std::ofstream(path) << text; };
    const auto Read = [&] {
        std::ifstream in(path);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    const pid_t dead = fork();
    if (dead == 0)
        _exit(0);
    waitpid(dead, nullptr, 0);
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

    const std::string missing = programHost->Host().File("/no/such/folder/lanyx.pid");
    EXPECT_EQ(ClaimPidFile(missing, 4242), PidFileResult::Written)
        << "an unwritable place is no error";
}

} // namespace
} // namespace Lanyx
