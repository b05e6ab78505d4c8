// `hostsim fault`: failures injected into the library and the tools.
#include <algorithm>
#include <filesystem>
#include <system_error>

#include "cli/Commands.hpp"
#include "cli/CreateRoot.hpp"
#include "platform/NetworkFaultNames.hpp"
#include "store/StateStore.hpp"

namespace HostSim::Cli {

namespace {

using nlohmann::json;

bool Contains(const std::vector<std::string>& list, const std::string& name) {
    return std::find(list.begin(), list.end(), name) != list.end();
}

json& FaultGroup(json& state, const char* group) {
    json& faults = state["faults"];
    if (!faults.is_object())
        faults = json::object();
    json& entries = faults[group];
    if (!entries.is_object())
        entries = json::object();
    return entries;
}

// The state document keeps text as UTF-8 only.
bool ValidUtf8(const std::string& text) {
    try {
        (void)json(text).dump();
        return true;
    } catch (const json::type_error&) {
        return false;
    }
}

int ExitStatus(const std::string& text) {
    if (text.empty() || text.size() > 3 || !std::all_of(text.begin(), text.end(), ::isdigit) ||
        std::stoi(text) > 255)
        throw UsageError("Expected an exit status from 0 to 255, got \"" + text + "\"");
    return std::stoi(text);
}

// Where an absent tool's script waits to come back: beside it, under a name no one calls.
std::string Hidden(const std::string& path) {
    const std::filesystem::path file(path);
    // Appended piece by piece: GCC 12 warns falsely (-Wrestrict) on "." + std::string.
    std::string name(".");
    name += file.filename().string();
    name += ".absent";
    return (file.parent_path() / name).string();
}

// An absent tool is really gone from the root, so a start of it fails as on a host without it.
void MoveToolScripts(const std::string& root, const std::string& name, bool away) {
    for (const ToolPath& entry : ToolPaths()) {
        if (entry.tool != name)
            continue;
        const std::string path = RootPath(root, entry.path);
        const std::string from = away ? path : Hidden(path);
        const std::string to = away ? Hidden(path) : path;
        std::error_code error;
        if (!std::filesystem::exists(std::filesystem::symlink_status(from)))
            continue;
        std::filesystem::rename(from, to, error);
        if (error)
            throw UsageError("Cannot move " + from + " to " + to + ": " + error.message());
    }
}

// Tools made absent by the faults of `state` (all of them, or the one named).
std::vector<std::string> AbsentTools(const json& state, const std::string& only = "") {
    std::vector<std::string> names;
    const json faults = state.value("faults", json::object());
    const json tools = faults.is_object() ? faults.value("tool", json::object()) : json::object();
    if (!tools.is_object())
        return names;
    for (const auto& [name, fault] : tools.items()) {
        if ((only.empty() || name == only) && fault.is_object() && fault.value("absent", false))
            names.push_back(name);
    }
    return names;
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
        "ResourceInfoImpl::HasRunningVirtualMachines",
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
        "OstraShell",       "SSH",
        "agents.sh",        "benchq",
        "factoryState.py",  "gridmesh-opsagent",
        "gridmeshcfg-xbar", "halt",
        "haltGuests",       "helmq",
        "ostra-tune",       "ostraq",
        "poweroff",         "reboot",
        "shutdown",         "stateSave.sh",
        "tesselping",       "tesseltrace",
    };
    return tools;
}

void ApplyFault(const std::string& root, const std::vector<std::string>& args) {
    if (args.empty())
        throw UsageError("fault needs lib, tool or clear");
    const std::string& kind = args[0];
    if (kind == "lib") {
        if (args.size() != 3)
            throw UsageError("usage: hostsim fault DIR lib OPERATION TEXT");
        if (!Contains(FaultOperations(), args[1]))
            throw UsageError("Unknown library operation \"" + args[1] +
                             "\" (hostsim --help lists them)");
        StateStore(root).Update([&](json& state) { FaultGroup(state, "lib")[args[1]] = args[2]; });
    } else if (kind == "tool") {
        if (args.size() < 3)
            throw UsageError("usage: hostsim fault DIR tool NAME exit STATUS | output TEXT | hang "
                             "| signal | absent");
        const std::string& name = args[1];
        if (!Contains(FaultTools(), name))
            throw UsageError("Unknown tool \"" + name + "\" (hostsim --help lists them)");
        const std::string& what = args[2];
        json change;
        if (what == "exit" && args.size() == 4)
            change = {{"exit", ExitStatus(args[3])}};
        else if (what == "output" && args.size() == 4 && ValidUtf8(args[3]))
            change = {{"output", args[3]}};
        else if (what == "output" && args.size() == 4)
            throw UsageError("The output of a tool fault must be UTF-8 text");
        else if (what == "hang" && args.size() == 3)
            change = {{"hang", true}};
        else if (what == "signal" && args.size() == 3)
            change = {{"signal", true}};
        else if (what == "absent" && args.size() == 3)
            change = {{"absent", true}};
        else
            throw UsageError("usage: hostsim fault DIR tool NAME exit STATUS | output TEXT | hang "
                             "| signal | absent");
        StateStore(root).Update([&](json& state) {
            json& entry = FaultGroup(state, "tool")[name];
            if (!entry.is_object())
                entry = json::object();
            entry.update(change);
        });
        if (what == "absent")
            MoveToolScripts(root, name, true);
    } else if (kind == "trace") {
        if (args.size() != 2 || (args[1] != "on" && args[1] != "off"))
            throw UsageError("usage: hostsim fault DIR trace on|off");
        StateStore(root).Update([&](json& state) {
            FaultGroup(state, "lib");
            state["faults"]["trace"] = args[1] == "on";
        });
    } else if (kind == "clear") {
        if (args.size() > 2)
            throw UsageError("usage: hostsim fault DIR clear [NAME]");
        if (args.size() == 2 && !Contains(FaultOperations(), args[1]) &&
            !Contains(FaultTools(), args[1]))
            throw UsageError("Unknown fault name \"" + args[1] + "\"");
        const std::string only = args.size() == 2 ? args[1] : "";
        for (const std::string& name : AbsentTools(StateStore(root).Read(), only))
            MoveToolScripts(root, name, false);
        StateStore(root).Update([&](json& state) {
            if (args.size() == 1) {
                // The trace is no fault: it outlives a clear.
                const json faults = state.value("faults", json::object());
                const bool trace = faults.is_object() && faults.value("trace", json()) == true;
                state["faults"] = {{"lib", json::object()}, {"tool", json::object()}};
                if (trace)
                    state["faults"]["trace"] = true;
                return;
            }
            FaultGroup(state, "lib").erase(args[1]);
            FaultGroup(state, "tool").erase(args[1]);
        });
    } else {
        throw UsageError("Unknown fault kind \"" + kind + "\" (lib, tool, trace or clear)");
    }
}

} // namespace HostSim::Cli
