// The faults of the host tools, run as the console runs them: a child with one environment
// variable, against a temporary host root whose state is written here. What the tools do is
// checked through the console.
#include <gtest/gtest.h>

#include "HostRoot.hpp"
#include "store/StateStore.hpp"

namespace {

using nlohmann::json;
using Args = std::vector<std::string>;

json BaseState() {
    return json::parse(R"({"schema": 1, "lockdown": {"enabled": false, "possible": true},
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

} // namespace
