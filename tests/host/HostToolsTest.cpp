// The operations over helmq, ostraq and the overlay agent, against scripted tools that record
// how they were called.
#include "host/CommandRunner.hpp"

#include "TestRoot.hpp"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Lanyx;
using HostTest::LogMark;
using HostTest::ReadFile;
using HostTest::RemoveFile;
using HostTest::WriteFile;
using HostTest::WriteScript;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

namespace {

// Control files, all under <root>/tmp: <tool>.out is printed, <tool>.exit gives the status,
// <tool>.calls collects "$*" of each call.
const char* const controls[] = {"helmq.out",  "helmq.exit",  "helmq.refuse", "helmq.calls",
                                "ostraq.out", "ostraq.exit", "ostraq.calls", "agent.calls",
                                "agent.stop", "agent.version", "xbar.calls", "xbar.exit",
                                "halt.calls"};

class HostToolsTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        const std::string tmp = HostTest::Root() + "/tmp/";
        const std::string replay = "[ -f " + tmp + "$T.out ] && /bin/cat " + tmp + "$T.out\n"
                                   "[ -f " + tmp + "$T.exit ] && exit $(/bin/cat " + tmp +
                                   "$T.exit)\nexit 0";
        // Refuses every user ("all") or every user but the service account ("others").
        WriteScript("/bin/helmq", "T=helmq\necho \"$*\" >> " + tmp + "helmq.calls\n"
                                  "R=$(/bin/cat " + tmp + "helmq.refuse 2>/dev/null)\n"
                                  "if [ \"$R\" = all ] || { [ \"$R\" = others ] && [ \"$2\" != lanyx ]; }; "
                                  "then printf refused; exit 255; fi\n" + replay);
        WriteScript("/bin/ostraq",
                    "T=ostraq\necho \"$*\" >> " + tmp + "ostraq.calls\n"
                    "if [ \"$*\" = \"--formatter=keyvalue software plank get -n gridmesh-opsagent\" ]; then\n"
                    "  printf 'Name=gridmesh-opsagent\\nVersion=%s\\nVendor=x\\n' \"$(/bin/cat " + tmp +
                    "agent.version)\"\n  exit 0\nfi\n" + replay);
        WriteScript("/bin/haltGuests", "echo \"haltGuests $*\" >> " + tmp + "halt.calls");
        WriteScript("/usr/lib64/zephora/gridmesh-opsagent/bin/gridmeshcfg-xbar",
                    "echo \"$*\" >> " + tmp + "xbar.calls\nprintf 'bad port'\nprintf oops >&2\n"
                    "[ -f " + tmp + "xbar.exit ] && exit $(/bin/cat " + tmp + "xbar.exit)\nexit 0");
    }

    void SetUp() override
    {
        for (const char* name : controls)
            RemoveFile(std::string("/tmp/") + name);
        RemoveFile("/etc/init.d/gridmesh-opsagent");
        loginUser = "root";
    }

    static void InstallAgent()
    {
        const std::string tmp = HostTest::Root() + "/tmp/";
        WriteScript("/etc/init.d/gridmesh-opsagent",
                    "echo \"$1\" >> " + tmp + "agent.calls\n"
                    "[ \"$1\" = stop ] && [ -f " + tmp + "agent.stop ] && exit $(/bin/cat " + tmp +
                    "agent.stop)\nexit 0");
    }

    static std::string Calls(const char* tool) { return ReadFile(std::string("/tmp/") + tool + ".calls"); }
};

TEST_F(HostToolsTest, HelmqRefusalRetriesOnceAsTheServiceAccount)
{
    WriteFile("/tmp/helmq.refuse", "others");
    WriteFile("/tmp/helmq.out", "done");
    const LogMark mark;
    const char* argv[] = {"helmq", "-U", "alice", "helmnode/start_ssh", nullptr};
    char out[255];
    int outLength = 255;
    EXPECT_EQ(RunHelmq("/bin/helmq", argv, out, &outLength), 0);
    EXPECT_STREQ(argv[2], "lanyx");
    EXPECT_EQ(std::string(out, outLength), "done");
    EXPECT_EQ(Calls("helmq"), "-U alice helmnode/start_ssh\n-U lanyx helmnode/start_ssh\n");
    EXPECT_THAT(mark.Lines(), ElementsAre("user.info Unable to execute command helmq "
                                          "helmnode/start_ssh using user alice. Using user lanyx"));
}

TEST_F(HostToolsTest, HelmqSecondRefusalAndOtherFailuresAreReturned)
{
    WriteFile("/tmp/helmq.refuse", "all");
    const char* argv[] = {"helmq", "-U", "alice", "helmnode/stop_ssh", nullptr};
    EXPECT_EQ(RunHelmq("/bin/helmq", argv), 255);
    EXPECT_EQ(Calls("helmq"), "-U alice helmnode/stop_ssh\n-U lanyx helmnode/stop_ssh\n");

    RemoveFile("/tmp/helmq.refuse");
    RemoveFile("/tmp/helmq.calls");
    WriteFile("/tmp/helmq.exit", "1");
    const char* again[] = {"helmq", "-U", "alice", "helmnode/stop_ssh", nullptr};
    EXPECT_EQ(RunHelmq("/bin/helmq", again), 1);
    EXPECT_STREQ(again[2], "alice");
    EXPECT_EQ(Calls("helmq"), "-U alice helmnode/stop_ssh\n");

    // Under the plain runner 255 is just a status.
    WriteFile("/tmp/helmq.exit", "255");
    EXPECT_EQ(RunCommand("/bin/helmq", again), 255);
}

TEST_F(HostToolsTest, HelmqQueryBoolIsDecidedByTheOutputAlone)
{
    struct Case {
        const char* output;
        const char* status;
        bool expected;
    };
    for (const Case& c : {Case{"true\n", "0", true}, Case{"trueish", "0", true},
                          Case{"true", "3", true}, Case{"True", "0", false},
                          Case{"false\n", "0", false}, Case{"tru", "0", false},
                          Case{"", "0", false}, Case{" true", "0", false}}) {
        WriteFile("/tmp/helmq.out", c.output);
        WriteFile("/tmp/helmq.exit", c.status);
        EXPECT_EQ(HelmqQueryBool("helmsvc/auth/lockdown_is_enabled"), c.expected)
            << '"' << c.output << "\" status " << c.status;
    }
    EXPECT_THAT(Calls("helmq"), StartsWith("-U lanyx helmsvc/auth/lockdown_is_enabled\n"));

    const LogMark mark;
    WriteFile("/tmp/helmq.exit", "2");
    HelmqQueryBool("helmsvc/auth/lockdown_is_possible");
    const auto lines = mark.Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], "user.info helmq invocation: get helmsvc/auth/lockdown_is_possible");
    EXPECT_THAT(lines[1], StartsWith("user.err helmq invocation failure: "));
}

TEST_F(HostToolsTest, RefreshAndHaltActAsTheOperator)
{
    loginUser = "operator1";
    HelmqRefresh();
    HaltGuestsAndAutostop(true);
    HaltGuestsAndAutostop(false);
    EXPECT_EQ(Calls("helmq"), "-U operator1 helmcore/refresh\n"
                              "-U operator1 helmnode/autostartmanager/autostop\n"
                              "-U operator1 helmnode/autostartmanager/autostop\n");
    EXPECT_EQ(ReadFile("/tmp/halt.calls"), "haltGuests \nhaltGuests --terminate\n");
}

TEST_F(HostToolsTest, AbsentAgentIsNotUsableAndItsVersionIsNotAsked)
{
    const LogMark mark;
    EXPECT_FALSE(GridmeshAgentUsable());
    EXPECT_THAT(Calls("ostraq"), IsEmpty());
    EXPECT_THAT(mark.Lines(), ElementsAre("user.info Running: /etc/init.d/gridmesh-opsagent status",
                                          "user.info gridmesh-opsagent is not present on the system."));
}

TEST_F(HostToolsTest, PresentAgentIsUsableFromVersionThree)
{
    InstallAgent();
    for (const auto& [version, usable] : {std::pair{"3.0.1", true}, std::pair{"10.2", true},
                                          std::pair{"2.9.9", false}, std::pair{"", false}}) {
        WriteFile("/tmp/agent.version", version);
        const LogMark mark;
        EXPECT_EQ(GridmeshAgentUsable(), usable) << version;
        const auto lines = mark.Lines();
        ASSERT_GE(lines.size(), 3u);
        EXPECT_EQ(lines[1], "user.info gridmesh-opsagent is present on the system.");
        EXPECT_EQ(lines[2], std::string("user.info Running: ") + gridmeshVersionLine);
        EXPECT_EQ(lines.size(), usable ? 4u : 3u);
        if (usable) {
            EXPECT_EQ(lines[3], "user.info gridmesh-opsagent version >= 3 detected");
        }
    }
}

TEST_F(HostToolsTest, AgentStartFollowsOnlyAStopThatWorked)
{
    InstallAgent();
    bool stopped = false;
    LogMark mark;
    GridmeshAgentStop(stopped);
    EXPECT_TRUE(stopped);
    GridmeshAgentStart(stopped);
    EXPECT_EQ(Calls("agent"), "stop\nstart\n");
    EXPECT_THAT(mark.Lines(), ElementsAre("user.info Stopping gridmesh-opsagent.",
                                          "user.info gridmesh-opsagent has been successfully stopped.",
                                          "user.info Starting gridmesh-opsagent.",
                                          "user.info gridmesh-opsagent has been successfully started."));

    RemoveFile("/tmp/agent.calls");
    WriteFile("/tmp/agent.stop", "1");
    mark = LogMark();
    GridmeshAgentStop(stopped);
    EXPECT_FALSE(stopped);
    GridmeshAgentStart(stopped);
    EXPECT_EQ(Calls("agent"), "stop\n");
    EXPECT_THAT(mark.Lines(), ElementsAre("user.info Stopping gridmesh-opsagent.",
                                          "user.err Failed to stop gridmesh-opsagent.",
                                          "user.info Skipping gridmesh-opsagent start."));
}

TEST_F(HostToolsTest, CfgMoveLogsTheCommandAndBothStreams)
{
    LogMark mark;
    EXPECT_TRUE(GridmeshCfgMove("fport-7", "tnic1"));
    EXPECT_EQ(Calls("xbar"), "-m -p fport-7 -I tnic1\n");
    EXPECT_THAT(mark.Lines(),
                ElementsAre("user.info Command \"gridmeshcfg-xbar -m -p fport-7 -I tnic1\" succeeded"));

    WriteFile("/tmp/xbar.exit", "2");
    mark = LogMark();
    EXPECT_FALSE(GridmeshCfgMove("fport-7", "tnic1"));
    EXPECT_THAT(mark.Lines(), ElementsAre("user.err Command \"gridmeshcfg-xbar -m -p fport-7 -I tnic1\" "
                                          "failed (rc=2): (stdout=bad port, stderr=oops)"));
}

TEST_F(HostToolsTest, SwitchOperationsPassTheirVectors)
{
    EXPECT_TRUE(AddXbar("switch1"));
    EXPECT_TRUE(SetXbarUplink("switch1", "hwport1", true));
    EXPECT_TRUE(SetXbarUplink("switch1", "hwport0", false));
    EXPECT_TRUE(AddXbarPortGroup("Management Network", "switch1"));
    EXPECT_EQ(Calls("ostraq"), "network xbar standard add -v switch1\n"
                               "network xbar standard uplink add -u hwport1 -v switch1\n"
                               "network xbar standard uplink remove -u hwport0 -v switch1\n"
                               "network xbar standard portgroup add -p Management Network -v switch1\n");

    WriteFile("/tmp/ostraq.out", "already exists");
    WriteFile("/tmp/ostraq.exit", "1");
    const LogMark mark;
    EXPECT_FALSE(AddXbar("switch1"));
    EXPECT_THAT(mark.Lines(), Contains("user.err Command \"ostraq network xbar standard add -v switch1\" "
                                       "failed (rc=1): already exists"));
}

} // namespace
