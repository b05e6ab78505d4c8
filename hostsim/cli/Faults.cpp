// `hostsim fault`: failures injected into the library and the tools.
#include <algorithm>
#include <filesystem>

#include "platform/NetworkFaultNames.hpp"
#include "cli/Commands.hpp"
#include "cli/CreateRoot.hpp"
#include "store/StateStore.hpp"

namespace HostSim::Cli {

namespace {

using nlohmann::json;

bool Contains(const std::vector<std::string>& list, const std::string& name) {
    return std::find(list.begin(), list.end(), name) != list.end();
}

json& FaultGroup(json& state, const char* group) {
    json& faults = state["faults"];
    if (!faults.is_object()) faults = json::object();
    json& entries = faults[group];
    if (!entries.is_object()) entries = json::object();
    return entries;
}

namespace fs = std::filesystem;

// Where the scripts of an absent tool wait to come back: one file per host path, named by it.
fs::path AbsentFile(const std::string& root, const char* hostPath) {
    std::string name = hostPath;
    std::replace(name.begin(), name.end(), '/', '%');
    return fs::path(RootPath(root, "/var/lib/hostsim/absent")) / name;
}

// An absent tool is missing from the root for real: starting it fails as for a tool that was
// never installed. The scripts are kept aside until the fault is cleared.
void SetToolPresent(const std::string& root, const std::string& tool, bool present) {
    for (const ToolPath& entry : ToolPaths()) {
        if (tool != entry.tool) continue;
        const fs::path script = RootPath(root, entry.path);
        const fs::path kept = AbsentFile(root, entry.path);
        std::error_code error;
        if (present) {
            if (!fs::exists(kept, error)) continue;
            fs::rename(kept, script, error);
        } else {
            if (!fs::exists(script, error)) continue;
            fs::create_directories(kept.parent_path(), error);
            fs::rename(script, kept, error);
        }
        if (error) throw UsageError("Cannot move " + script.string() + ": " + error.message());
    }
}

int ExitStatus(const std::string& text) {
    if (text.empty() || text.size() > 3 || !std::all_of(text.begin(), text.end(), ::isdigit) || std::stoi(text) > 255)
        throw UsageError("Expected an exit status from 0 to 255, got \"" + text + "\"");
    return std::stoi(text);
}

} // namespace

const std::vector<std::string>& FaultOperations() {
    static const std::vector<std::string> operations = {
        "AdvancedOption::SetValue",
        "AdvancedOptionImpl::FindOption",
        "Authentication::StoreUserAccountsToCs",
        "CpuInfoImpl::GetModelName",
        "CpuInfoImpl::GetNumCpuPackages",
        "DnsConfigImpl::GetDomain",
        "DnsConfigImpl::GetHostname",
        "FirewallRuleset::Disable",
        "FirewallRuleset::Enable",
        "FirewallRuleset::FollowsService",
        "HardwareInfoImpl::GetProductName",
        "HardwareInfoImpl::GetSerialNumber",
        "HardwareInfoImpl::GetVendorName",
        "MemoryInfoImpl::GetPageSize",
        "MemoryInfoImpl::GetTotalPages",
        "NotaUserLib_Init",
        "Probe_Get",
        "SmartCardInfoImpl::GetAllSlots",
        "SmartCardInfoImpl::GetToken",
        "SysinfoUtil::SysinfoGet",
        "SystemInfoImpl::GetFirewallRulesetById",
        "SystemInfoImpl::GetKeyboardLayout",
        "SystemInfoImpl::GetKeyboardLayouts",
        "SystemInfoImpl::GetWelcomeMessage",
        "SystemInfoImpl::LoadKeyboardMappings",
        "SystemInfoImpl::SetKeyboardLayout",
        "SystemInfoImpl::SetSystemAlert",
        "TesselCtl_Exec",
        "UserAdvancedOptionImpl::HasUserOption",
        "HostFactory::GetHost",
        "HardwareInfo::GetBiosData",
        "HardwareInfo::GetVersionString",
        "StorageInfo::GetAdapters",
        "SystemInfo::GetModule",
        "HardwareInfoImpl::GetServiceTag",
    };
    static const std::vector<std::string> all = [] {
        std::vector<std::string> names = operations;
        const auto& network = HostSim::Platform::NetworkFaultOperations();
        names.insert(names.end(), network.begin(), network.end());
        return names;
    }();
    return all;
}

const std::vector<std::string>& FaultTools() {
    static const std::vector<std::string> tools = {
        "OstraShell", "SSH", "agents.sh", "benchq", "factoryState.py", "gridmesh-opsagent", "gridmeshcfg-xbar",
        "halt", "haltGuests", "helmq", "ostra-tune", "ostraq", "poweroff", "reboot", "shutdown", "stateSave.sh",
        "tesselping", "tesseltrace",
    };
    return tools;
}

void ApplyFault(const std::string& root, const std::vector<std::string>& args) {
    if (args.empty()) throw UsageError("fault needs lib, tool or clear");
    const std::string& kind = args[0];
    if (kind == "lib") {
        if (args.size() != 3) throw UsageError("usage: hostsim fault DIR lib OPERATION TEXT");
        if (!Contains(FaultOperations(), args[1]))
            throw UsageError("Unknown library operation \"" + args[1] + "\" (hostsim --help lists them)");
        StateStore(root).Update([&](json& state) { FaultGroup(state, "lib")[args[1]] = args[2]; });
    } else if (kind == "tool") {
        if (args.size() < 3)
            throw UsageError("usage: hostsim fault DIR tool NAME exit STATUS | output TEXT | hang | absent");
        const std::string& name = args[1];
        if (!Contains(FaultTools(), name))
            throw UsageError("Unknown tool \"" + name + "\" (hostsim --help lists them)");
        const std::string& what = args[2];
        json change;
        if (what == "exit" && args.size() == 4) change = {{"exit", ExitStatus(args[3])}};
        else if (what == "output" && args.size() == 4) change = {{"output", args[3]}};
        else if (what == "hang" && args.size() == 3) change = {{"hang", true}};
        else if (what == "absent" && args.size() == 3) change = {{"absent", true}};
        else throw UsageError("usage: hostsim fault DIR tool NAME exit STATUS | output TEXT | hang | absent");
        if (what == "absent") SetToolPresent(root, name, false);
        StateStore(root).Update([&](json& state) {
            json& entry = FaultGroup(state, "tool")[name];
            if (!entry.is_object()) entry = json::object();
            entry.update(change);
        });
    } else if (kind == "clear") {
        if (args.size() > 2) throw UsageError("usage: hostsim fault DIR clear [NAME]");
        if (args.size() == 2 && !Contains(FaultOperations(), args[1]) && !Contains(FaultTools(), args[1]))
            throw UsageError("Unknown fault name \"" + args[1] + "\"");
        StateStore(root).Update([&](json& state) {
            if (args.size() == 1) {
                state["faults"] = {{"lib", json::object()}, {"tool", json::object()}};
                return;
            }
            FaultGroup(state, "lib").erase(args[1]);
            FaultGroup(state, "tool").erase(args[1]);
        });
        for (const std::string& tool : FaultTools()) {
            if (args.size() == 1 || args[1] == tool) SetToolPresent(root, tool, true);
        }
    } else {
        throw UsageError("Unknown fault kind \"" + kind + "\" (lib, tool or clear)");
    }
}

} // namespace HostSim::Cli
