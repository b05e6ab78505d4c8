// The host tools the console relies on, run as the console runs them: a child with one environment
// variable, against a temporary host root whose state is written here.
#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "HostRoot.hpp"
#include "store/StateStore.hpp"

namespace {

using nlohmann::json;
using Args = std::vector<std::string>;

json BaseState() {
    return json::parse(R"({"schema": 1, "lockdown": {"enabled": false, "possible": true},
      "accounts": [{"name": "root", "hash": "$6$x$y", "expired": false, "permitted": true},
                   {"name": "guest", "hash": "$6$x$y", "expired": false, "permitted": false}],
      "services": {"OstraShell": {"running": false, "enabled": false}, "SSH": {"running": true, "enabled": true}},
      "advancedOptions": {"/UserVars/OstraShellTimeOut":
          {"type": "integer", "value": 600, "default": 0, "min": 0, "max": 86400}},
      "gridmesh": {"present": true, "version": "3.1.0", "running": true},
      "power": {"state": "on", "history": []}, "faults": {"lib": {}, "tool": {}}})");
}

class ToolsTest : public ::testing::Test {
protected:
    void SetUp() override { HostSim::StateStore(root_.Path()).Write(BaseState()); }

    // As the console starts tools: a child with one environment variable.
    LanyxTest::ProcessResult Tool(const Args& args,
                                  LanyxTest::Duration limit = std::chrono::seconds(20)) {
        Args argv = {HOSTSIM_TOOL, "--root", root_.Path()};
        argv.insert(argv.end(), args.begin(), args.end());
        const std::vector<std::string> env{"PYTHONHOME=/"};
        return LanyxTest::RunProcess(argv, limit, &env);
    }
    // The exit code, -1 when the tool did not exit by itself.
    int Status(const Args& args) { return Tool(args).exit.Code(); }

    LanyxTest::HostRoot root_{""};
};

TEST_F(ToolsTest, FaultsReplaceTheToolsWork) {
    const Args query = {"helmq", "-U", "lanyx", "helmsvc/auth/lockdown_is_enabled"};
    struct Case {
        json fault;
        int status;
        std::string out;
        bool timedOut;
    };
    for (const Case& c :
         {Case{{{"exit", 7}}, 7, "", false}, Case{{{"output", "true"}}, 0, "true\n", false},
          Case{{{"signal", true}}, -1, "", false},
          Case{{{"output", "abc"}, {"exit", 3}}, 3, "abc\n", false},
          Case{{{"output", "waiting"}, {"hang", true}}, -1, "waiting\n", true}}) {
        root_.Edit([&](json& s) { s["faults"]["tool"]["helmq"] = c.fault; });
        const auto result = Tool(query, std::chrono::seconds(c.timedOut ? 3 : 20));
        EXPECT_EQ(result.exit.Code(), c.status) << c.fault;
        EXPECT_EQ(result.output, c.out) << c.fault;
        EXPECT_EQ(result.timedOut, c.timedOut) << c.fault;
    }
    // The fault is the tool's alone.
    EXPECT_EQ(Status({"poweroff"}), 0);
    EXPECT_EQ(root_.State()["power"]["state"], "off");
}

TEST_F(ToolsTest, LiveCoreWaitsForTheAgentOnlyWhenAsked) {
    const Args trace = {"tesseltrace", "-n", "helmd", "-o", "helmd-restart%", "-d", "/var/log/"};
    EXPECT_EQ(Status({"agents.sh", "stop"}), 0);
    EXPECT_EQ(Status({"helmq", "-U", "lanyx", "helmsvc/auth/lockdown_is_enabled"}), 1);
    EXPECT_EQ(Status(trace), 1) << "no agent, no wait";

    Args waiting = trace;
    waiting.insert(waiting.begin() + 1, "-w");
    // The agent comes up once the waiting run has begun, as the call trace shows.
    root_.Edit([](json& s) { s["faults"]["trace"] = true; });
    const auto begun = [&] {
        return root_.Read("/var/lib/hostsim/calls.log").find("tesseltrace -w") != std::string::npos;
    };
    std::thread starter([&] {
        LanyxTest::PollUntil(begun, std::chrono::seconds(10));
        Tool({"agents.sh", "start"});
    });
    const auto result = Tool(waiting);
    starter.join();
    EXPECT_EQ(result.exit.Code(), 0) << result.output;
    EXPECT_EQ(result.output, "Live core of helmd written to /var/log/helmd-restart1.core\n");
    EXPECT_TRUE(std::filesystem::exists(root_.Path() + "/var/log/helmd-restart1.core"));
    EXPECT_EQ(Status(trace), 0);
    EXPECT_TRUE(std::filesystem::exists(root_.Path() + "/var/log/helmd-restart2.core"));
}

} // namespace
