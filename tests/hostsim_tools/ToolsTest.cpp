// The host tools run as the console runs them: a child with one environment variable, against a
// temporary host root whose state is written here.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "TestSupport.hpp"

namespace {

using HostSimTest::ChildResult;
using HostSimTest::TempRoot;
using nlohmann::json;

json BaseState() {
    return json::parse(R"({
      "schema": 1,
      "lockdown": {"enabled": false, "possible": true},
      "accounts": [
        {"name": "root", "hash": "$6$x$y", "expired": false, "permitted": true},
        {"name": "guest", "hash": "$6$x$y", "expired": false, "permitted": false}
      ],
      "services": {"OstraShell": {"running": false, "enabled": false}, "SSH": {"running": true, "enabled": true}},
      "advancedOptions": {
        "/UserVars/OstraShellTimeOut": {"type": "integer", "value": 600, "default": 0, "min": 0, "max": 86400},
        "/UserVars/OstraShellInteractiveTimeOut": {"type": "integer", "value": 0, "default": 0, "min": 0, "max": 86400},
        "/UserVars/Motd": {"type": "string", "value": "hello", "default": ""}
      },
      "pnics": [{"name": "hwport0"}, {"name": "hwport1"}, {"name": "hwport2"}],
      "switches": [{"name": "xbar0", "uplinks": ["hwport0"], "portGroups": ["Management Network"],
                    "teaming": {"uplinkOrder": ["hwport0"]}}],
      "portGroups": [{"name": "Management Network", "switch": "xbar0", "vlan": 0, "activeClients": 1},
                     {"name": "Storage", "switch": "xbar0", "vlan": 20, "activeClients": 0}],
      "fabrics": [{"name": "fabric0", "uplinks": {"hwport2": {"portId": "1", "portKey": "k"}}, "ports": []}],
      "network": {"managementInterface": "tnic0",
                  "interfaces": [{"name": "tnic0", "connection": {"type": "portgroup", "portGroup": "Management Network"}}]},
      "gridmesh": {"present": true, "version": "3.1.0", "running": true},
      "ping": {"reachable": ["10.0.0.1", "fe80::1"]},
      "guests": [{"name": "web", "running": true, "autostart": true}, {"name": "db", "running": false, "autostart": false}],
      "power": {"state": "on", "history": []},
      "welcomeMessage": "custom",
      "faults": {"lib": {}, "tool": {}}
    })");
}

class ToolsTest : public ::testing::Test {
protected:
    void SetUp() override { root_.Store().Write(BaseState()); }

    ChildResult Tool(const std::vector<std::string>& args) {
        std::vector<std::string> argv = {HOSTSIM_TOOL, "--root", root_.Path()};
        argv.insert(argv.end(), args.begin(), args.end());
        return HostSimTest::Run(argv);
    }
    json State() { return root_.Store().Read(); }
    void Change(const std::function<void(json&)>& change) { root_.Store().Update(change); }
    void SetFault(const std::string& tool, const json& fault) {
        Change([&](json& s) { s["faults"]["tool"][tool] = fault; });
    }
    // The state without the tools' own bookkeeping.
    json Configuration() {
        json state = State();
        state.erase("toolRecords");
        return state;
    }

    TempRoot root_;
};

TEST_F(ToolsTest, WrongArgumentsAreRefusedWithStatusTwoAndChangeNothing) {
    const std::vector<std::vector<std::string>> wrong = {
        {"helmq"}, {"helmq", "-U", "root"}, {"helmq", "-X", "root", "helmcore/refresh"},
        {"helmq", "-U", "root", "helmnode/fly"}, {"helmq", "-U", "root", "helmcore/refresh", "extra"},
        {"ostraq"}, {"ostraq", "network", "xbar", "standard", "add"},
        {"ostraq", "network", "xbar", "standard", "add", "-v", "a", "-x", "b"},
        {"ostraq", "network", "xbar", "standard", "add", "-v", "a", "-v", "b"},
        {"ostraq", "network", "xbar", "standard", "uplink", "add", "-u", "hwport1"},
        {"ostraq", "network", "xbar", "standard", "uplink", "remove", "-v", "xbar0"},
        {"ostraq", "network", "xbar", "standard", "portgroup", "add", "-p", "x"},
        {"ostraq", "system", "settings", "advanced", "set", "-o", "/UserVars/OstraShellTimeOut"},
        {"ostraq", "--formatter=json", "software", "plank", "get", "-n", "gridmesh-opsagent"},
        {"ostraq", "software", "plank", "get"}, {"ostraq", "network", "xbar", "fabric", "add", "-v", "x"},
        {"benchq", "network", "xbar", "standard", "add", "-v", "a"},
        {"benchq", "system", "settings", "advanced", "set", "-i", "5"},
        {"ostra-tune", "-g", "/UserVars/OstraShellTimeOut"}, {"ostra-tune", "-q", "-g"},
        {"ostra-tune", "-q", "-g", "/UserVars/OstraShellTimeOut", "x"},
        {"haltGuests", "--force"}, {"haltGuests", "--terminate", "now"},
        {"tesseltrace", "-w"}, {"tesseltrace", "-w", "-n", "helmd", "-o", "x", "-z"},
        {"tesselping", "10.0.0.1"}, {"tesselping", "-c", "3"}, {"tesselping", "-c", "x", "10.0.0.1"},
        {"tesselping", "-c", "3", "10.0.0.1", "10.0.0.2"}, {"tesselping", "-c", "3", "-q", "10.0.0.1"},
        {"tesselping", "-c", "3", "", "10.0.0.1"},
        {"agents.sh"}, {"agents.sh", "reload"}, {"stateSave.sh"}, {"stateSave.sh", "x"},
        {"factoryState.py"}, {"factoryState.py", "--reset"}, {"factoryState.py", "--reset-only", "now"},
        {"OstraShell"}, {"OstraShell", "enable"}, {"SSH", "status", "extra"}, {"gridmesh-opsagent", "reload"},
        {"gridmeshcfg-xbar", "-p", "Storage", "-I", "tnic0"}, {"gridmeshcfg-xbar", "-m", "-p", "Storage"},
        {"reboot", "--now"}, {"poweroff", "-x"}, {"halt", "-d"}, {"shutdown", "-x"}, {"shutdown", "-h", "-r"},
        {"shutdown", "-h", "tomorrow"}, {"no-such-tool"},
    };
    const json before = State();
    for (const auto& args : wrong) {
        std::string line;
        for (const auto& a : args) line += " [" + a + "]";
        ChildResult result = Tool(args);
        EXPECT_TRUE(result.exited) << line;
        EXPECT_EQ(result.status, 2) << line;
        EXPECT_FALSE(result.err.empty()) << line;
    }
    EXPECT_EQ(State(), before);
}

TEST_F(ToolsTest, ProgramNeedsAnAbsoluteRootAndATool) {
    EXPECT_EQ(HostSimTest::Run({HOSTSIM_TOOL}).status, 2);
    EXPECT_EQ(HostSimTest::Run({HOSTSIM_TOOL, "--root", "relative/root", "poweroff"}).status, 2);
    EXPECT_EQ(HostSimTest::Run({HOSTSIM_TOOL, "--root", root_.Path()}).status, 2);
    EXPECT_EQ(State()["power"]["state"], "on");
}

TEST_F(ToolsTest, DamagedOrMissingStateGivesStatusOneNamingTheFile) {
    { std::ofstream(root_.Store().StatePath()) << "{ not json"; }
    ChildResult result = Tool({"SSH", "status"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find(root_.Store().StatePath()), std::string::npos) << result.err;

    std::filesystem::remove(root_.Store().StatePath());
    result = Tool({"poweroff"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("missing"), std::string::npos) << result.err;
}

TEST_F(ToolsTest, HelmqRefusesUsersTheAgentDoesNotKnow) {
    ChildResult refused = Tool({"helmq", "-U", "guest", "helmcore/refresh"});
    EXPECT_EQ(refused.status, 255);
    EXPECT_FALSE(refused.err.empty());
    EXPECT_EQ(Tool({"helmq", "-U", "nobody", "helmsvc/auth/lockdown_is_enabled"}).status, 255);
    EXPECT_EQ(Tool({"helmq", "-U", "root", "helmcore/refresh"}).status, 0);

    // An explicit list replaces the permitted accounts; the service account stays allowed.
    Change([](json& s) { s["hostAgent"]["users"] = json::array({"guest"}); });
    EXPECT_EQ(Tool({"helmq", "-U", "root", "helmcore/refresh"}).status, 255);
    EXPECT_EQ(Tool({"helmq", "-U", "guest", "helmcore/refresh"}).status, 0);
    EXPECT_EQ(Tool({"helmq", "-U", "lanyx", "helmcore/refresh"}).status, 0);
}

TEST_F(ToolsTest, HelmqLockdownQueriesAndChanges) {
    ChildResult enabled = Tool({"helmq", "-U", "lanyx", "helmsvc/auth/lockdown_is_enabled"});
    EXPECT_EQ(enabled.status, 0);
    EXPECT_EQ(enabled.out, "false\n");
    EXPECT_EQ(Tool({"helmq", "-U", "lanyx", "helmsvc/auth/lockdown_is_possible"}).out, "true\n");

    EXPECT_EQ(Tool({"helmq", "-U", "lanyx", "helmsvc/auth/lockdown_mode_enter"}).status, 0);
    EXPECT_EQ(Tool({"helmq", "-U", "lanyx", "helmsvc/auth/lockdown_is_enabled"}).out, "true\n");
    EXPECT_EQ(Tool({"helmq", "-U", "lanyx", "helmsvc/auth/lockdown_mode_exit"}).status, 0);
    EXPECT_FALSE(State()["lockdown"]["enabled"].get<bool>());

    Change([](json& s) { s["lockdown"]["possible"] = false; });
    ChildResult impossible = Tool({"helmq", "-U", "lanyx", "helmsvc/auth/lockdown_mode_enter"});
    EXPECT_NE(impossible.status, 0);
    EXPECT_FALSE(impossible.err.empty());
    EXPECT_FALSE(State()["lockdown"]["enabled"].get<bool>());
}

TEST_F(ToolsTest, HelmqSwitchesServicesAndNeedsTheAgentRunning) {
    EXPECT_EQ(Tool({"helmq", "-U", "root", "helmnode/start_ostra_shell"}).status, 0);
    EXPECT_EQ(Tool({"helmq", "-U", "root", "helmnode/enable_ostra_shell"}).status, 0);
    EXPECT_EQ(Tool({"helmq", "-U", "root", "helmnode/stop_ssh"}).status, 0);
    EXPECT_EQ(Tool({"helmq", "-U", "root", "helmnode/disable_ssh"}).status, 0);
    json services = State()["services"];
    EXPECT_EQ(services["OstraShell"], json({{"running", true}, {"enabled", true}}));
    EXPECT_EQ(services["SSH"], json({{"running", false}, {"enabled", false}}));
    EXPECT_EQ(Tool({"OstraShell", "status"}).status, 0);
    EXPECT_EQ(Tool({"SSH", "status"}).status, 3);

    EXPECT_EQ(Tool({"agents.sh", "stop"}).status, 0);
    EXPECT_EQ(Tool({"helmq", "-U", "lanyx", "helmcore/refresh"}).status, 1);
    EXPECT_NE(Tool({"tesseltrace", "-w", "-n", "helmd", "-o", "helmd-restart%", "-d", "/var/log/"}).status, 0);
    EXPECT_EQ(Tool({"agents.sh", "start"}).status, 0);
    EXPECT_EQ(Tool({"helmq", "-U", "lanyx", "helmcore/refresh"}).status, 0);
}

TEST_F(ToolsTest, InitScriptsReportAndChangeTheirService) {
    EXPECT_EQ(Tool({"OstraShell", "status"}).status, 3);
    EXPECT_EQ(Tool({"OstraShell", "start"}).status, 0);
    EXPECT_EQ(Tool({"OstraShell", "status"}).status, 0);
    EXPECT_EQ(Tool({"SSH", "stop"}).status, 0);
    EXPECT_EQ(Tool({"SSH", "status"}).status, 3);
    EXPECT_EQ(Tool({"SSH", "restart"}).status, 0);
    EXPECT_TRUE(State()["services"]["SSH"]["running"].get<bool>());

    EXPECT_EQ(Tool({"gridmesh-opsagent", "status"}).status, 0);
    EXPECT_EQ(Tool({"gridmesh-opsagent", "stop"}).status, 0);
    EXPECT_EQ(Tool({"gridmesh-opsagent", "status"}).status, 3);
    Change([](json& s) { s["gridmesh"]["present"] = false; });
    EXPECT_NE(Tool({"gridmesh-opsagent", "status"}).status, 0);
    EXPECT_NE(Tool({"gridmesh-opsagent", "start"}).status, 0);
    EXPECT_NE(Tool({"ostraq", "--formatter=keyvalue", "software", "plank", "get", "-n", "gridmesh-opsagent"}).status, 0);
}

TEST_F(ToolsTest, OstraqReportsTheAgentVersionAsKeyValueLines) {
    ChildResult result = Tool({"ostraq", "--formatter=keyvalue", "software", "plank", "get", "-n", "gridmesh-opsagent"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.out.find("\nVersion=3.1.0\n"), std::string::npos) << result.out;
    // Only one line may mention the version: the console's check picks it out by that word.
    EXPECT_EQ(result.out.find("Version"), result.out.rfind("Version"));
    EXPECT_NE(Tool({"ostraq", "--formatter=keyvalue", "software", "plank", "get", "-n", "other"}).status, 0);
}

TEST_F(ToolsTest, OstraqCreatesSwitchesUplinksAndPortGroups) {
    EXPECT_EQ(Tool({"ostraq", "network", "xbar", "standard", "add", "-v", "xbar1"}).status, 0);
    ChildResult again = Tool({"ostraq", "network", "xbar", "standard", "add", "-v", "xbar1"});
    EXPECT_EQ(again.status, 1);
    EXPECT_NE(again.out.find("already exists"), std::string::npos) << again.out;
    EXPECT_EQ(Tool({"ostraq", "network", "xbar", "standard", "add", "-v", std::string(32, 'n')}).status, 1);

    // hwport0 is taken by xbar0 and hwport2 by a fabric.
    EXPECT_EQ(Tool({"ostraq", "network", "xbar", "standard", "uplink", "add", "-u", "hwport0", "-v", "xbar1"}).status, 1);
    EXPECT_EQ(Tool({"ostraq", "network", "xbar", "standard", "uplink", "add", "-u", "hwport2", "-v", "xbar1"}).status, 1);
    EXPECT_EQ(Tool({"ostraq", "network", "xbar", "standard", "uplink", "remove", "-u", "hwport2", "-v", "fabric0"}).status, 1);
    EXPECT_EQ(Tool({"ostraq", "network", "xbar", "standard", "uplink", "add", "-u", "hwport9", "-v", "xbar1"}).status, 1);
    // Options in either order.
    EXPECT_EQ(Tool({"ostraq", "network", "xbar", "standard", "uplink", "remove", "-v", "xbar0", "-u", "hwport0"}).status, 0);
    EXPECT_EQ(Tool({"ostraq", "network", "xbar", "standard", "uplink", "add", "-u", "hwport0", "-v", "xbar1"}).status, 0);
    EXPECT_EQ(Tool({"ostraq", "network", "xbar", "standard", "uplink", "remove", "-u", "hwport0", "-v", "xbar0"}).status, 1);

    EXPECT_EQ(Tool({"ostraq", "network", "xbar", "standard", "portgroup", "add", "-p", "VM Network", "-v", "xbar1"}).status, 0);
    EXPECT_EQ(Tool({"ostraq", "network", "xbar", "standard", "portgroup", "add", "-p", "VM Network", "-v", "xbar0"}).status, 1);
    EXPECT_EQ(Tool({"ostraq", "network", "xbar", "standard", "portgroup", "add", "-p", "X", "-v", "nope"}).status, 1);

    json state = State();
    EXPECT_EQ(state["switches"][0]["uplinks"], json::array());
    EXPECT_EQ(state["switches"][0]["teaming"]["uplinkOrder"], json::array());
    EXPECT_EQ(state["switches"][1]["name"], "xbar1");
    EXPECT_EQ(state["switches"][1]["uplinks"], json::array({"hwport0"}));
    EXPECT_EQ(state["switches"][1]["portGroups"], json::array({"VM Network"}));
    EXPECT_EQ(state["portGroups"].size(), 3u);
    EXPECT_EQ(state["portGroups"][2]["switch"], "xbar1");
}

TEST_F(ToolsTest, AdvancedOptionsAreSetByOstraqOrBenchqAndReadByOstraTune) {
    const std::string option = "/UserVars/OstraShellTimeOut";
    EXPECT_EQ(Tool({"ostra-tune", "-q", "-g", option}).out, "600\n");
    EXPECT_EQ(Tool({"ostraq", "system", "settings", "advanced", "set", "-o", option, "-i", "86400"}).status, 0);
    EXPECT_EQ(Tool({"ostra-tune", "-q", "-g", option}).out, "86400\n");
    EXPECT_EQ(Tool({"benchq", "system", "settings", "advanced", "set", "-o", option, "-i", "60"}).status, 0);
    EXPECT_EQ(Tool({"ostra-tune", "-q", "-g", option}).out, "60\n");

    EXPECT_EQ(Tool({"ostraq", "system", "settings", "advanced", "set", "-o", option, "-i", "86401"}).status, 1);
    EXPECT_EQ(Tool({"ostraq", "system", "settings", "advanced", "set", "-o", option, "-i", "1x"}).status, 1);
    EXPECT_EQ(Tool({"ostraq", "system", "settings", "advanced", "set", "-o", "/UserVars/Motd", "-i", "1"}).status, 1);
    EXPECT_EQ(Tool({"benchq", "system", "settings", "advanced", "set", "-o", "/No/Such", "-i", "1"}).status, 1);
    EXPECT_EQ(Tool({"ostra-tune", "-q", "-g", option}).out, "60\n");
    EXPECT_EQ(Tool({"ostra-tune", "-q", "-g", "/No/Such"}).status, 1);
}

TEST_F(ToolsTest, GridmeshMoveTakesTheInterfaceToThePortGroup) {
    ChildResult moved = Tool({"gridmeshcfg-xbar", "-m", "-p", "Storage", "-I", "tnic0"});
    ASSERT_EQ(moved.status, 0) << moved.err;
    json state = State();
    EXPECT_EQ(state["network"]["interfaces"][0]["connection"], json({{"type", "portgroup"}, {"portGroup", "Storage"}}));
    EXPECT_EQ(state["portGroups"][0]["activeClients"], 0);
    EXPECT_EQ(state["portGroups"][1]["activeClients"], 1);

    EXPECT_EQ(Tool({"gridmeshcfg-xbar", "-m", "-p", "Nowhere", "-I", "tnic0"}).status, 1);
    EXPECT_EQ(Tool({"gridmeshcfg-xbar", "-m", "-p", "Storage", "-I", "tnic9"}).status, 1);
    Change([](json& s) { s["gridmesh"]["present"] = false; });
    EXPECT_EQ(Tool({"gridmeshcfg-xbar", "-m", "-p", "Management Network", "-I", "tnic0"}).status, 1);
}

TEST_F(ToolsTest, TesselpingAnswersOnlyForReachableAddresses) {
    EXPECT_EQ(Tool({"tesselping", "-c", "3", "-I", "tnic0", "10.0.0.1"}).status, 0);
    EXPECT_EQ(Tool({"tesselping", "-c", "3", "10.0.0.1"}).status, 0);
    EXPECT_EQ(Tool({"tesselping", "-c", "3", "-I", "tnic0", "fe80::1"}).status, 0);
    EXPECT_EQ(Tool({"tesselping", "-c", "3", "-I", "tnic0", "10.0.0.2"}).status, 1);
    EXPECT_EQ(Tool({"tesselping", "-c", "3", "-I", "tnic7", "10.0.0.1"}).status, 1);
}

TEST_F(ToolsTest, PoweroffIsRecordedAndNothingElseChanges) {
    json before = Configuration();
    ChildResult result = Tool({"poweroff"});
    ASSERT_EQ(result.status, 0) << result.err;
    json after = Configuration();
    ASSERT_EQ(after["power"]["state"], "off");
    ASSERT_EQ(after["power"]["history"].size(), 1u);
    EXPECT_EQ(after["power"]["history"][0]["action"], "poweroff");
    EXPECT_EQ(after["power"]["history"][0]["args"], json::array());
    after.erase("power");
    before.erase("power");
    EXPECT_EQ(after, before);
}

TEST_F(ToolsTest, RebootAndShutdownRecordTheirKind) {
    EXPECT_EQ(Tool({"reboot", "-f"}).status, 0);
    EXPECT_EQ(State()["power"]["state"], "rebooting");
    EXPECT_EQ(Tool({"halt"}).status, 0);
    EXPECT_EQ(State()["power"]["state"], "off");
    EXPECT_EQ(Tool({"shutdown", "-r", "now"}).status, 0);
    json power = State()["power"];
    EXPECT_EQ(power["state"], "rebooting");
    ASSERT_EQ(power["history"].size(), 3u);
    EXPECT_EQ(power["history"][0]["args"], json::array({"-f"}));
    EXPECT_EQ(power["history"][2]["action"], "shutdown");
}

TEST_F(ToolsTest, HaltGuestsStopsRunningGuests) {
    EXPECT_EQ(Tool({"haltGuests"}).status, 0);
    const json state = State();
    for (const auto& guest : state["guests"]) EXPECT_FALSE(guest["running"].get<bool>());
    Change([](json& s) { s["guests"][1]["running"] = true; });
    EXPECT_EQ(Tool({"haltGuests", "--terminate"}).status, 0);
    EXPECT_FALSE(State()["guests"][1]["running"].get<bool>());
}

TEST_F(ToolsTest, FactoryResetUsesTheSnapshotOrTheDefaults) {
    Change([](json& s) { s["lockdown"]["enabled"] = true; });
    ASSERT_EQ(Tool({"factoryState.py", "--reset-only"}).status, 0);
    json state = State();
    EXPECT_EQ(state["advancedOptions"]["/UserVars/OstraShellTimeOut"]["value"], 0);
    EXPECT_EQ(state["advancedOptions"]["/UserVars/Motd"]["value"], "");
    EXPECT_FALSE(state["services"]["SSH"]["running"].get<bool>());
    EXPECT_FALSE(state["lockdown"]["enabled"].get<bool>());
    EXPECT_EQ(state["welcomeMessage"], "");
    EXPECT_EQ(state["power"]["state"], "on");
    ASSERT_FALSE(state["toolRecords"].empty());
    EXPECT_EQ(state["toolRecords"].back()["tool"], "factoryState.py");

    Change([](json& s) { s["factory"] = {{"welcomeMessage", "factory text"}, {"lockdown", {{"enabled", false}, {"possible", false}}}}; });
    ASSERT_EQ(Tool({"factoryState.py", "--reset-only"}).status, 0);
    state = State();
    EXPECT_EQ(state["welcomeMessage"], "factory text");
    EXPECT_FALSE(state["lockdown"]["possible"].get<bool>());
}

TEST_F(ToolsTest, StateSaveAndTraceLeaveTheirRecords) {
    EXPECT_EQ(Tool({"stateSave.sh", "0"}).status, 0);
    EXPECT_EQ(State()["toolRecords"].back()["args"], json::array({"0"}));

    ChildResult trace = Tool({"tesseltrace", "-w", "-n", "helmd", "-o", "helmd-restart%", "-d", "/var/log/"});
    ASSERT_EQ(trace.status, 0) << trace.err;
    EXPECT_TRUE(std::filesystem::exists(root_.Path() + "/var/log/helmd-restart1.core"));
    EXPECT_EQ(Tool({"tesseltrace", "-w", "-n", "helmd", "-o", "helmd-restart%", "-d", "/var/log/"}).status, 0);
    EXPECT_TRUE(std::filesystem::exists(root_.Path() + "/var/log/helmd-restart2.core"));
    EXPECT_NE(Tool({"tesseltrace", "-w", "-n", "sshd", "-o", "x%", "-d", "/var/log/"}).status, 0);
}

TEST_F(ToolsTest, ExitFaultReplacesTheToolsWork) {
    SetFault("poweroff", {{"exit", 7}});
    ChildResult result = Tool({"poweroff"});
    EXPECT_EQ(result.status, 7);
    EXPECT_EQ(State()["power"]["state"], "on");
    // The fault is the tool's alone.
    EXPECT_EQ(Tool({"reboot"}).status, 0);
    SetFault("helmq", {{"exit", 255}});
    EXPECT_EQ(Tool({"helmq", "-U", "lanyx", "helmsvc/auth/lockdown_is_enabled"}).status, 255);
}

TEST_F(ToolsTest, OutputFaultPrintsAndExitsZeroUnlessAStatusIsSet) {
    SetFault("helmq", {{"output", "true"}});
    ChildResult result = Tool({"helmq", "-U", "lanyx", "helmsvc/auth/lockdown_is_enabled"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "true\n");
    EXPECT_EQ(Tool({"helmq", "-U", "lanyx", "helmsvc/auth/lockdown_mode_enter"}).status, 0);
    EXPECT_FALSE(State()["lockdown"]["enabled"].get<bool>());

    SetFault("ostra-tune", {{"output", "abc"}, {"exit", 3}});
    result = Tool({"ostra-tune", "-q", "-g", "/UserVars/OstraShellTimeOut"});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.out, "abc\n");
}

TEST_F(ToolsTest, HangFaultLastsUntilKilled) {
    SetFault("tesselping", {{"output", "waiting"}, {"hang", true}});
    HostSimTest::Child child({HOSTSIM_TOOL, "--root", root_.Path(), "tesselping", "-c", "3", "10.0.0.1"});
    ASSERT_TRUE(child.ReadUntil([&] { return child.Result().out == "waiting\n"; }, std::chrono::seconds(20)));
    EXPECT_FALSE(child.Reap(false)) << "the tool ended although it should hang";
    child.Kill();
    EXPECT_TRUE(child.Result().signaled);

    // Cleared, the tool works again.
    Change([](json& s) { s["faults"]["tool"].erase("tesselping"); });
    EXPECT_EQ(Tool({"tesselping", "-c", "3", "10.0.0.1"}).status, 0);
}

} // namespace
