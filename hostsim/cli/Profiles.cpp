// Each profile is the default state with the few changes that make its case.
#include "cli/Profiles.hpp"

#include <crypt.h>

#include <cstdio>
#include <functional>
#include <stdexcept>

#include "cli/DefaultState.hpp"

namespace HostSim::Cli {

namespace {

using nlohmann::json;

json& Management(json& state) {
    return state["network"]["interfaces"][0];
}

void Dhcp(json& state) {
    json& ipv4 = Management(state)["ipv4"];
    ipv4["mode"] = "dhcp";
    ipv4["address"] = "192.168.10.57";
    ipv4["configuredAddress"] = "0.0.0.0";
    ipv4["configuredNetmask"] = "0.0.0.0";
    ipv4["dhcpServer"] = "192.168.10.254";
    ipv4["dhcpBound"] = true;
    state["network"]["dns"]["dhcp"] = true;
    state["ping"]["reachable"].push_back("192.168.10.254");
}

void DhcpNoServer(json& state) {
    Dhcp(state);
    json& ipv4 = Management(state)["ipv4"];
    ipv4["address"] = "0.0.0.0";
    ipv4["netmask"] = "0.0.0.0";
    ipv4["dhcpServer"] = "0.0.0.0";
    ipv4["dhcpBound"] = false;
    state["network"]["gateway"] = "";
    state["network"]["dhcpOffer"] = nullptr;
}

// The management interface hangs on port 12 of a distributed switch that holds hwport2 and hwport3;
// the standard switch keeps only the guests' port group.
void Fabric(json& state) {
    Management(state)["connection"] = {
        {"type", "fabric"}, {"fabric", "fab-prod"}, {"portId", "12"}};
    state["switches"][0]["portGroups"] = {"VM Network"};
    state["portGroups"] = json::array({state["portGroups"][1]});
    state["fabrics"] = json::array(
        {{{"name", "fab-prod"},
          {"id", "50 0c 3a 1e 77 21 4b 09-8e 3d 02 aa 5f 61 c0 1d"},
          {"lanyxOwned", true},
          {"uplinks",
           {{"hwport2", {{"portId", "100"}, {"portKey", "uplink1"}}},
            {"hwport3", {{"portId", "101"}, {"portKey", "uplink2"}}}}},
          {"ports",
           json::array({{{"id", "12"},
                         {"name", "mgmt-port-12"},
                         {"portGroup", "fportgroup-21"},
                         {"vlan", 10},
                         {"hostLocal", false},
                         {"blocked", false},
                         {"properties", {{"shaping", false}, {"securityPolicy", "reject"}}}},
                        {{"id", "13"},
                         {"name", "vmotion-port-13"},
                         {"portGroup", "fportgroup-22"},
                         {"vlan", 20},
                         {"hostLocal", false},
                         {"blocked", false},
                         {"properties", {{"shaping", false}, {"securityPolicy", "reject"}}}},
                        // The uplink ports: the fabric restore lists the uplinks by them.
                        {{"id", "100"},
                         {"name", "uplink1"},
                         {"portGroup", "fportgroup-uplinks"},
                         {"vlan", 0},
                         {"hostLocal", false},
                         {"blocked", false},
                         {"properties", json::object()}},
                        {{"id", "101"},
                         {"name", "uplink2"},
                         {"portGroup", "fportgroup-uplinks"},
                         {"vlan", 0},
                         {"hostLocal", false},
                         {"blocked", false},
                         {"properties", json::object()}}})}}});
}

// Stranded on the fabric: the management port is blocked, the gateway does not answer, and a
// second kernel interface hangs on the fabric too. A DHCP server on the wire answers a host that
// comes back with factory settings.
void FabricBroken(json& state) {
    Fabric(state);
    json& ports = state["fabrics"][0]["ports"];
    ports[0]["blocked"] = true;
    json vmotion = Management(state);
    vmotion["name"] = "tnic1";
    vmotion["mac"] = "00:50:56:6a:10:02";
    vmotion["connection"] = {{"type", "fabric"}, {"fabric", "fab-prod"}, {"portId", "13"}};
    vmotion["ipv4"]["address"] = vmotion["ipv4"]["configuredAddress"] = "192.168.20.21";
    vmotion["ipv6"]["addresses"] = json::array();
    state["network"]["interfaces"].push_back(vmotion);
    state["ping"]["reachable"] = json::array({"127.0.0.1"});
    state["network"]["dhcpOnLink"] = {{"server", "192.168.10.254"},
                                      {"address", "192.168.10.57"},
                                      {"netmask", "255.255.255.0"},
                                      {"gateway", "192.168.10.1"}};
}

// The management port of the fabric carries a wrong VLAN, is blocked and teams over a NIC the host
// does not have; its other properties are set so that a clone of it can be told from a new port.
void FabricMisconfigured(json& state) {
    Fabric(state);
    json& port = state["fabrics"][0]["ports"][0];
    port["vlan"] = 999;
    port["blocked"] = true;
    port["properties"] = {
        {"txUplink", true},
        {"teamPolicy",
         {{"policy", 2},
          {"notifySwitches", 0},
          {"rollingOrder", 1},
          {"policyInherited", 0},
          {"uplinksInherited", 0},
          {"failureInherited", 0},
          {"active", {"hwport9"}},
          {"standby", json::array()}}},
        {"ipfix", true},
        {"security", {{"allowPromiscuous", 0}, {"macChanges", 1}, {"forgedTransmits", 1}}},
        {"shapingIn",
         {{"enabled", true}, {"average", 100000}, {"peak", 200000}, {"burst", 102400}}},
        {"shapingOut", {{"enabled", false}, {"average", 0}, {"peak", 0}, {"burst", 0}}},
        {"persistencePath", "/volumes/store1/.fabric/port-12"},
        {"vendorStrings", {{"16", {{"com.zephora.port.owner", "mgmt"}}}}},
        {"vendorBinary", {{"16", {{"com.zephora.port.blob", {1, 2, 3}}}}}},
        {"overlayParams", json::array({{{"name", "segment"}, {"data", {7, 0}}}})},
        {"resPools",
         json::array({{{"key", "rp-1"}, {"name", "management"}, {"limit", -1}, {"shares", 50}}})},
        {"resPoolAssoc", "rp-1"}};
    state["ping"]["reachable"] = json::array({"127.0.0.1"});
}

// Management on the fabric and no standard switch left: nothing to add a port group to.
void NoStandardSwitch(json& state) {
    Fabric(state);
    state["switches"] = json::array();
    state["portGroups"] = json::array();
}

void NoNics(json& state) {
    state["pnics"] = json::array();
    for (json& standardSwitch : state["switches"]) {
        standardSwitch["uplinks"] = json::array();
        standardSwitch["teaming"]["uplinkOrder"] = json::array();
    }
    for (json& group : state["portGroups"])
        group["teaming"]["uplinkOrder"] = json::array();
    // Without an adapter the management interface has no link to come up on.
    Management(state)["enabled"] = false;
}

void Ipv6(json& state) {
    json& ipv6 = Management(state)["ipv6"];
    ipv6["dhcp"] = true;
    ipv6["autoconf"] = true;
    ipv6["addresses"] = json::array(
        {{{"address", "fe80::250:56ff:fe6a:1001"}, {"prefixLength", 64}, {"type", "linklocal"}},
         {{"address", "2001:db8:10::21"}, {"prefixLength", 64}, {"type", "static"}},
         {{"address", "2001:db8:10:0:250:56ff:fe6a:1001"},
          {"prefixLength", 64},
          {"type", "autoconf"}},
         {{"address", "2001:db8:10::1:9c"}, {"prefixLength", 128}, {"type", "dhcp"}},
         {{"address", "fd00:10::21"}, {"prefixLength", 64}, {"type", "static"}},
         {{"address", "2001:db8:ffff:1234:5678:9abc:def0:21"},
          {"prefixLength", 64},
          {"type", "static"}}});
    state["network"]["ipv6Gateway"] = "2001:db8:10::1";
    state["network"]["dns"]["servers"].push_back("2001:db8:10::53");
    state["ping"]["reachable"].push_back("2001:db8:10::1");
}

void SmartCard(json& state) {
    state["smartCard"]["slots"][0]["token"] = {{"label", "PIV Card"},
                                               {"manufacturer", "Cardline"},
                                               {"model", "PIV-II"},
                                               {"serialNumber", "0042A7F3"},
                                               {"slotDescription", "Reader 0 Slot 0"},
                                               {"firmware", "2.1"},
                                               {"certificates", {"CN=root,OU=Operators,O=Lab"}},
                                               {"userIds", {"root"}}};
}

void Gridmesh(json& state) {
    state["gridmesh"] = {{"present", true}, {"version", "3.2.1"}, {"running", true}};
}

void Lockdown(json& state) {
    state["lockdown"] = {{"enabled", true}, {"possible", true}};
}

// A big host: 256 NICs and 1000 port groups. Management keeps switch0 with hwport0 and hwport1;
// fifteen more switches hold twelve uplinks each, a fabric holds the last six NICs and the NICs
// between are free.
void Large(json& state) {
    constexpr int kNics = 256;
    constexpr int kSwitches = 16;
    constexpr int kUplinksPerSwitch = 12;
    constexpr int kPortGroups = 1000;
    constexpr int kFirstFabricNic = kNics - 6;

    const char* const labels[] = {"Tessellate Ethernet Controller X710 for 10GbE SFP+",
                                  "Tessellate Ethernet Controller  E810-XXV for SFP ",
                                  "Broadline NetXtreme BCM5720 Gigabit Ethernet", nullptr};
    const char* const drivers[] = {"i40en", "icen", "ntg3", "ntg3"};
    const int speeds[] = {10000, 25000, 1000, 1000};
    json pnics = json::array();
    for (int n = 0; n < kNics; ++n) {
        const int model = n % 4;
        // Every seventh NIC has no cable, the two management NICs always have one.
        const bool link = n < 2 || n % 7 != 3;
        char mac[32];
        std::snprintf(mac, sizeof mac, "3c:fd:fe:b2:%02x:%02x", n / 256, n % 256);
        pnics.push_back({{"name", "hwport" + std::to_string(n)},
                         {"pciLabel", labels[model] ? json(labels[model]) : json(nullptr)},
                         {"mac", mac},
                         {"link", link},
                         {"speedMbps", link ? speeds[model] : 0},
                         {"driver", drivers[model]}});
    }
    state["pnics"] = pnics;

    json& switches = state["switches"];
    const json teaming = switches[0]["teaming"];
    for (int s = 1; s < kSwitches; ++s) {
        json uplinks = json::array();
        for (int u = 0; u < kUplinksPerSwitch; ++u)
            uplinks.push_back("hwport" + std::to_string(2 + (s - 1) * kUplinksPerSwitch + u));
        json switchTeaming = teaming;
        switchTeaming["uplinkOrder"] = uplinks;
        switches.push_back({{"name", "switch" + std::to_string(s)},
                            {"uplinks", uplinks},
                            {"portGroups", json::array()},
                            {"numPorts", 4096},
                            {"usedPorts", kUplinksPerSwitch},
                            {"configuredPorts", 1024},
                            {"mtu", s % 4 == 0 ? 9000 : 1500},
                            {"teaming", switchTeaming}});
    }

    json& groups = state["portGroups"];
    for (int g = static_cast<int>(groups.size()); g < kPortGroups; ++g) {
        json& owner = switches[static_cast<size_t>(g % kSwitches)];
        char name[16];
        std::snprintf(name, sizeof name, "pg-%04d", g);
        owner["portGroups"].push_back(name);
        owner["usedPorts"] = owner["usedPorts"].get<int>() + g % 3;
        groups.push_back({{"name", name},
                          {"switch", owner["name"]},
                          {"vlan", 100 + g},
                          {"activeClients", g % 3},
                          {"teaming", owner["teaming"]}});
    }

    json fabricUplinks = json::object();
    json ports = json::array();
    for (int n = kFirstFabricNic; n < kNics; ++n) {
        const std::string portId = std::to_string(200 + n - kFirstFabricNic);
        const std::string key = "uplink" + std::to_string(1 + n - kFirstFabricNic);
        fabricUplinks["hwport" + std::to_string(n)] = {{"portId", portId}, {"portKey", key}};
        ports.push_back({{"id", portId},
                         {"name", key},
                         {"portGroup", "fportgroup-uplinks"},
                         {"vlan", 0},
                         {"hostLocal", false},
                         {"blocked", false},
                         {"properties", json::object()}});
    }
    state["fabrics"] = json::array({{{"name", "fab-storage"},
                                     {"id", "50 0c 3a 1e 77 21 4b 09-8e 3d 02 aa 5f 61 c0 2e"},
                                     {"lanyxOwned", false},
                                     {"uplinks", fabricUplinks},
                                     {"ports", ports}}});
}

const std::vector<std::pair<Profile, std::function<void(json&)>>>& Table() {
    static const std::vector<std::pair<Profile, std::function<void(json&)>>> table = {
        {{"default", "static IPv4 host on a standard switch with two uplinks, four NICs", true},
         nullptr},
        {{"dhcp", "management address from DHCP, server answered", true}, Dhcp},
        {{"dhcp-no-server", "DHCP configured, no server answered (address 0.0.0.0)", true},
         DhcpNoServer},
        {{"fabric", "management interface on a distributed switch port", true}, Fabric},
        {{"fabric-broken",
          "stranded on a fabric: management port blocked, second interface on the fabric", true},
         FabricBroken},
        {{"fabric-misconfigured",
          "management port of the fabric with a wrong VLAN, blocked, odd teaming", true},
         FabricMisconfigured},
        {{"no-standard-switch", "management on a fabric and no standard switch", true},
         NoStandardSwitch},
        {{"no-nics", "no physical network adapter", true}, NoNics},
        {{"audit-mode", "host booted in audit mode", true},
         [](json& s) { s["bootOption"]["auditMode"] = true; }},
        {{"pxe-boot", "host booted over PXE (user option PXEBootEnabled)", true},
         [](json& s) { s["userOptions"]["PXEBootEnabled"] = "true"; }},
        {{"custom-welcome", "host-supplied welcome message with substitution tags", true},
         [](json& s) {
             s["welcomeMessage"] =
                 "{align:center}{color:white}{ostraproduct} {ostraversion}{/color}{/align}\n\n"
                 "Host {hostname} ({ip})\nMemory: {memory}  Serial: {serial-number}  Service tag: "
                 "{servicetag}\n"
                 "BIOS: {BIOSversion}  Asset tag: {assettag}\n\n"
                 "{color:light-grey}Authorized use only.{/color}\n"
                 "{align:right}<F2> Customize System  <F12> Shut Down/Restart{/align}";
         }},
        {{"smartcard", "a smart card with user id root in the reader", true}, SmartCard},
        {{"gridmesh", "overlay network agent present at version 3", true}, Gridmesh},
        {{"ipv6", "several IPv6 addresses of every type on the management interface", true}, Ipv6},
        {{"lockdown", "lockdown mode enabled", true}, Lockdown},
        {{"large", "256 NICs on sixteen switches and a fabric, 1000 port groups", true}, Large},
        {{"no-login", "console closed for login (no login marker)", false}, nullptr},
    };
    return table;
}

} // namespace

std::string HashPassword(const std::string& password, const std::string& salt) {
    crypt_data data{};
    const char* hash = crypt_r(password.c_str(), ("$6$" + salt + "$").c_str(), &data);
    if (hash == nullptr || hash[0] == '*')
        throw std::runtime_error("Cannot hash a password");
    return hash;
}

const std::vector<Profile>& Profiles() {
    static const std::vector<Profile> profiles = [] {
        std::vector<Profile> list;
        for (const auto& entry : Table())
            list.push_back(entry.first);
        return list;
    }();
    return profiles;
}

const Profile* FindProfile(const std::string& name) {
    for (const Profile& profile : Profiles()) {
        if (profile.name == name)
            return &profile;
    }
    return nullptr;
}

nlohmann::json ProfileState(const std::string& name) {
    json state = DefaultState();
    for (const auto& [profile, change] : Table()) {
        if (profile.name != name)
            continue;
        if (change)
            change(state);
        state["profile"] = name;
        return state;
    }
    throw std::invalid_argument("Unknown profile " + name);
}

} // namespace HostSim::Cli
