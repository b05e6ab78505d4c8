// `hostsim set NAME VALUE`: the named knobs of a simulated host.
#include <arpa/inet.h>

#include <algorithm>

#include "cli/Commands.hpp"
#include "store/StateStore.hpp"

namespace HostSim::Cli {

namespace {

using nlohmann::json;

bool Bool(const std::string& value) {
    if (value == "true" || value == "1" || value == "yes" || value == "on")
        return true;
    if (value == "false" || value == "0" || value == "no" || value == "off")
        return false;
    throw UsageError("Expected true or false, got \"" + value + "\"");
}

std::string Ipv4(const std::string& value) {
    in_addr address{};
    if (::inet_pton(AF_INET, value.c_str(), &address) != 1)
        throw UsageError("Expected a dotted IPv4 address, got \"" + value + "\"");
    return value;
}

json& ManagementInterface(json& state) {
    const std::string name = state["network"].value("managementInterface", "");
    for (json& nic : state["network"]["interfaces"]) {
        if (nic.value("name", "") == name)
            return nic;
    }
    throw UsageError("The host has no management interface");
}

void SetLanyxTimeout(json& state, const std::string& value) {
    json& options = state["advancedOptions"];
    if (value == "none") {
        options.erase("/UserVars/LanyxTimeOut");
        return;
    }
    if (value.empty() || value.size() > 9 || !std::all_of(value.begin(), value.end(), ::isdigit))
        throw UsageError("Expected seconds or \"none\", got \"" + value + "\"");
    json& option = options["/UserVars/LanyxTimeOut"];
    if (!option.is_object() || option.empty())
        option = {{"type", "integer"}, {"default", 0}, {"min", 0}, {"max", 86400}};
    option["value"] = std::stoll(value);
}

void SetSmartCardUser(json& state, const std::string& value) {
    json& slots = state["smartCard"]["slots"];
    if (!slots.is_array() || slots.empty())
        slots = json::array({{{"name", "Reader 0 Slot 0"}, {"token", nullptr}}});
    if (value.empty()) {
        for (json& slot : slots)
            slot["token"] = nullptr;
        return;
    }
    slots[0]["token"] = {{"label", "PIV Card"},
                         {"manufacturer", "Cardline"},
                         {"model", "PIV-II"},
                         {"serialNumber", "0042A7F3"},
                         {"slotDescription", slots[0].value("name", "")},
                         {"firmware", "2.1"},
                         {"certificates", {"CN=" + value}},
                         {"userIds", {value}}};
}

void SetDhcpServer(json& state, const std::string& value) {
    json& ipv4 = ManagementInterface(state)["ipv4"];
    ipv4["dhcpServer"] = Ipv4(value);
    ipv4["dhcpBound"] = value != "0.0.0.0";
}

// "a,b,,c" -> ["a", "b", "c"].
json CommaList(const std::string& value) {
    json list = json::array();
    size_t start = 0;
    while (start <= value.size() && !value.empty()) {
        size_t comma = value.find(',', start);
        std::string item =
            value.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
        if (!item.empty())
            list.push_back(item);
        if (comma == std::string::npos)
            break;
        start = comma + 1;
    }
    return list;
}

void SetGridmeshVersion(json& state, const std::string& value) {
    if (value.empty()) {
        state["gridmesh"]["present"] = false;
        return;
    }
    state["gridmesh"]["present"] = true;
    state["gridmesh"]["version"] = value;
}

} // namespace

const std::vector<Setting>& Settings() {
    static const std::vector<Setting> settings = {
        {"welcome-message", "host-supplied welcome text (markup; empty: default screen)",
         [](json& s, const std::string& v) { s["welcomeMessage"] = v; }},
        {"smartcard-user", "user id of the card in the first reader slot (empty: no card)",
         SetSmartCardUser},
        {"lanyx-timeout",
         "/UserVars/LanyxTimeOut in seconds (\"none\": the host has no such option)",
         SetLanyxTimeout},
        {"dhcp-server", "DHCP server of the management interface (0.0.0.0: none answered)",
         SetDhcpServer},
        {"lockdown-enabled", "lockdown mode enabled (true/false)",
         [](json& s, const std::string& v) { s["lockdown"]["enabled"] = Bool(v); }},
        {"lockdown-possible", "lockdown mode possible (true/false)",
         [](json& s, const std::string& v) { s["lockdown"]["possible"] = Bool(v); }},
        {"ipv6-enabled", "IPv6 enabled on the host (true/false)",
         [](json& s, const std::string& v) { s["network"]["ipv6Enabled"] = Bool(v); }},
        {"hostname", "host name", [](json& s, const std::string& v) { s["host"]["hostname"] = v; }},
        {"domain", "DNS domain", [](json& s, const std::string& v) { s["host"]["domain"] = v; }},
        {"audit-mode", "boot option audit mode (true/false)",
         [](json& s, const std::string& v) { s["bootOption"]["auditMode"] = Bool(v); }},
        {"pxe-boot", "user option PXEBootEnabled present (true/false)",
         [](json& s, const std::string& v) {
             if (Bool(v))
                 s["userOptions"]["PXEBootEnabled"] = "true";
             else
                 s["userOptions"].erase("PXEBootEnabled");
         }},
        {"ssh-running", "SSH service running (true/false)",
         [](json& s, const std::string& v) { s["services"]["SSH"]["running"] = Bool(v); }},
        {"shell-running", "OstraShell service running (true/false)",
         [](json& s, const std::string& v) { s["services"]["OstraShell"]["running"] = Bool(v); }},
        {"gridmesh-version", "overlay agent version (empty: agent absent)", SetGridmeshVersion},
        {"ping-reachable", "comma-separated addresses that answer a ping",
         [](json& s, const std::string& v) { s["ping"]["reachable"] = CommaList(v); }},
        {"keyboard-layout", "configured keyboard layout",
         [](json& s, const std::string& v) { s["keyboard"]["layout"] = v; }},
        {"helmq-users", "comma-separated users helmq accepts besides lanyx (empty: none)",
         [](json& s, const std::string& v) { s["hostAgent"]["users"] = CommaList(v); }},
        {"guests-running", "all guests running (true/false)",
         [](json& s, const std::string& v) {
             for (json& guest : s["guests"])
                 guest["running"] = Bool(v);
         }},
    };
    return settings;
}

void ApplySetting(const std::string& root, const std::string& name, const std::string& value) {
    const auto& all = Settings();
    auto it =
        std::find_if(all.begin(), all.end(), [&](const Setting& s) { return name == s.name; });
    if (it == all.end())
        throw UsageError("Unknown setting \"" + name + "\" (hostsim --help lists them)");
    StateStore(root).Update([&](json& state) { it->apply(state, value); });
}

} // namespace HostSim::Cli
