// System, hardware and DNS facts from the state; each call reads the state afresh.
#include <algorithm>

#include "keelson/Dns.hpp"
#include "keelson/Hardware.hpp"
#include "keelson/System.hpp"
#include "platform/HostState.hpp"

namespace {

using nlohmann::json;

json Section(std::initializer_list<const char*> operations, const char* key) {
    const auto document = HostSim::Platform::StateFor(operations);
    const json& state = *document;
    json section = state.value(key, json::object());
    return section.is_object() ? section : json::object();
}

std::string Text(const json& object, const char* key) {
    auto it = object.find(key);
    return it != object.end() && it->is_string() ? it->get<std::string>() : std::string();
}

} // namespace

namespace TesselCtl::System {

std::string SystemInfoImpl::GetWelcomeMessage() const {
    const auto document = HostSim::Platform::StateFor({"SystemInfoImpl::GetWelcomeMessage"});
    const json& state = *document;
    return Text(state, "welcomeMessage");
}

void SystemInfoImpl::SetSystemAlert(const std::string& text) {
    HostSim::Platform::UpdateState([&](json& state) {
        HostSim::Platform::CheckFault(state, {"SystemInfoImpl::SetSystemAlert"});
        json& alerts = state["systemAlerts"];
        if (!alerts.is_array())
            alerts = json::array();
        alerts.push_back(text);
    });
}

std::string SystemInfoImpl::GetKeyboardLayout() const {
    return Text(Section({"SystemInfoImpl::GetKeyboardLayout"}, "keyboard"), "layout");
}

std::vector<std::string> SystemInfoImpl::GetKeyboardLayouts() const {
    json keyboard = Section({"SystemInfoImpl::GetKeyboardLayouts"}, "keyboard");
    std::vector<std::string> layouts;
    for (const json& layout : keyboard.value("layouts", json::array())) {
        if (layout.is_string())
            layouts.push_back(layout.get<std::string>());
    }
    return layouts;
}

namespace {

void StoreLayout(const char* operation, const char* field, const std::string& name) {
    HostSim::Platform::UpdateState([&](json& state) {
        HostSim::Platform::CheckFault(state, {operation});
        json& keyboard = state["keyboard"];
        const json layouts = keyboard.value("layouts", json::array());
        if (std::find(layouts.begin(), layouts.end(), json(name)) == layouts.end())
            throw Keelson::Lib::KeelsonException("Unknown keyboard layout " + name);
        keyboard[field] = name;
    });
}

} // namespace

void SystemInfoImpl::LoadKeyboardMappings(const std::string& name) {
    StoreLayout("SystemInfoImpl::LoadKeyboardMappings", "loaded", name);
}

void SystemInfoImpl::SetKeyboardLayout(const std::string& name) {
    StoreLayout("SystemInfoImpl::SetKeyboardLayout", "layout", name);
}

namespace {

// A ruleset under "firewall" in the state; each operation reads or writes the state afresh.
class Ruleset : public Keelson::System::FirewallRuleset {
public:
    explicit Ruleset(std::string id) : id_(std::move(id)) {}
    bool FollowsService() const override {
        const auto document = HostSim::Platform::StateFor({"FirewallRuleset::FollowsService"});
        const json& state = *document;
        const json rulesets = state.value("firewall", json::object());
        const json ruleset =
            rulesets.is_object() ? rulesets.value(id_, json::object()) : json::object();
        return ruleset.is_object() && ruleset.value("followsService", false);
    }
    void Enable() override { Store("FirewallRuleset::Enable", true); }
    void Disable() override { Store("FirewallRuleset::Disable", false); }

private:
    void Store(const char* operation, bool enabled) {
        HostSim::Platform::UpdateState([&](json& state) {
            HostSim::Platform::CheckFault(state, {operation});
            json& rulesets = state["firewall"];
            if (!rulesets.is_object() || !rulesets.contains(id_) || !rulesets[id_].is_object())
                throw Keelson::Lib::KeelsonException("Firewall ruleset " + id_ + " does not exist");
            rulesets[id_]["enabled"] = enabled;
        });
    }
    std::string id_;
};

} // namespace

std::unique_ptr<Keelson::System::FirewallRuleset>
SystemInfoImpl::GetFirewallRulesetById(const std::string& id) const {
    json rulesets = Section({"SystemInfoImpl::GetFirewallRulesetById"}, "firewall");
    if (!rulesets.contains(id) || !rulesets[id].is_object())
        throw Keelson::Lib::KeelsonException("Firewall ruleset " + id + " not found");
    return std::make_unique<Ruleset>(id);
}

} // namespace TesselCtl::System

namespace TesselCtl::Hardware {

std::string HardwareInfoImpl::GetVendorName() const {
    return Text(Section({"HardwareInfoImpl::GetVendorName"}, "hardware"), "vendor");
}

std::string HardwareInfoImpl::GetProductName() const {
    return Text(Section({"HardwareInfoImpl::GetProductName"}, "hardware"), "model");
}

std::string HardwareInfoImpl::GetSerialNumber() const {
    return Text(Section({"HardwareInfoImpl::GetSerialNumber"}, "hardware"), "serialNumber");
}

int CpuInfoImpl::GetNumCpuPackages() const {
    json hardware = Section({"CpuInfoImpl::GetNumCpuPackages"}, "hardware");
    return hardware.value("cpu", json::object()).value("packages", 1);
}

std::string CpuInfoImpl::GetModelName() const {
    json hardware = Section({"CpuInfoImpl::GetModelName"}, "hardware");
    return Text(hardware.value("cpu", json::object()), "model");
}

uint64_t MemoryInfoImpl::GetTotalPages() const {
    json hardware = Section({"MemoryInfoImpl::GetTotalPages"}, "hardware");
    return hardware.value("memory", json::object()).value("totalPages", uint64_t{0});
}

uint64_t MemoryInfoImpl::GetPageSize() const {
    json hardware = Section({"MemoryInfoImpl::GetPageSize"}, "hardware");
    return hardware.value("memory", json::object()).value("pageSize", uint64_t{4096});
}

} // namespace TesselCtl::Hardware

namespace TesselCtl::Network {

DnsConfigImpl::DnsConfigImpl(std::string stack) : stack_(std::move(stack)) {}

std::string DnsConfigImpl::GetHostname() const {
    return Text(Section({"DnsConfigImpl::GetHostname"}, "host"), "hostname");
}

std::string DnsConfigImpl::GetDomain() const {
    return Text(Section({"DnsConfigImpl::GetDomain"}, "host"), "domain");
}

} // namespace TesselCtl::Network
