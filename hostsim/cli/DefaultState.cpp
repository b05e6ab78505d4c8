// The state of the default profile: a static IPv4 host on a standard switch with two uplinks.
#include "cli/DefaultState.hpp"

#include "cli/Profiles.hpp"

namespace HostSim::Cli {

namespace {

nlohmann::json Teaming(const std::vector<std::string>& order, int maxActive) {
    return {{"flags", 16},
            {"uplinkOrder", order},
            {"maxActiveUplinks", maxActive},
            {"policy", "loadbalance_srcid"},
            {"linkCriteria", {{"checkBeacon", false}, {"checkSpeed", "minimum"}, {"speed", 10}}}};
}

nlohmann::json Account(const std::string& name, const std::string& password, bool expired,
                       bool permitted) {
    return {{"name", name},
            {"hash", HashPassword(password, "hs" + name)},
            {"expired", expired},
            {"permitted", permitted}};
}

} // namespace

nlohmann::json DefaultState() {
    using nlohmann::json;
    json state;
    state["schema"] = 1;
    state["profile"] = "default";
    state["host"] = {{"hostname", "lanyx-lab01"},
                     {"domain", "lab.example.test"},
                     {"uuid", "4c4c4544-0036-3510-8052-b4c04f4e3232"}};
    state["product"] = {{"name", "Zephora Ostra"},
                        {"version", "8.0.3"},
                        {"build", 24280767},
                        {"compilationOption", "release"}};
    state["hardware"] = {
        {"vendor", "Northwind  Systems "},
        {"model", "Northwind Systems  NX-2840 Rack Server"},
        {"serialNumber", "NWS7Q4K2B19"},
        {"serviceTag", "7Q4K2B1"},
        {"bmcVersion", "4.40.10.00"},
        {"bios",
         {{"vendor", "Northwind Systems"},
          {"version", "2.14.1"},
          {"date", "03/11/2026"},
          {"assetTag", "LAB-0042"},
          {"releaseMajor", 2},
          {"releaseMinor", 14}}},
        {"cpu",
         {{"packages", 2},
          {"cores", 32},
          {"threads", 64},
          {"model", "  Tessellate(R) Core  Gold 6430   @ 2.10GHz "}}},
        // 128 GiB in 4 KiB pages, minus what the firmware keeps.
        {"memory", {{"totalPages", 33488896}, {"pageSize", 4096}}},
        {"storageAdapters",
         json::array(
             {{{"name", "storbus0"}, {"driver", "nvme_pcie"}, {"driverVersion", "1.2.4.11-1vmw"}},
              {{"name", "storbus1"}, {"driver", "ahci_sata"}, {"driverVersion", "2.0.15"}}})}};
    state["network"] = {
        {"managementInterface", "tnic0"},
        {"interfaces",
         json::array({{{"name", "tnic0"},
                       {"mac", "00:50:56:6a:10:01"},
                       {"enabled", true},
                       {"mtu", 1500},
                       {"connection", {{"type", "portgroup"}, {"portGroup", "Management Network"}}},
                       {"ipv4",
                        {{"mode", "static"},
                         {"address", "192.168.10.21"},
                         {"netmask", "255.255.255.0"},
                         {"configuredAddress", "192.168.10.21"},
                         {"configuredNetmask", "255.255.255.0"},
                         {"dhcpServer", "0.0.0.0"},
                         {"dhcpBound", false}}},
                       {"ipv6",
                        {{"dhcp", false},
                         {"autoconf", false},
                         {"addresses", json::array({{{"address", "fe80::250:56ff:fe6a:1001"},
                                                     {"prefixLength", 64},
                                                     {"type", "linklocal"}}})}}}}})},
        {"ipv6Enabled", true},
        {"gateway", "192.168.10.1"},
        {"ipv6Gateway", ""},
        // What a DHCP client on the management segment is given; null: no server answers.
        {"dhcpOffer",
         {{"server", "192.168.10.254"},
          {"address", "192.168.10.57"},
          {"netmask", "255.255.255.0"},
          {"gateway", "192.168.10.1"},
          {"dnsServers", {"192.168.10.2"}}}},
        {"dns",
         {{"servers", {"192.168.10.2", "192.168.10.3"}},
          {"searchDomains", {"lab.example.test"}},
          {"dhcp", false},
          {"records",
           {{"lanyx-lab01.lab.example.test", {"192.168.10.21"}},
            {"gateway.lab.example.test", {"192.168.10.1"}}}}}}};
    state["pnics"] =
        json::array({{{"name", "hwport0"},
                      {"pciLabel", "Tessellate  Ethernet Controller X710 for 10GbE SFP+ "},
                      {"mac", "3c:fd:fe:a1:00:10"},
                      {"link", true},
                      {"speedMbps", 10000},
                      {"driver", "i40en"}},
                     {{"name", "hwport1"},
                      {"pciLabel", "Tessellate Ethernet Controller X710 for 10GbE SFP+"},
                      {"mac", "3c:fd:fe:a1:00:11"},
                      {"link", true},
                      {"speedMbps", 10000},
                      {"driver", "i40en"}},
                     {{"name", "hwport2"},
                      {"pciLabel", "Broadline NetXtreme BCM5720 Gigabit Ethernet"},
                      {"mac", "b0:26:28:4e:00:a2"},
                      {"link", false},
                      {"speedMbps", 0},
                      {"driver", "ntg3"}},
                     {{"name", "hwport3"},
                      {"pciLabel", nullptr},
                      {"mac", "b0:26:28:4e:00:a3"},
                      {"link", true},
                      {"speedMbps", 1000},
                      {"driver", "ntg3"}}});
    state["switches"] = json::array({{{"name", "switch0"},
                                      {"uplinks", {"hwport0", "hwport1"}},
                                      {"portGroups", {"Management Network", "VM Network"}},
                                      {"numPorts", 2560},
                                      {"usedPorts", 6},
                                      {"configuredPorts", 128},
                                      {"mtu", 1500},
                                      {"teaming", Teaming({"hwport0", "hwport1"}, 2)}}});
    state["portGroups"] = json::array({{{"name", "Management Network"},
                                        {"switch", "switch0"},
                                        {"vlan", 0},
                                        {"activeClients", 1},
                                        {"teaming", Teaming({"hwport0", "hwport1"}, 1)}},
                                       {{"name", "VM Network"},
                                        {"switch", "switch0"},
                                        {"vlan", 0},
                                        {"activeClients", 2},
                                        {"teaming", Teaming({"hwport0", "hwport1"}, 2)}}});
    state["fabrics"] = json::array();
    state["advancedOptions"] = {
        {"/UserVars/LanyxTimeOut",
         {{"type", "integer"},
          {"value", 0},
          {"default", 0},
          {"min", 0},
          {"max", 86400},
          {"description", "Idle time before the console logs out, in seconds; 0 disables"}}},
        {"/UserVars/OstraShellTimeOut",
         {{"type", "integer"},
          {"value", 0},
          {"default", 0},
          {"min", 0},
          {"max", 86400},
          {"description", "Time before the local shell is disabled, in seconds"}}},
        {"/UserVars/OstraShellInteractiveTimeOut",
         {{"type", "integer"},
          {"value", 0},
          {"default", 0},
          {"min", 0},
          {"max", 86400},
          {"description", "Idle time before an interactive shell is logged out, in seconds"}}},
        {"/UserVars/SuppressShellWarning",
         {{"type", "integer"}, {"value", 0}, {"default", 0}, {"min", 0}, {"max", 1}}},
        {"/UserVars/HostClientWelcomeMessage",
         {{"type", "string"}, {"value", ""}, {"default", ""}}}};
    state["userOptions"] = json::object();
    state["bootOption"] = {{"auditMode", false}};
    state["services"] = {{"OstraShell", {{"running", false}, {"enabled", false}}},
                         {"SSH", {{"running", false}, {"enabled", false}}}};
    state["firewall"] = {{"sshServer", {{"enabled", false}, {"followsService", true}}}};
    state["lockdown"] = {{"enabled", false}, {"possible", true}};
    state["accounts"] = json::array({Account("root", "lanyx-Root1", false, true),
                                     Account("guest", "guest-Pass1", false, false),
                                     Account("expired", "expired-Pass1", true, true)});
    state["smartCard"] = {
        {"slots", json::array({{{"name", "Reader 0 Slot 0"}, {"token", nullptr}}})}};
    state["guests"] =
        json::array({{{"name", "web-01"}, {"running", true}, {"autostart", true}},
                     {{"name", "db-01"}, {"running", true}, {"autostart", true}},
                     {{"name", "build-07"}, {"running", false}, {"autostart", false}}});
    state["gridmesh"] = {{"present", false}, {"version", ""}, {"running", false}};
    state["ping"] = {{"reachable", {"192.168.10.1", "192.168.10.2", "192.168.10.3", "127.0.0.1"}}};
    state["power"] = {{"state", "on"}, {"history", json::array()}};
    state["keyboard"] = {
        {"layout", "US Default"},
        {"layouts", {"Belgian",   "Brazilian",  "Croatian",     "Czechoslovakian", "Danish",
                     "Default",   "Estonian",   "Finnish",      "French",          "German",
                     "Greek",     "Icelandic",  "Italian",      "Japanese",        "Latin American",
                     "Norwegian", "Polish",     "Portuguese",   "Russian",         "Slovenian",
                     "Spanish",   "Swedish",    "Swiss French", "Swiss German",    "Turkish",
                     "UK",        "US Default", "US Dvorak"}},
        {"loaded", "US Default"}};
    state["welcomeMessage"] = "";
    state["systemAlerts"] = json::array();
    state["faults"] = {{"lib", json::object()}, {"tool", json::object()}};
    return state;
}

} // namespace HostSim::Cli
