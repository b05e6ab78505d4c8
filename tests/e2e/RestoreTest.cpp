// The network restore screens on stranded simulated hosts: each repair through the real console,
// the host state before and after, the welcome screen's address afterwards and the records.
#include <csignal>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "harness/Session.hpp"

using namespace LanyxE2E;
using nlohmann::json;
using Strings = std::vector<std::string>;

namespace {

const std::string_view kF11 = Keys::F(11);
const std::string kChange = "<Enter> Change             <Esc> Exit";

// Logged in on `profile` with the network restore menu open.
std::unique_ptr<Session> OpenRestore(const std::string& profile, SessionOptions options = {}) {
    auto s = std::make_unique<Session>(profile, std::move(options));
    EXPECT_TRUE(s->Walk({"@login", "Network Restore Options"}));
    EXPECT_TRUE(s->Screen().WaitForText("Create Standard Switch"));
    return s;
}

// `text` shown, then Enter closes its box.
::testing::AssertionResult Acknowledge(Session& s, std::string_view text) {
    if (auto shown = s.Screen().WaitForText(text); !shown)
        return shown;
    return s.Press({Keys::Enter});
}

// Empties the field the cursor is in, `length` characters long.
void Clear(Session& s, size_t length) {
    ASSERT_TRUE(s.Key(Keys::Home));
    for (size_t i = 0; i <= length; ++i)
        ASSERT_TRUE(s.Key(Keys::Delete));
}

const json* Named(const json& list, const std::string& name) {
    for (const json& entry : list)
        if (entry.value("name", "") == name)
            return &entry;
    return nullptr;
}

json Management(const json& state) {
    return *Named(state["network"]["interfaces"],
                  state["network"]["managementInterface"].get<std::string>());
}

bool AnyGuestRunning(const json& state) {
    return std::ranges::any_of(state["guests"],
                               [](const json& guest) { return guest.value("running", false); });
}

size_t Count(const HostRoot& host, const std::string& line, Record record = Record::Syslog) {
    return host.Matching(record, line).size();
}

// Lines of the system log since the mark that tell of this standard switch command.
size_t Logged(const HostRoot& host, const std::string& command, const std::string& outcome) {
    return Count(host, "Command \"ostraq network xbar standard " + command + "\" " + outcome);
}

// Esc out of the restore menu and the main menu: the welcome screen of the repaired host.
void ExpectWelcomeAddress(Session& s, const std::string& address) {
    ASSERT_TRUE(s.Press({Keys::Escape, Keys::Escape}));
    ASSERT_TRUE(s.AwaitWelcome());
    EXPECT_TRUE(s.Screen().Find(address)) << s.Screen().Describe();
}

// ---------------------------------------------------------------- the menu

TEST(Restore, MenuGreysWhatCannotWorkAndSkipsIt) {
    struct Case {
        std::string profile;
        std::vector<int> greyed;
        Strings walk;       // what Down selects from the first entry
        std::string footer; // the last entry's own
    };
    const std::string restart = "<Enter> Restart            <Esc> Exit";
    // clang-format off
    const std::vector<Case> cases = {
        {"default", {2, 4, 5}, {"Create Port Group", "Restore Network Settings", "Restore Network Settings"}, restart},
        {"fabric", {2}, {"Create Port Group", "Restore Network Settings", "Restore Standard Switch", "Restore fabric"},
         "<Enter> Restore            <Esc> Exit"},
        {"gridmesh", {4, 5}, {"Create Port Group", "Migrate Tessel NIC to Standard", "Restore Network Settings",
                              "Restore Network Settings"}, restart},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.profile);
        auto s = OpenRestore(c.profile);
        EXPECT_EQ(s->RightTitle(), "Create Standard Switch");
        EXPECT_EQ(s->RightFooter(), kChange) << s->Screen().Describe();
        for (int line = 0; line < 6; ++line)
            EXPECT_EQ(s->Greyed(line), std::ranges::count(c.greyed, line) == 1) << line;
        for (const std::string& title : c.walk) {
            ASSERT_TRUE(s->Press({Keys::Down}));
            ASSERT_EQ(s->RightTitle(), title) << s->Screen().Describe();
        }
        // The entry's own word after a move, "Change" again after its dialog.
        EXPECT_EQ(s->RightFooter(), c.footer);
        ASSERT_TRUE(s->Press({Keys::Enter, Keys::Escape}));
        EXPECT_EQ(s->RightFooter(), kChange) << s->Screen().Describe();
    }
}

// ---------------------------------------------------------------- factory restore failures

TEST(Restore, FactoryRestoreFailuresStopWhereTheyHappen) {
    struct Case {
        std::string step; // the host tool or library operation that fails
        bool guests;
        std::string shown;  // the progress text's first line
        std::string logged; // the error line
        bool cleared;       // the network configuration went
    };
    const std::string autoFailed = "auto-configuring network failed";
    // clang-format off
    const std::vector<Case> cases = {
        {"haltGuests", true, "Powering Off VMs. Failed.", "Powering off VMs failed", false},
        {"DisableNetDumper", true, "Powering Off VMs. Done.", autoFailed, false},
        {"DisableNetDumper", false, "Failed.", autoFailed, false},
        {"ClearNetworkConfig", false, "Auto-configuring network. Failed.", autoFailed, false},
        {"AutoConfigNetwork", false, "Auto-configuring network. Failed.", autoFailed, true},
    };
    // clang-format on
    auto s = OpenRestore("default");
    Console& console = s->Screen();
    HostRoot& host = s->Host();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.step);
        host.Edit([&](json& state) {
            for (json& guest : state["guests"])
                guest["running"] = c.guests;
        });
        host.Fault({"clear"});
        if (c.step == "haltGuests")
            host.Fault({"tool", "haltGuests", "exit", "1"});
        else
            host.LibFault("NetworkInfoImpl::" + c.step, "busy");
        host.Mark();
        const json before = host.State();
        ASSERT_TRUE(s->OpenEntry("Restore Network Settings"));
        ASSERT_TRUE(s->Press({kF11}));
        if (c.guests) {
            ASSERT_TRUE(Acknowledge(*s, "Warning: VMs running on the host"));
        }
        ASSERT_TRUE(console.WaitForText("<Enter> OK"));
        EXPECT_TRUE(console.Find(c.shown)) << console.Describe();
        EXPECT_FALSE(console.Find("Done.\nAuto")) << console.Describe();
        EXPECT_EQ(host.Messages("user.err"), Strings{c.logged});
        EXPECT_EQ(host.State()["network"]["interfaces"].empty(), c.cleared);
        if (!c.cleared) {
            EXPECT_EQ(host.State()["switches"], before["switches"]);
        }
        ASSERT_TRUE(s->Press({Keys::Enter}));
        // The records follow in every case.
        EXPECT_EQ(Count(host, "nota.user.lanyx.factory.network.restored", Record::Notad), 1u);
    }
}

// ---------------------------------------------------------------- safe mode and factory restore

TEST(Restore, SafeModeThenFactoryRestoreOfAStrandedHost) {
    auto s = OpenRestore("fabric-broken");
    Console& console = s->Screen();
    HostRoot& host = s->Host();
    json before = host.State();
    ASSERT_TRUE(s->OpenEntry("Restore Standard Switch"));
    ASSERT_TRUE(console.WaitForText("Move the management network onto a standard switch?"));
    ASSERT_TRUE(s->Press({Keys::Enter, Keys::Escape}));
    EXPECT_EQ(host.State()["network"], before["network"]) << "Esc leaves the host as it was";
    EXPECT_EQ(host.State()["switches"], before["switches"]);
    EXPECT_FALSE(s->Greyed(4));

    ASSERT_TRUE(s->OpenEntry("Restore Standard Switch"));
    ASSERT_TRUE(s->Press({kF11}));
    EXPECT_FALSE(console.Find("Move the management network")) << console.Describe();
    EXPECT_TRUE(s->Greyed(4)) << "done once, the entry greys";
    EXPECT_EQ(s->RightTitle(), "Restore fabric") << "and the selection moves on";
    EXPECT_FALSE(s->Greyed(5));

    json after = host.State();
    json nic = Management(after);
    EXPECT_EQ(nic["connection"],
              (json{{"type", "portgroup"}, {"portGroup", "Management Network1"}}));
    EXPECT_TRUE(nic["enabled"]);
    const json* other = Named(after["network"]["interfaces"], "tnic1");
    EXPECT_FALSE(other->at("enabled")) << "every other interface stays off";
    EXPECT_EQ(other->at("connection")["type"], "fabric") << "and keeps its place";
    const json* xbar = Named(after["switches"], "xbar0");
    ASSERT_NE(xbar, nullptr);
    EXPECT_EQ((*xbar)["uplinks"], (Strings{"hwport2", "hwport3"}));
    EXPECT_EQ((*xbar)["portGroups"], Strings{"Management Network1"});
    EXPECT_EQ((*xbar)["teaming"]["uplinkOrder"], (Strings{"hwport2", "hwport3"}));
    EXPECT_EQ((*xbar)["numPorts"], 128);
    EXPECT_EQ(Named(after["switches"], "switch0")->at("uplinks"), (Strings{"hwport0", "hwport1"}));
    EXPECT_TRUE(after["fabrics"][0]["uplinks"].empty());
    EXPECT_EQ(
        Count(host, "Enabling safe mode networking by moving all uplinks to a new management xbar"),
        1u);
    EXPECT_TRUE(host.Messages("user.err").empty());
    ExpectWelcomeAddress(*s, "https://192.168.10.21/ (STATIC)");

    // Safe mode left the host reachable; the factory settings take the fabric away altogether.
    ASSERT_TRUE(s->Walk({"@login", "Network Restore Options"}));
    before = host.State();
    ASSERT_TRUE(AnyGuestRunning(before));
    ASSERT_TRUE(s->OpenEntry("Restore Network Settings"));
    ASSERT_TRUE(console.WaitForText("Are you sure you want to reset the host"));
    ASSERT_TRUE(s->Press({Keys::Enter}));
    EXPECT_TRUE(console.Find("Restore Network Factory Settings")) << "only F11 confirms";

    // Esc at the warning: back in the menu, nothing changed, no guest stopped.
    ASSERT_TRUE(s->Press({kF11}));
    ASSERT_TRUE(console.WaitForText("Warning: VMs running on the host"));
    ASSERT_TRUE(s->Press({Keys::Escape}));
    EXPECT_FALSE(console.Find("Restore Network Factory Settings")) << console.Describe();
    EXPECT_EQ(s->RightTitle(), "Restore Network Settings");
    EXPECT_EQ(host.State()["network"], before["network"]);
    EXPECT_TRUE(AnyGuestRunning(host.State()));

    host.Mark();
    ASSERT_TRUE(s->Press({Keys::Enter, kF11}));
    ASSERT_TRUE(Acknowledge(*s, "Warning: VMs running on the host"));
    ASSERT_TRUE(console.WaitForText("Powering Off VMs. Done."));
    EXPECT_TRUE(console.Find("Auto-configuring network. Done.")) << console.Describe();
    ASSERT_TRUE(s->Press({Keys::Escape}));
    EXPECT_TRUE(console.Find("Powering Off VMs. Done.")) << "only Enter closes";
    ASSERT_TRUE(s->Press({Keys::Enter}));
    EXPECT_EQ(s->RightTitle(), "Restore Network Settings");

    after = host.State();
    EXPECT_FALSE(AnyGuestRunning(after));
    EXPECT_FALSE(after["network"]["netDump"]["enabled"]);
    nic = Management(after);
    EXPECT_EQ(nic["connection"],
              (json{{"type", "portgroup"}, {"portGroup", "Management Network"}}));
    EXPECT_EQ(nic["ipv4"]["mode"], "dhcp");
    EXPECT_EQ(Named(after["portGroups"], "Management Network")->at("switch"), "switch0");
    EXPECT_TRUE(after["fabrics"].empty());
    for (const char* line : {"Clearing Network Config", "Auto-Configuring Network",
                             "Restoring factory network settings"})
        EXPECT_EQ(Count(host, line), 1u) << line;
    EXPECT_EQ(Count(host, "nota.user.lanyx.factory.network.restored", Record::Notad), 1u);
    ExpectWelcomeAddress(*s, "https://192.168.10.57/ (DHCP)");
}

// ---------------------------------------------------------------- fabric restore

// A failing step takes the port back, a fabric of another maker is refused; then the port
// is made.
TEST(Restore, FabricRestoreMakesAHostLocalPortOrTakesItBack) {
    auto s = OpenRestore("fabric-misconfigured");
    Console& console = s->Screen();
    HostRoot& host = s->Host();
    const json before = host.State();
    const std::string vlanRange = "Invalid FabricPort vlan specified. Valid range is 0-4094.";
    // The first step and the last refusing (nothing made; a port made and taken back), or a VLAN
    // out of range before anything is made.
    const std::vector<std::tuple<std::string, std::string, std::string>> cases = {
        {"FabricPortImpl::CreateFabricPort", "", "refused"},
        {"TesselNicImpl::ConnectTo", "", "refused"},
        {"", "4095", vlanRange}};
    for (const auto& [operation, vlan, logged] : cases) {
        SCOPED_TRACE(operation + vlan);
        host.Fault({"clear"});
        if (!operation.empty())
            host.LibFault(operation, "refused");
        host.Mark();
        ASSERT_TRUE(s->OpenEntry("Restore fabric"));
        ASSERT_TRUE(console.WaitForText("Management Interface - tnic0"));
        if (!vlan.empty()) {
            ASSERT_TRUE(s->Press({Keys::Down, Keys::Down}) && s->Type(vlan));
        }
        ASSERT_TRUE(s->Press({kF11, Keys::Enter})); // continue without uplinks
        ASSERT_TRUE(Acknowledge(*s, "Unable to restore fabric. Check logs for details."));
        EXPECT_EQ(host.Messages("user.err"),
                  Strings{"Unable to create Host Local Port: " + logged});
        EXPECT_EQ(host.State()["fabrics"], before["fabrics"]);
        EXPECT_EQ(Management(host.State()), Management(before));
        EXPECT_EQ(s->RightTitle(), "Restore fabric") << "F11 closes the form whatever came of it";
    }

    // A fabric of another maker is refused before anything is made.
    host.Fault({"clear"});
    host.Edit([](json& state) { state["fabrics"][0]["lanyxOwned"] = false; });
    ASSERT_TRUE(s->OpenEntry("Restore fabric"));
    ASSERT_TRUE(s->Press({Keys::Down, Keys::Enter}));
    ASSERT_TRUE(Acknowledge(*s, "performed on 3rd party fabric."));
    ASSERT_TRUE(console.WaitForText("No uplinks are configured on the host for this fabric."));
    ASSERT_TRUE(s->Press({Keys::Enter, kF11, Keys::Enter}));
    ASSERT_TRUE(Acknowledge(*s, "performed on 3rd party fabric."));
    EXPECT_EQ(host.State()["fabrics"][0]["ports"], before["fabrics"][0]["ports"]);
    host.Edit([](json& state) { state["fabrics"][0]["lanyxOwned"] = true; });

    // The fabric's own maker again, and nothing failing: the port is made.
    const json oldPort = host.State()["fabrics"][0]["ports"][0];
    ASSERT_TRUE(s->OpenEntry("Restore fabric"));
    ASSERT_TRUE(console.WaitForText("Management Interface - tnic0"));
    EXPECT_TRUE(console.Find("Current FabricPort - 12"));
    EXPECT_TRUE(console.Find("[ ] Restore to default blocked setting (unblocked)"));
    EXPECT_TRUE(console.Find("[ 999   ]")) << console.Describe();

    // F11 without uplinks asks; Esc keeps the form with its values.
    ASSERT_TRUE(s->Press({kF11}));
    ASSERT_TRUE(console.WaitForText("No uplinks were selected."));
    ASSERT_TRUE(s->Press({Keys::Escape, " "}));
    EXPECT_TRUE(console.Find("[X] Restore to default blocked setting")) << console.Describe();
    ASSERT_TRUE(s->Press({Keys::Down, Keys::Enter}));
    ASSERT_TRUE(console.WaitForText("Select the fabric Uplinks (one or more)"));
    EXPECT_TRUE(console.Find("[ ] uplink1"));
    // Ticked uplink2 first, then uplink1: that is their order.
    ASSERT_TRUE(s->Press({Keys::Down, " ", Keys::Up, " "}));
    EXPECT_TRUE(console.Find("[X] uplink1"));
    // Esc in the uplink list keeps the earlier choice.
    ASSERT_TRUE(s->Press({Keys::Enter, Keys::Enter}));
    ASSERT_TRUE(console.WaitForText("[X] uplink2"));
    ASSERT_TRUE(s->Press({" ", Keys::Escape, Keys::Down}));
    ASSERT_TRUE(s->Type("10"));
    ASSERT_TRUE(s->Press({kF11}));
    EXPECT_FALSE(console.Find("Management Interface - tnic0")) << console.Describe();

    const json after = host.State();
    const json nic = Management(after);
    ASSERT_EQ(nic["connection"]["type"], "fabric");
    const std::string id = nic["connection"]["portId"];
    EXPECT_TRUE(id.starts_with("hlp-12#")) << id;
    const json* port = nullptr;
    for (const json& each : after["fabrics"][0]["ports"])
        if (each["id"] == id)
            port = &each;
    ASSERT_NE(port, nullptr);
    EXPECT_EQ((*port)["vlan"], 10);
    EXPECT_FALSE((*port)["blocked"]);
    EXPECT_TRUE((*port)["hostLocal"]);
    json properties = (*port)["properties"];
    EXPECT_EQ(properties["teamPolicy"]["active"], (Strings{"uplink2", "uplink1"}));
    EXPECT_EQ(properties["teamPolicy"]["policy"], 3);
    for (const char* key :
         {"txUplink", "ipfix", "security", "shapingIn", "shapingOut", "persistencePath",
          "vendorStrings", "vendorBinary", "overlayParams", "resPools", "resPoolAssoc"})
        EXPECT_EQ(properties[key], oldPort["properties"][key]) << key;
    EXPECT_EQ(after["fabrics"][0]["ports"][0], oldPort) << "the old port is left alone";
    ExpectWelcomeAddress(*s, "https://192.168.10.21/ (STATIC)");
}

// ---------------------------------------------------------------- port group and new switch

TEST(Restore, CreatePortGroupAndStandardSwitch) {
    auto s = OpenRestore("default");
    Console& console = s->Screen();
    HostRoot& host = s->Host();
    ASSERT_TRUE(s->OpenEntry("Create Port Group"));
    ASSERT_TRUE(console.WaitForText("Enter the properties for the new port group"));
    EXPECT_TRUE(console.Find("(o) switch0")) << console.Describe();

    ASSERT_TRUE(s->Press({Keys::Enter}));
    ASSERT_TRUE(Acknowledge(*s, "Please enter a valid port group name."));
    ASSERT_TRUE(s->Press({Keys::Down, "d"}));
    ASSERT_TRUE(console.WaitForText("Switch Name: switch0"));
    EXPECT_TRUE(console.Find("Uplinks: hwport0,hwport1"));
    ASSERT_TRUE(s->Press({Keys::Enter, Keys::Up}));

    // Taken, too long for the host: the form stays with its text.
    const json before = host.State();
    for (const std::string& name : {std::string("VM Network"), std::string(127, 'p')}) {
        SCOPED_TRACE(name.size());
        ASSERT_TRUE(s->Type(name));
        ASSERT_TRUE(s->Press({Keys::Enter}));
        ASSERT_TRUE(Acknowledge(*s, "Operation Failed"));
        EXPECT_TRUE(console.Find(name.substr(name.size() - 10))) << console.Describe();
        EXPECT_EQ(host.State()["portGroups"], before["portGroups"]);
        Clear(*s, name.size());
    }
    ASSERT_TRUE(s->Type("Storage"));
    ASSERT_TRUE(s->Press({Keys::Enter}));
    ASSERT_TRUE(Acknowledge(*s, "Successfully created portgroup: Storage"));
    EXPECT_EQ(s->RightTitle(), "Create Port Group");
    const json groups = host.State()["portGroups"];
    const json* group = Named(groups, "Storage");
    ASSERT_NE(group, nullptr);
    EXPECT_EQ((*group)["switch"], "switch0");
    EXPECT_EQ(Logged(host, "portgroup add -p Storage -v switch0", "succeeded"), 1u);

    // The new port group changes nothing the switch form offers.
    ASSERT_TRUE(s->OpenEntry("Create Standard Switch"));
    ASSERT_TRUE(console.WaitForText("Enter the properties for new standard xbar"));
    // hwport3 is free: no question, and only the form's two commands.
    ASSERT_TRUE(s->Press({Keys::Down, Keys::Down, Keys::Down, Keys::Down, " ", Keys::Up, Keys::Up,
                          Keys::Up, Keys::Up}));

    // The form hands on 127 characters and drops the 128th; the host's own limit refuses them.
    // Nothing is rolled back: a taken name still gets the uplink.
    const std::string longest(127, 'q');
    const std::vector<std::tuple<std::string, std::string, std::string, const char*>> cases = {
        {"", "", "Please enter a valid standard switch name.", ""},
        {longest + "q", longest, "Operation Failed", "failed"},
        {"switch0", "switch0", "Operation Failed", "succeeded"},
    };
    for (const auto& [typed, sent, shown, uplink] : cases) {
        SCOPED_TRACE(typed.size());
        host.Mark();
        ASSERT_TRUE(s->Type(typed));
        ASSERT_TRUE(s->Press({Keys::Enter}));
        ASSERT_TRUE(Acknowledge(*s, shown)) << console.Describe();
        const size_t runs = sent.empty() ? 0 : 1;
        EXPECT_EQ(host.Matching(Record::Syslog, "Command \"ostraq").size(), 2 * runs);
        EXPECT_EQ(Logged(host, "add -v " + sent, "failed"), runs);
        EXPECT_EQ(Logged(host, "uplink add -u hwport3 -v " + sent, uplink), runs);
        Clear(*s, typed.size());
    }

    // hwport1 belongs to switch0: No and Esc leave it there (one remove in the log), Yes moves it.
    // Enter on another row still takes the checked one.
    ASSERT_TRUE(s->Type("backup"));
    ASSERT_TRUE(s->Press({Keys::Down, Keys::Down, " ", Keys::Down}));
    for (const std::string_view answer :
         {std::string_view("n"), Keys::Escape, std::string_view("y")}) {
        ASSERT_TRUE(s->Press({Keys::Enter}));
        ASSERT_TRUE(
            console.WaitForText("The chosen uplink \"hwport1\" is already in use by \"switch0\"."));
        ASSERT_TRUE(s->Press({answer}));
        if (answer != "y") {
            ASSERT_TRUE(Acknowledge(*s, "Operation Cancelled"));
        }
    }
    ASSERT_TRUE(Acknowledge(*s, "Successfully created standard virtual switch: backup"));
    const json after = host.State()["switches"];
    ASSERT_NE(Named(after, "backup"), nullptr);
    EXPECT_EQ((*Named(after, "backup"))["uplinks"], json({"hwport1"}));
    EXPECT_EQ((*Named(after, "switch0"))["uplinks"], json({"hwport0", "hwport3"}));
    for (const char* command : {"uplink remove -u hwport1 -v switch0", "add -v backup",
                                "uplink add -u hwport1 -v backup"})
        EXPECT_EQ(Logged(host, command, "succeeded"), 1u) << command;
}

// Without a standard switch or a physical NIC the boxes say what is missing and close.
TEST(Restore, RepairsWithoutTheirParts) {
    auto s = OpenRestore("no-standard-switch", {.settings = {{"gridmesh-version", "3.2.1"}}});
    ASSERT_TRUE(s->OpenEntry("Create Port Group"));
    EXPECT_EQ(s->RightTitle(), "Create Port Group") << "the box opens and closes";
    EXPECT_EQ(s->Host().Messages("user.err"), Strings{"No standard switches present"});
    s->Host().Edit([](json& state) { state["gridmesh"]["running"] = true; });
    ASSERT_TRUE(s->Press({Keys::Escape}));
    ASSERT_TRUE(s->Walk({"Network Restore Options", "Migrate Tessel NIC to Standard"}));
    ASSERT_TRUE(Acknowledge(*s, "No port groups present"));
    EXPECT_EQ(s->RightTitle(), "Migrate Tessel NIC to Standard");

    // Such a host says so on the welcome screen, and reloads by signal or key raise its alert
    // only once.
    Session bare("no-nics");
    Console& console = bare.Screen();
    ASSERT_TRUE(console.WaitForText("No compatible network adapter found. Please consult the") &&
                bare.Settle());
    EXPECT_FALSE(console.Find("https://"));
    EXPECT_TRUE(console.Find("Hardware Compatibility Guide (HCG)"));
    console.Signal(SIGUSR1);
    ASSERT_TRUE(bare.Press({"x", Keys::F(4)}));
    console.Signal(SIGUSR1);
    ASSERT_TRUE(bare.Settle());
    const std::string alerts = bare.Host().State()["systemAlerts"].dump();
    EXPECT_NE(alerts.find("No compatible"), std::string::npos) << alerts;
    EXPECT_EQ(alerts.find("No compatible"), alerts.rfind("No compatible")) << alerts;
    ASSERT_TRUE(bare.Walk({"@login", "Network Restore Options", "Create Standard Switch"}));
    EXPECT_EQ(bare.RightTitle(), "Create Standard Switch") << "the box opens and closes";
    EXPECT_EQ(bare.Host().Messages("user.err"), Strings{"No physical nics present"});
}

// ---------------------------------------------------------------- kernel NIC migration

TEST(Restore, MigrateKernelNic) {
    // The migration box is 85 columns wide: it needs a wider terminal than 80.
    auto s = OpenRestore("gridmesh", {.cols = 100});
    Console& console = s->Screen();
    HostRoot& host = s->Host();
    ASSERT_TRUE(s->OpenEntry("Migrate Tessel NIC to Standard Switch"));
    ASSERT_TRUE(console.WaitForText("< Management Network"));
    ASSERT_TRUE(s->Press({Keys::Left}));
    EXPECT_TRUE(console.Find("< VM Network")) << "Left on the first wraps to the last";
    ASSERT_TRUE(s->Press({Keys::Right, Keys::Right}));
    EXPECT_TRUE(console.Find("< VM Network"));
    ASSERT_TRUE(s->Press({"d"}));
    ASSERT_TRUE(Acknowledge(*s, "Portgroup Name: VM Network"));
    ASSERT_TRUE(s->Press({Keys::Down, Keys::Right}));
    EXPECT_TRUE(console.Find("< tnic0")) << "one interface: Right leaves it";

    host.Fault({"tool", "gridmeshcfg-xbar", "exit", "1"});
    ASSERT_TRUE(s->Press({Keys::Enter}));
    ASSERT_TRUE(Acknowledge(*s, "Operation Failed"));
    EXPECT_TRUE(host.State()["gridmesh"]["running"]) << "the agent is started again";
    EXPECT_EQ(Management(host.State())["connection"]["portGroup"], "Management Network");

    host.Fault({"clear"});
    host.Mark();
    ASSERT_TRUE(s->Press({Keys::Enter}));
    ASSERT_TRUE(Acknowledge(*s, "Successfully migrated tnic0 to VM Network"));
    EXPECT_EQ(s->RightTitle(), "Migrate Tessel NIC to Standard Switch");
    const json after = host.State();
    EXPECT_EQ(Management(after)["connection"]["portGroup"], "VM Network");
    EXPECT_TRUE(after["gridmesh"]["running"]);
    for (const char* line : {"gridmesh-opsagent has been successfully stopped.",
                             "gridmesh-opsagent has been successfully started."})
        EXPECT_EQ(Count(host, line), 1u) << line;
}

} // namespace
