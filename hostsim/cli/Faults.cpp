// `hostsim fault`: failures injected into the library and the tools.
#include <algorithm>

#include "platform/NetworkFaultNames.hpp"
#include "cli/Commands.hpp"
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
        "CpuInfoImpl::GetModelName",
        "CpuInfoImpl::GetNumCpuPackages",
        "DnsConfigImpl::GetDomain",
        "DnsConfigImpl::GetHostname",
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
        if (args.size() < 3) throw UsageError("usage: hostsim fault DIR tool NAME exit STATUS | output TEXT | hang");
        const std::string& name = args[1];
        if (!Contains(FaultTools(), name))
            throw UsageError("Unknown tool \"" + name + "\" (hostsim --help lists them)");
        const std::string& what = args[2];
        json change;
        if (what == "exit" && args.size() == 4) change = {{"exit", ExitStatus(args[3])}};
        else if (what == "output" && args.size() == 4) change = {{"output", args[3]}};
        else if (what == "hang" && args.size() == 3) change = {{"hang", true}};
        else throw UsageError("usage: hostsim fault DIR tool NAME exit STATUS | output TEXT | hang");
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
    } else {
        throw UsageError("Unknown fault kind \"" + kind + "\" (lib, tool or clear)");
    }
}

} // namespace HostSim::Cli
