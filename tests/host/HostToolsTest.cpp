// The operations over helmq, ostraq and the overlay agent, against scripted tools that record
// how they were called.
#include "host/CommandRunner.hpp"

#include "ProgramRoot.hpp"

#include <filesystem>
#include <string>
#include <tuple>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Lanyx;
using HostTest::Host;
using ::testing::ElementsAre;
using ::testing::StartsWith;

namespace {

// Each tool T appends "$*" to <root>/tmp/T.calls, then runs `body`, then prints <root>/tmp/T.out
// and exits with the status in <root>/tmp/T.exit (0 when there is none).
void Tool(const std::string& hostPath, const std::string& name, const std::string& body = "") {
    const std::string t = Host().Path() + "/tmp/" + name;
    Host().WriteScript(hostPath, "echo \"$*\" >> " + t + ".calls\n" + body + "\n[ -f " + t +
                                     ".out ] && /bin/cat " + t + ".out\n[ -f " + t +
                                     ".exit ] && exit $(/bin/cat " + t + ".exit)\nexit 0");
}

std::string Calls(const std::string& name) {
    return Host().Read("/tmp/" + name + ".calls");
}

class HostToolsTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        const std::string tmp = Host().Path() + "/tmp/";
        // <root>/tmp/refuse: "all" refuses every user, "others" every user but the service account.
        Tool("/bin/helmq", "helmq",
             "R=$(/bin/cat " + tmp +
                 "refuse 2>/dev/null)\nif [ \"$R\" = all ] "
                 "|| { [ \"$R\" = others ] && [ \"$2\" != lanyx ]; }; then printf refused; exit "
                 "255; fi");
        Tool("/bin/ostraq", "ostraq",
             "[ \"$3\" = plank ] && printf 'Name=x\\nVersion=%s\\n' "
             "\"$(/bin/cat " +
                 tmp + "version)\" && exit 0");
        Tool("/usr/lib64/zephora/gridmesh-opsagent/bin/gridmeshcfg-xbar", "xbar",
             "printf 'bad port'; printf oops >&2");
    }

    void SetUp() override {
        std::filesystem::remove_all(Host().File("/tmp"));
        std::filesystem::create_directory(Host().File("/tmp"));
        Host().Remove("/etc/init.d/gridmesh-opsagent");
        loginUser = "root";
    }
};

TEST_F(HostToolsTest, HelmqRefusalRetriesOnceAsTheServiceAccount) {
    Host().Write("/tmp/refuse", "others");
    Host().Write("/tmp/helmq.out", "done");
    Host().Mark();
    const char* argv[] = {"helmq", "-U", "alice", "helmnode/start_ssh", nullptr};
    char out[255];
    int outLength = sizeof out;
    EXPECT_EQ(RunHelmq("/bin/helmq", argv, out, &outLength), 0);
    EXPECT_STREQ(argv[2], "lanyx");
    EXPECT_EQ(std::string(out, outLength), "done");
    EXPECT_THAT(Host().Messages(),
                ElementsAre("user.info Unable to execute command helmq "
                            "helmnode/start_ssh using user alice. Using user lanyx"));

    // A second refusal is the result; any other failure is not retried.
    const char* const once = "-U alice helmnode/stop_ssh\n";
    const char* const twice = "-U alice helmnode/stop_ssh\n-U lanyx helmnode/stop_ssh\n";
    for (const auto& [refuse, status, result, calls] :
         {std::tuple{"all", "0", 255, twice}, std::tuple{"", "1", 1, once}}) {
        Host().Write("/tmp/refuse", refuse);
        Host().Write("/tmp/helmq.exit", status);
        Host().Remove("/tmp/helmq.calls");
        const char* again[] = {"helmq", "-U", "alice", "helmnode/stop_ssh", nullptr};
        EXPECT_EQ(RunHelmq("/bin/helmq", again), result);
        EXPECT_EQ(Calls("helmq"), calls);
    }
}

TEST_F(HostToolsTest, HelmqQueryBoolIsDecidedByTheOutputAlone) {
    for (const auto& [output, status, expected] :
         {std::tuple{"true\n", "0", true}, std::tuple{"True", "0", false},
          std::tuple{" true", "0", false}, std::tuple{"true", "3", true}}) {
        Host().Write("/tmp/helmq.out", output);
        Host().Write("/tmp/helmq.exit", status);
        EXPECT_EQ(HelmqQueryBool("helmsvc/auth/lockdown_is_enabled"), expected) << output << status;
    }
    EXPECT_THAT(Calls("helmq"), StartsWith("-U lanyx helmsvc/auth/lockdown_is_enabled\n"));
    Host().Mark();
    HelmqQueryBool("helmsvc/auth/lockdown_is_possible");
    EXPECT_THAT(Host().Messages(),
                ElementsAre("user.info helmq invocation: get helmsvc/auth/lockdown_is_possible",
                            StartsWith("user.err helmq invocation failure: ")));
}

TEST_F(HostToolsTest, AgentIsUsableWhenPresentFromVersionThree) {
    Host().Mark();
    EXPECT_FALSE(GridmeshAgentUsable());
    EXPECT_EQ(Calls("ostraq"), "");
    EXPECT_THAT(Host().Messages(),
                ElementsAre("user.info Running: /etc/init.d/gridmesh-opsagent status",
                            "user.info gridmesh-opsagent is not present on the system."));

    Tool("/etc/init.d/gridmesh-opsagent", "agent");
    for (const auto& [version, usable] :
         {std::pair{"3.0.1", true}, std::pair{"10.2", true}, std::pair{"2.9.9", false}}) {
        Host().Write("/tmp/version", version);
        Host().Mark();
        EXPECT_EQ(GridmeshAgentUsable(), usable) << version;
        const auto lines = Host().Messages();
        ASSERT_EQ(lines.size(), usable ? 4u : 3u) << version;
        EXPECT_EQ(lines[1], "user.info gridmesh-opsagent is present on the system.");
        EXPECT_EQ(lines[2], std::string("user.info Running: ") + gridmeshVersionLine);
        if (usable) {
            EXPECT_EQ(lines[3], "user.info gridmesh-opsagent version >= 3 detected");
        }
    }
}

TEST_F(HostToolsTest, AgentStartFollowsOnlyAStopThatWorked) {
    Tool("/etc/init.d/gridmesh-opsagent", "agent");
    bool stopped = false;
    Host().Mark();
    GridmeshAgentStop(stopped);
    GridmeshAgentStart(stopped);
    EXPECT_EQ(Calls("agent"), "stop\nstart\n");
    EXPECT_EQ(Host().Messages().back(),
              "user.info gridmesh-opsagent has been successfully started.");

    Host().Remove("/tmp/agent.calls");
    Host().Write("/tmp/agent.exit", "1");
    Host().Mark();
    GridmeshAgentStop(stopped);
    GridmeshAgentStart(stopped);
    EXPECT_EQ(Calls("agent"), "stop\n");
    EXPECT_THAT(Host().Messages(), ElementsAre("user.info Stopping gridmesh-opsagent.",
                                               "user.err Failed to stop gridmesh-opsagent.",
                                               "user.info Skipping gridmesh-opsagent start."));
}

TEST_F(HostToolsTest, CommandLinesAndTheirRecords) {
    // The lines of the other tools, and their success records, are checked end to end.
    Host().Mark();
    EXPECT_TRUE(GridmeshCfgMove("fport-7", "tnic1"));
    EXPECT_EQ(Calls("xbar"), "-m -p fport-7 -I tnic1\n");
    Host().Write("/tmp/xbar.exit", "2");
    EXPECT_FALSE(GridmeshCfgMove("fport-7", "tnic1"));
    Host().Write("/tmp/ostraq.out", "already exists");
    Host().Write("/tmp/ostraq.exit", "1");
    EXPECT_FALSE(AddXbar("switch1"));
    EXPECT_THAT(
        Host().Messages(),
        ElementsAre("user.info Command \"gridmeshcfg-xbar -m -p fport-7 -I tnic1\" succeeded",
                    "user.err Command \"gridmeshcfg-xbar -m -p fport-7 -I tnic1\" failed (rc=2): "
                    "(stdout=bad port, stderr=oops)",
                    "user.err Command \"ostraq network xbar standard add -v switch1\" failed "
                    "(rc=1): already exists"));
}

} // namespace
