// Kernel interfaces, physical NICs, standard switches, port groups and fabrics over the state.
// Objects hold only names; every operation reads the state afresh, and every change is one
// read-modify-write of it. A lib fault is looked up by the operation's Class::Method name.
#include <algorithm>
#include <functional>

#include "keelson/Network.hpp"
#include "platform/HostState.hpp"
#include "platform/NetworkState.hpp"

namespace HostSim::Platform::Net {

using Keelson::Lib::KeelsonException;
using nlohmann::json;

std::string Text(const json& object, const char* key) {
    if (!object.is_object())
        return {};
    auto it = object.find(key);
    return it != object.end() && it->is_string() ? it->get<std::string>() : std::string();
}

json& Array(json& object, const char* key) {
    json& value = object[key];
    if (!value.is_array())
        value = json::array();
    return value;
}

json& Object(json& object, const char* key) {
    json& value = object[key];
    if (!value.is_object())
        value = json::object();
    return value;
}

json ArrayOf(const json& object, const char* key) {
    if (!object.is_object())
        return json::array();
    auto it = object.find(key);
    return it != object.end() && it->is_array() ? *it : json::array();
}

std::vector<std::string> Strings(const json& object, const char* key) {
    std::vector<std::string> result;
    for (const json& entry : ArrayOf(object, key))
        if (entry.is_string())
            result.push_back(entry.get<std::string>());
    return result;
}

namespace {

// Compared in place: a look-up by name walks every entry, and a big host has hundreds.
bool HasName(const json& entry, const std::string& name) {
    if (!entry.is_object())
        return false;
    const auto it = entry.find("name");
    return it != entry.end() && it->is_string() && it->get_ref<const std::string&>() == name;
}

} // namespace

json* Named(json& array, const std::string& name) {
    if (!array.is_array())
        return nullptr;
    for (json& entry : array)
        if (HasName(entry, name))
            return &entry;
    return nullptr;
}

const json* Named(const json& array, const std::string& name) {
    if (!array.is_array())
        return nullptr;
    for (const json& entry : array)
        if (HasName(entry, name))
            return &entry;
    return nullptr;
}

json& Require(json& state, const char* section, const std::string& name, const char* what) {
    json* entry = Named(Array(state, section), name);
    if (entry == nullptr)
        throw KeelsonException(std::string(what) + " " + name + " not found");
    return *entry;
}

const json* Find(const json& state, const char* section, const std::string& name) {
    return state.is_object() && state.contains(section) ? Named(state.at(section), name) : nullptr;
}

const json& Require(const json& state, const char* section, const std::string& name,
                    const char* what) {
    const json* entry = Find(state, section, name);
    if (entry == nullptr)
        throw KeelsonException(std::string(what) + " " + name + " not found");
    return *entry;
}

void RemoveString(json& array, const std::string& text) {
    if (!array.is_array())
        return;
    array.erase(std::remove(array.begin(), array.end(), json(text)), array.end());
}

bool HasString(const json& array, const std::string& text) {
    return array.is_array() && std::find(array.begin(), array.end(), json(text)) != array.end();
}

Keelson::Network::Ipv4Address V4(const std::string& text) {
    return text.empty() ? Keelson::Network::Ipv4Address() : Keelson::Network::Ipv4Address(text);
}

Keelson::Network::Ipv6Address V6(const std::string& text) {
    return text.empty() ? Keelson::Network::Ipv6Address() : Keelson::Network::Ipv6Address(text);
}

Keelson::Network::NicTeamingPolicy TeamingFrom(const json& teaming) {
    Keelson::Network::NicTeamingPolicy policy;
    if (!teaming.is_object())
        return policy;
    policy.SetFlags(teaming.value("flags", 0u));
    policy.SetUplinkOrder(Strings(teaming, "uplinkOrder"));
    policy.SetMaxActiveUplinks(teaming.value("maxActiveUplinks", 0));
    policy.SetPolicy(Text(teaming, "policy"));
    Keelson::Network::LinkCriteriaSelectionPolicy criteria;
    const json link = teaming.value("linkCriteria", json::object());
    if (link.is_object()) {
        criteria.checkBeacon = link.value("checkBeacon", criteria.checkBeacon);
        criteria.checkSpeed = link.value("checkSpeed", criteria.checkSpeed);
        criteria.speed = link.value("speed", criteria.speed);
        criteria.checkDuplex = link.value("checkDuplex", criteria.checkDuplex);
        criteria.fullDuplex = link.value("fullDuplex", criteria.fullDuplex);
        criteria.checkErrorPercent = link.value("checkErrorPercent", criteria.checkErrorPercent);
        criteria.percentage = link.value("percentage", criteria.percentage);
    }
    policy.SetLinkCriteriaSelectionPolicy(criteria);
    return policy;
}

void TeamingInto(json& teaming, const Keelson::Network::NicTeamingPolicy& policy) {
    if (!teaming.is_object())
        teaming = json::object();
    teaming["flags"] = policy.GetFlags();
    teaming["uplinkOrder"] = policy.GetUplinkOrder();
    teaming["maxActiveUplinks"] = policy.GetMaxActiveUplinks();
    teaming["policy"] = policy.GetPolicy();
    // Keys of the criteria this library does not know stay where they are.
    json& link = Object(teaming, "linkCriteria");
    const auto& criteria = policy.GetLinkCriteriaSelectionPolicy();
    link["checkBeacon"] = criteria.checkBeacon;
    link["checkSpeed"] = criteria.checkSpeed;
    link["speed"] = criteria.speed;
    if (criteria.checkDuplex || link.contains("checkDuplex"))
        link["checkDuplex"] = criteria.checkDuplex;
    if (criteria.fullDuplex || link.contains("fullDuplex"))
        link["fullDuplex"] = criteria.fullDuplex;
    if (criteria.checkErrorPercent || link.contains("checkErrorPercent"))
        link["checkErrorPercent"] = criteria.checkErrorPercent;
    if (criteria.percentage != 0 || link.contains("percentage"))
        link["percentage"] = criteria.percentage;
}

json NewTeaming() {
    return {{"flags", Keelson::Network::NicTeamingPolicy::FLAG_USE_UPLINK_ORDER},
            {"uplinkOrder", json::array()},
            {"maxActiveUplinks", 0},
            {"policy", "loadbalance_srcid"},
            {"linkCriteria", {{"checkBeacon", false}, {"checkSpeed", "minimum"}, {"speed", 10}}}};
}

} // namespace HostSim::Platform::Net

namespace {

using namespace HostSim::Platform::Net;
using HostSim::Platform::CheckFault;
using HostSim::Platform::StateFor;
using HostSim::Platform::UpdateState;
namespace KN = Keelson::Network;

// Type numbers of the IPv6 address kinds in the state.
int AddressType(const std::string& type) {
    if (type == "static")
        return 0;
    if (type == "linklocal")
        return 1;
    if (type == "autoconf")
        return 7;
    if (type == "dhcp")
        return 9;
    return 2;
}

std::string AddressTypeName(int type) {
    switch (type) {
    case 0:
        return "static";
    case 1:
        return "linklocal";
    case 7:
        return "autoconf";
    case 9:
        return "dhcp";
    default:
        return "other";
    }
}

json& Interface(json& state, const std::string& name) {
    return Require(Object(state, "network"), "interfaces", name, "Interface");
}

const json& Interface(const json& state, const std::string& name) {
    static const json empty = json::object();
    auto network = state.find("network");
    return Require(network != state.end() ? *network : empty, "interfaces", name, "Interface");
}

KN::IpConfig IpConfigFrom(const json& state, const json& nic, bool configured) {
    const json network = state.value("network", json::object());
    const json ipv4 = nic.value("ipv4", json::object());
    const json ipv6 = nic.value("ipv6", json::object());
    KN::IpConfig config;
    const std::string mode = Text(ipv4, "mode");
    if (mode == "dhcp")
        config.SetUseDhcp(true);
    else
        config.SetUseDhcp(false, mode == "none");
    config.SetIpv4Address(V4(Text(ipv4, configured ? "configuredAddress" : "address")));
    config.SetIpv4Netmask(V4(Text(ipv4, configured ? "configuredNetmask" : "netmask")));
    config.SetIpv4Gateway(V4(Text(network, "gateway")));
    config.SetDhcpDns(network.value("dns", json::object()).value("dhcp", false));
    if (network.value("ipv6Enabled", false))
        config.EnableIpv6();
    config.SetUseIpv6Dhcp(ipv6.value("dhcp", false));
    config.SetUseIpv6RouterAdvertised(ipv6.value("autoconf", false));
    for (const json& entry : ArrayOf(ipv6, "addresses")) {
        KN::Ipv6Network address(V6(Text(entry, "address")), entry.value("prefixLength", 64));
        address.SetIpv6AddressType(AddressType(Text(entry, "type")));
        address.SetIpv6Scope(address.GetAddress().IsLinkLocal() ? 1 : 3);
        config.AddIpv6Network(address);
    }
    config.SetIpv6Gateway(V6(Text(network, "ipv6Gateway")));
    return config;
}

// What the segment's DHCP server (network.dhcpOffer) gives the interface; without a server the
// interface waits with no address.
void TakeLease(json& state, json& nic) {
    json& network = Object(state, "network");
    json& ipv4 = Object(nic, "ipv4");
    const json offer = network.value("dhcpOffer", json());
    const std::string zero = "0.0.0.0";
    if (!offer.is_object() || Text(offer, "server").empty()) {
        ipv4["address"] = ipv4["netmask"] = ipv4["dhcpServer"] = zero;
        ipv4["dhcpBound"] = false;
        return;
    }
    ipv4["address"] = Text(offer, "address");
    ipv4["netmask"] = Text(offer, "netmask");
    ipv4["dhcpServer"] = Text(offer, "server");
    ipv4["dhcpBound"] = true;
    network["gateway"] = Text(offer, "gateway");
    json& dns = Object(network, "dns");
    if (dns.value("dhcp", false))
        dns["servers"] = ArrayOf(offer, "dnsServers");
}

void IpConfigInto(json& state, json& nic, const KN::IpConfig& config) {
    Object(Object(state, "network"), "dns")["dhcp"] = config.GetDhcpDns();
    json& ipv4 = Object(nic, "ipv4");
    const std::string zero = "0.0.0.0";
    if (config.GetUseDhcp()) {
        // A client that starts asks at once; one already running keeps its lease until renewal.
        const bool starting = Text(ipv4, "mode") != "dhcp";
        ipv4["mode"] = "dhcp";
        ipv4["configuredAddress"] = zero;
        ipv4["configuredNetmask"] = zero;
        if (starting)
            TakeLease(state, nic);
    } else if (config.GetIpv4UseNone()) {
        ipv4["mode"] = "none";
        ipv4["address"] = ipv4["netmask"] = ipv4["configuredAddress"] = ipv4["configuredNetmask"] =
            zero;
        ipv4["dhcpServer"] = zero;
        ipv4["dhcpBound"] = false;
    } else {
        ipv4["mode"] = "static";
        ipv4["address"] = ipv4["configuredAddress"] = config.GetIpv4Address().GetStringAddress();
        ipv4["netmask"] = ipv4["configuredNetmask"] = config.GetIpv4Netmask().GetStringAddress();
        ipv4["dhcpServer"] = zero;
        ipv4["dhcpBound"] = false;
    }
    json& ipv6 = Object(nic, "ipv6");
    ipv6["dhcp"] = config.GetUseIpv6Dhcp();
    ipv6["autoconf"] = config.GetUseIpv6RouterAdvertised();
    json addresses = json::array();
    for (const KN::Ipv6Network& network : config.GetIpv6Network())
        addresses.push_back({{"address", network.GetAddress().GetStringAddress()},
                             {"prefixLength", network.GetPrefixLength()},
                             {"type", AddressTypeName(network.GetIpv6AddressType())}});
    ipv6["addresses"] = addresses;
}

// The interface's "linkChanges", newest last, so that a restart can be seen in the state.
void RecordLinkChange(json& nic, const char* change) {
    json& changes = Array(nic, "linkChanges");
    changes.push_back(change);
    if (changes.size() > 50)
        changes.erase(changes.begin());
}

// Connection points of kind none and opaque.
class SimPlainPoint final : public KN::ConnectionPoint {
public:
    explicit SimPlainPoint(int type) : type_(type) {}
    int GetConnecteeType() const override { return type_; }
    std::string GetPortsetName() const override { return {}; }
    std::string GetPortGroupName() const override { return {}; }
    KN::Portset* GetPortset() const override { return nullptr; }

private:
    int type_;
};

class SimVirtualSwitch final : public KN::VirtualSwitch {
public:
    explicit SimVirtualSwitch(std::string name) : name_(std::move(name)) {}

    std::string GetName() const override { return name_; }
    std::vector<std::string> GetUplinks() const override {
        return Strings(Read("VirtualSwitch::GetUplinks"), "uplinks");
    }
    std::vector<std::string> GetPortGroups() const override {
        return Strings(Read("VirtualSwitch::GetPortGroups"), "portGroups");
    }
    uint32_t GetNumPorts() const override {
        return Read("VirtualSwitch::GetNumPorts").value("numPorts", 0u);
    }
    uint32_t GetUsedPorts() const override {
        return Read("VirtualSwitch::GetUsedPorts").value("usedPorts", 0u);
    }
    uint32_t GetConfiguredPorts() const override {
        return Read("VirtualSwitch::GetConfiguredPorts").value("configuredPorts", 0u);
    }
    KN::PortGroup* AddPortGroup(const std::string& name) override;
    void AddUplink(const std::string& uplink, bool teaming) override;
    void RemoveUplink(const std::string& uplink, bool teaming) override;
    KN::NicTeamingPolicy GetTeamingPolicy() const override {
        return TeamingFrom(
            Read("VirtualSwitch::GetTeamingPolicy").value("teaming", json::object()));
    }
    void SetTeamingPolicy(const KN::NicTeamingPolicy& policy) override {
        Change("VirtualSwitch::SetTeamingPolicy",
               [&](json&, json& sw) { TeamingInto(sw["teaming"], policy); });
    }

private:
    json Read(const char* operation) const {
        return Require(*StateFor({operation}), "switches", name_, "Standard switch");
    }
    void Change(const char* operation, const std::function<void(json&, json&)>& change) {
        UpdateState([&](json& state) {
            CheckFault(state, {operation});
            change(state, Require(state, "switches", name_, "Standard switch"));
        });
    }

    std::string name_;
};

class SimFabricPort;

class SimFabric final : public KN::FabricSwitch {
public:
    explicit SimFabric(std::string name) : name_(std::move(name)) {}

    std::string GetName() const override { return name_; }
    std::vector<std::string> GetUplinks() const override {
        std::vector<std::string> names;
        for (const auto& [name, port] : GetUplinkPorts())
            names.push_back(name);
        return names;
    }
    std::string GetFabricId() const override {
        return Text(Read("FabricSwitch::GetFabricId"), "id");
    }
    std::map<std::string, KN::FabricPortParam> GetUplinkPorts() const override {
        const json fabric = Read("FabricSwitch::GetUplinkPorts");
        std::map<std::string, KN::FabricPortParam> ports;
        const json uplinks = fabric.value("uplinks", json::object());
        if (!uplinks.is_object())
            return ports;
        for (auto it = uplinks.begin(); it != uplinks.end(); ++it)
            ports[it.key()] =
                KN::FabricPortParam{Text(fabric, "id"), Text(it.value(), "portId"), 0};
        return ports;
    }
    KN::FabricPort* GetFabricPort(const std::string& portId) const override;
    void RemoveUplink(const std::string& uplink, bool) override {
        UpdateState([&](json& state) {
            CheckFault(state, {"FabricSwitch::RemoveUplink"});
            json& uplinks = Object(Require(state, "fabrics", name_, "Fabric"), "uplinks");
            if (!uplinks.contains(uplink))
                throw KeelsonException("Uplink " + uplink + " is not attached to fabric " + name_);
            uplinks.erase(uplink);
        });
    }
    bool IsZephoraFabric() const override {
        return Read("FabricSwitch::IsZephoraFabric").value("lanyxOwned", false);
    }

private:
    json Read(const char* operation) const {
        return Require(*StateFor({operation}), "fabrics", name_, "Fabric");
    }

    std::string name_;
};

json* FindPort(json& fabric, const std::string& id) {
    for (json& port : Array(fabric, "ports"))
        if (Text(port, "id") == id)
            return &port;
    return nullptr;
}

const json* FindPort(const json& fabric, const std::string& id) {
    const auto ports = fabric.find("ports");
    if (ports == fabric.end() || !ports->is_array())
        return nullptr;
    for (const json& port : *ports)
        if (Text(port, "id") == id)
            return &port;
    return nullptr;
}

class SimFabricPort final : public KN::FabricPort {
public:
    SimFabricPort(std::string fabric, std::string id)
        : fabric_(std::move(fabric)), id_(std::move(id)) {}

    int GetConnecteeType() const override { return KN::CONNECTEE_FABRIC_PORT; }
    std::string GetPortsetName() const override { return fabric_; }
    std::string GetPortGroupName() const override {
        return Text(Read("FabricPort::GetPortGroupName"), "portGroup");
    }
    KN::Portset* GetPortset() const override { return GetFabric(); }

    KN::FabricSwitch* GetFabric() const override {
        Read("FabricPort::GetFabric");
        return new SimFabric(fabric_);
    }
    std::string GetFabricId() const override {
        return Text(Require(*StateFor({"FabricPort::GetFabricId"}), "fabrics", fabric_, "Fabric"),
                    "id");
    }
    std::string GetFabricPortId() const override {
        Read("FabricPort::GetFabricPortId");
        return id_;
    }
    std::string GetName() const override { return Text(Read("FabricPort::GetName"), "name"); }

    KN::FabricPortVlanPolicy GetVlanPolicy() const override {
        KN::FabricPortVlanPolicy policy;
        policy.vlanId = Read("FabricPort::GetVlanPolicy").value("vlan", uint16_t{0});
        return policy;
    }
    void SetVlanPolicy(const KN::FabricPortVlanPolicy& policy) override {
        if (policy.vlanId > 4095)
            throw KeelsonException("Invalid VLAN id " + std::to_string(policy.vlanId));
        Change("FabricPort::SetVlanPolicy", [&](json& port) { port["vlan"] = policy.vlanId; });
    }
    bool GetBlocked() const override {
        return Read("FabricPort::GetBlocked").value("blocked", false);
    }
    void SetBlocked(bool blocked) override {
        Change("FabricPort::SetBlocked", [&](json& port) { port["blocked"] = blocked; });
    }
    bool GetTxUplink() const override {
        return Property("FabricPort::GetTxUplink", "txUplink").get<bool>();
    }
    void SetTxUplink(bool txUplink) override {
        SetProperty("FabricPort::SetTxUplink", "txUplink", txUplink);
    }
    KN::FabricPortTeamPolicy GetTeamingPolicy() const override {
        const json team = Property("FabricPort::GetTeamingPolicy", "teamPolicy");
        KN::FabricPortTeamPolicy policy;
        if (!team.is_object())
            return policy;
        policy.policy = team.value("policy", 0u);
        policy.notifySwitches = team.value("notifySwitches", uint8_t{0});
        policy.rollingOrder = team.value("rollingOrder", uint8_t{0});
        policy.policyInherited = team.value("policyInherited", uint8_t{0});
        policy.uplinksInherited = team.value("uplinksInherited", uint8_t{0});
        policy.failureInherited = team.value("failureInherited", uint8_t{0});
        policy.activeUplinks = Strings(team, "active");
        policy.standbyUplinks = Strings(team, "standby");
        return policy;
    }
    void SetTeamingPolicy(const KN::FabricPortTeamPolicy& policy) override {
        SetProperty("FabricPort::SetTeamingPolicy", "teamPolicy",
                    {{"policy", policy.policy},
                     {"notifySwitches", policy.notifySwitches},
                     {"rollingOrder", policy.rollingOrder},
                     {"policyInherited", policy.policyInherited},
                     {"uplinksInherited", policy.uplinksInherited},
                     {"failureInherited", policy.failureInherited},
                     {"active", policy.activeUplinks},
                     {"standby", policy.standbyUplinks}});
    }
    bool GetIpfixEnabled() const override {
        return Property("FabricPort::GetIpfixEnabled", "ipfix").get<bool>();
    }
    void SetIpfixEnabled(bool enabled) override {
        SetProperty("FabricPort::SetIpfixEnabled", "ipfix", enabled);
    }
    KN::FabricPortSecurityPolicy GetSecurityPolicy() const override {
        const json security = Property("FabricPort::GetSecurityPolicy", "security");
        KN::FabricPortSecurityPolicy policy;
        if (!security.is_object())
            return policy;
        policy.allowPromiscuous = security.value("allowPromiscuous", uint8_t{0});
        policy.macChanges = security.value("macChanges", uint8_t{0});
        policy.forgedTransmits = security.value("forgedTransmits", uint8_t{0});
        return policy;
    }
    void SetSecurityPolicy(const KN::FabricPortSecurityPolicy& policy) override {
        SetProperty("FabricPort::SetSecurityPolicy", "security",
                    {{"allowPromiscuous", policy.allowPromiscuous},
                     {"macChanges", policy.macChanges},
                     {"forgedTransmits", policy.forgedTransmits}});
    }
    KN::FabricPortShapingPolicy GetShapingPolicy(bool input) const override {
        const json shaping =
            Property("FabricPort::GetShapingPolicy", input ? "shapingIn" : "shapingOut");
        KN::FabricPortShapingPolicy policy;
        if (!shaping.is_object())
            return policy;
        policy.enabled = shaping.value("enabled", false);
        policy.averageBandwidth = shaping.value("average", uint64_t{0});
        policy.peakBandwidth = shaping.value("peak", uint64_t{0});
        policy.burstSize = shaping.value("burst", uint64_t{0});
        return policy;
    }
    void SetShapingPolicy(bool input, const KN::FabricPortShapingPolicy& policy) override {
        SetProperty("FabricPort::SetShapingPolicy", input ? "shapingIn" : "shapingOut",
                    {{"enabled", policy.enabled},
                     {"average", policy.averageBandwidth},
                     {"peak", policy.peakBandwidth},
                     {"burst", policy.burstSize}});
    }
    std::string GetPortPersistencePath() const override {
        const json path = Property("FabricPort::GetPortPersistencePath", "persistencePath");
        return path.is_string() ? path.get<std::string>() : std::string();
    }
    void SetPortPersistencePath(const std::string& path) override {
        SetProperty("FabricPort::SetPortPersistencePath", "persistencePath", path);
    }
    std::map<std::string, std::string> GetVendorData(int kind) const override {
        std::map<std::string, std::string> data;
        const json all = Property("FabricPort::GetVendorData", "vendorStrings");
        const json entries =
            all.is_object() ? all.value(std::to_string(kind), json::object()) : json::object();
        for (auto it = entries.begin(); it != entries.end(); ++it)
            if (it.value().is_string())
                data[it.key()] = it.value().get<std::string>();
        return data;
    }
    void SetVendorData(int kind, const std::map<std::string, std::string>& data) override {
        Change("FabricPort::SetVendorData", [&](json& port) {
            Object(Object(port, "properties"), "vendorStrings")[std::to_string(kind)] = data;
        });
    }
    std::map<std::string, std::vector<uint8_t>> GetVendorBinaryData(int kind) const override {
        std::map<std::string, std::vector<uint8_t>> data;
        const json all = Property("FabricPort::GetVendorBinaryData", "vendorBinary");
        const json entries =
            all.is_object() ? all.value(std::to_string(kind), json::object()) : json::object();
        for (auto it = entries.begin(); it != entries.end(); ++it)
            if (it.value().is_array())
                data[it.key()] = it.value().get<std::vector<uint8_t>>();
        return data;
    }
    void SetVendorData(int kind, const std::map<std::string, std::vector<uint8_t>>& data) override {
        Change("FabricPort::SetVendorData", [&](json& port) {
            Object(Object(port, "properties"), "vendorBinary")[std::to_string(kind)] = data;
        });
    }
    std::vector<KN::FabricPortOverlayParam> GetOverlayParams() const override {
        std::vector<KN::FabricPortOverlayParam> params;
        const json list = Property("FabricPort::GetOverlayParams", "overlayParams");
        for (const json& entry : list.is_array() ? list : json::array())
            params.push_back({Text(entry, "name"), entry.value("data", std::vector<uint8_t>{})});
        return params;
    }
    void SetOverlayParams(const std::vector<KN::FabricPortOverlayParam>& params) override {
        json list = json::array();
        for (const auto& param : params)
            list.push_back({{"name", param.name}, {"data", param.data}});
        SetProperty("FabricPort::SetOverlayParams", "overlayParams", list);
    }
    std::vector<KN::FABRICResPoolCfg> GetResPoolsCfg() const override {
        std::vector<KN::FABRICResPoolCfg> pools;
        const json list = Property("FabricPort::GetResPoolsCfg", "resPools");
        for (const json& entry : list.is_array() ? list : json::array())
            pools.push_back({Text(entry, "key"), Text(entry, "name"),
                             entry.value("limit", int64_t{-1}), entry.value("shares", 0)});
        return pools;
    }
    void SetResPoolsCfg(const std::vector<KN::FABRICResPoolCfg>& pools) override {
        json list = json::array();
        for (const auto& pool : pools)
            list.push_back({{"key", pool.key},
                            {"name", pool.name},
                            {"limit", pool.limit},
                            {"shares", pool.shares}});
        SetProperty("FabricPort::SetResPoolsCfg", "resPools", list);
    }
    std::string GetResPoolAssoc() const override {
        const json pool = Property("FabricPort::GetResPoolAssoc", "resPoolAssoc");
        return pool.is_string() ? pool.get<std::string>() : std::string();
    }
    void SetResPoolAssoc(const std::string& pool) override {
        SetProperty("FabricPort::SetResPoolAssoc", "resPoolAssoc", pool);
    }
    void Destroy() override {
        UpdateState([&](json& state) {
            CheckFault(state, {"FabricPort::Destroy"});
            json& ports = Array(Require(state, "fabrics", fabric_, "Fabric"), "ports");
            for (auto it = ports.begin(); it != ports.end(); ++it) {
                if (Text(*it, "id") == id_) {
                    ports.erase(it);
                    return;
                }
            }
            throw KeelsonException("Fabric port " + id_ + " not found on " + fabric_);
        });
    }

private:
    json Read(const char* operation) const {
        const auto document = StateFor({operation});
        const json& state = *document;
        const json* port = FindPort(Require(state, "fabrics", fabric_, "Fabric"), id_);
        if (port == nullptr)
            throw KeelsonException("Fabric port " + id_ + " not found on " + fabric_);
        return *port;
    }
    // A property of the port; false when it has none, which every reader takes as its empty value.
    json Property(const char* operation, const char* key) const {
        const json properties = Read(operation).value("properties", json::object());
        return properties.is_object() ? properties.value(key, json(false)) : json(false);
    }
    void Change(const char* operation, const std::function<void(json&)>& change) {
        UpdateState([&](json& state) {
            CheckFault(state, {operation});
            json* port = FindPort(Require(state, "fabrics", fabric_, "Fabric"), id_);
            if (port == nullptr)
                throw KeelsonException("Fabric port " + id_ + " not found on " + fabric_);
            change(*port);
        });
    }
    void SetProperty(const char* operation, const char* key, const json& value) {
        Change(operation, [&](json& port) { Object(port, "properties")[key] = value; });
    }

    std::string fabric_;
    std::string id_;
};

KN::FabricPort* SimFabric::GetFabricPort(const std::string& portId) const {
    json fabric = Read("FabricSwitch::GetFabricPort");
    return FindPort(fabric, portId) != nullptr ? new SimFabricPort(name_, portId) : nullptr;
}

class SimPortGroup final : public KN::PortGroup {
public:
    explicit SimPortGroup(std::string name) : name_(std::move(name)) {}

    int GetConnecteeType() const override { return KN::CONNECTEE_PORTGROUP; }
    std::string GetPortsetName() const override {
        return Text(Read("PortGroup::GetPortsetName"), "switch");
    }
    std::string GetPortGroupName() const override { return name_; }
    KN::Portset* GetPortset() const override { return GetVirtualSwitch(); }

    std::string GetName() const override { return name_; }
    KN::VirtualSwitch* GetVirtualSwitch() const override {
        const auto document = StateFor({"PortGroup::GetVirtualSwitch"});
        const json& state = *document;
        const std::string name = Text(Require(state, "portGroups", name_, "Port group"), "switch");
        Require(state, "switches", name, "Standard switch");
        return new SimVirtualSwitch(name);
    }
    uint16_t GetVlanId() const override {
        return Read("PortGroup::GetVlanId").value("vlan", uint16_t{0});
    }
    void SetVlanId(uint16_t vlanId) override {
        if (vlanId > 4095)
            throw KeelsonException("Invalid VLAN id " + std::to_string(vlanId));
        Change("PortGroup::SetVlanId", [&](json& group) { group["vlan"] = vlanId; });
    }
    uint32_t GetActiveClients() const override {
        return Read("PortGroup::GetActiveClients").value("activeClients", 0u);
    }
    KN::NicTeamingPolicy GetTeamingPolicy() const override {
        return TeamingFrom(Read("PortGroup::GetTeamingPolicy").value("teaming", json::object()));
    }
    void SetTeamingPolicy(const KN::NicTeamingPolicy& policy) override {
        Change("PortGroup::SetTeamingPolicy",
               [&](json& group) { TeamingInto(group["teaming"], policy); });
    }

private:
    json Read(const char* operation) const {
        return Require(*StateFor({operation}), "portGroups", name_, "Port group");
    }
    void Change(const char* operation, const std::function<void(json&)>& change) {
        UpdateState([&](json& state) {
            CheckFault(state, {operation});
            change(Require(state, "portGroups", name_, "Port group"));
        });
    }

    std::string name_;
};

KN::PortGroup* SimVirtualSwitch::AddPortGroup(const std::string& name) {
    UpdateState([&](json& state) {
        CheckFault(state, {"VirtualSwitch::AddPortGroup"});
        if (name.empty())
            throw KeelsonException("Invalid port group name");
        json& sw = Require(state, "switches", name_, "Standard switch");
        if (Named(Array(state, "portGroups"), name) != nullptr)
            throw KeelsonException("A port group named " + name + " already exists");
        Array(sw, "portGroups").push_back(name);
        json teaming = sw.value("teaming", NewTeaming());
        Array(state, "portGroups")
            .push_back({{"name", name},
                        {"switch", name_},
                        {"vlan", 0},
                        {"activeClients", 0},
                        {"teaming", teaming}});
    });
    return new SimPortGroup(name);
}

// The switch or fabric that holds the NIC as an uplink, or empty.
std::string UplinkHolder(json& state, const std::string& uplink) {
    for (json& sw : Array(state, "switches"))
        if (HasString(sw.value("uplinks", json::array()), uplink))
            return Text(sw, "name");
    for (json& fabric : Array(state, "fabrics")) {
        const json uplinks = fabric.value("uplinks", json::object());
        if (uplinks.is_object() && uplinks.contains(uplink))
            return Text(fabric, "name");
    }
    return {};
}

void SimVirtualSwitch::AddUplink(const std::string& uplink, bool teaming) {
    Change("VirtualSwitch::AddUplink", [&](json& state, json& sw) {
        Require(state, "pnics", uplink, "Physical NIC");
        const std::string holder = UplinkHolder(state, uplink);
        if (!holder.empty())
            throw KeelsonException("Uplink " + uplink + " is already in use by " + holder);
        Array(sw, "uplinks").push_back(uplink);
        sw["usedPorts"] = sw.value("usedPorts", 0) + 1;
        if (teaming) {
            json& order = Array(Object(sw, "teaming"), "uplinkOrder");
            if (!HasString(order, uplink))
                order.push_back(uplink);
        }
    });
}

void SimVirtualSwitch::RemoveUplink(const std::string& uplink, bool teaming) {
    Change("VirtualSwitch::RemoveUplink", [&](json& state, json& sw) {
        (void)state;
        json& uplinks = Array(sw, "uplinks");
        if (!HasString(uplinks, uplink))
            throw KeelsonException("Uplink " + uplink + " is not attached to standard switch " +
                                   name_);
        RemoveString(uplinks, uplink);
        sw["usedPorts"] = std::max(0, sw.value("usedPorts", 1) - 1);
        if (teaming)
            RemoveString(Array(Object(sw, "teaming"), "uplinkOrder"), uplink);
    });
}

class SimPciDevice final : public KN::PciDevice {
public:
    explicit SimPciDevice(std::string pnic) : pnic_(std::move(pnic)) {}
    std::string GetName() const override {
        const json nic = Require(*StateFor({"PciDevice::GetName"}), "pnics", pnic_, "Physical NIC");
        return Text(nic, "pciLabel");
    }

private:
    std::string pnic_;
};

} // namespace

namespace TesselCtl::Network {

// ---- TesselNicImpl

TesselNicImpl::TesselNicImpl(std::string name) : name_(std::move(name)) {}

void TesselNicImpl::Refresh() {
    const auto document = StateFor({"TesselNicImpl::Refresh"});
    const json& state = *document;
    const json& nic = Interface(state, name_);
    ipConfig_ = IpConfigFrom(state, nic, false);
    configuredIpConfig_ = IpConfigFrom(state, nic, true);
    const json ipv4 = nic.value("ipv4", json::object());
    dhcpServer_ = V4(Text(ipv4, "dhcpServer"));
    dhcpBound_ = ipv4.value("dhcpBound", false);
    stale_ = false;
}

void TesselNicImpl::RefreshIfStale() {
    if (stale_)
        Refresh();
    stale_ = false;
}

KN::ConnectionPoint* TesselNicImpl::GetConnectionPoint() const {
    const auto document = StateFor({"TesselNicImpl::GetConnectionPoint"});
    const json& state = *document;
    const json connection = Interface(state, name_).value("connection", json());
    if (!connection.is_object())
        return nullptr;
    const std::string type = Text(connection, "type");
    if (type == "portgroup")
        return new SimPortGroup(Text(connection, "portGroup"));
    if (type == "fabric")
        return new SimFabricPort(Text(connection, "fabric"), Text(connection, "portId"));
    if (type == "opaque")
        return new SimPlainPoint(KN::CONNECTEE_OPAQUE);
    return new SimPlainPoint(KN::CONNECTEE_NONE);
}

std::string TesselNicImpl::GetInterfaceName() const {
    // The name is the object's key, so the cached value is always the fresh one.
    StateFor({"TesselNicImpl::GetInterfaceName"});
    return name_;
}

std::string TesselNicImpl::GetName() const {
    return name_;
}

KN::MacAddress TesselNicImpl::GetMacAddress() const {
    return KN::MacAddress(
        Text(Interface(*StateFor({"TesselNicImpl::GetMacAddress"}), name_), "mac"));
}

void TesselNicImpl::SetMacAddress(const KN::MacAddress& mac) {
    UpdateState([&](json& state) {
        CheckFault(state, {"TesselNicImpl::SetMacAddress"});
        Interface(state, name_)["mac"] = mac.GetStringAddress();
    });
    stale_ = true;
}

void TesselNicImpl::SetMacAddressFromPnic(KN::Pnic* pnic) {
    if (pnic == nullptr)
        throw KeelsonException("No physical NIC given");
    const std::string pnicName = pnic->GetName();
    UpdateState([&](json& state) {
        CheckFault(state, {"TesselNicImpl::SetMacAddressFromPnic"});
        const std::string mac = Text(Require(state, "pnics", pnicName, "Physical NIC"), "mac");
        Interface(state, name_)["mac"] = mac;
    });
    stale_ = true;
}

// Coming up asks DHCP afresh: a server that answers binds the lease, none leaves no address.
void TesselNicImpl::Enable() {
    UpdateState([&](json& state) {
        CheckFault(state, {"TesselNicImpl::Enable"});
        json& nic = Interface(state, name_);
        nic["enabled"] = true;
        RecordLinkChange(nic, "enable");
        // An interface that comes up on DHCP asks for its lease again.
        json& ipv4 = Object(nic, "ipv4");
        if (Text(ipv4, "mode") == "dhcp") {
            ipv4["renewals"] = ipv4.value("renewals", 0) + 1;
            TakeLease(state, nic);
        }
        json& ipv6 = Object(nic, "ipv6");
        if (ipv6.value("dhcp", false))
            ipv6["renewals"] = ipv6.value("renewals", 0) + 1;
        HostSim::Platform::RecordCall(state, "TesselNicImpl::Enable", name_);
    });
    stale_ = true;
}

void TesselNicImpl::Disable() {
    UpdateState([&](json& state) {
        CheckFault(state, {"TesselNicImpl::Disable"});
        json& nic = Interface(state, name_);
        nic["enabled"] = false;
        RecordLinkChange(nic, "disable");
        HostSim::Platform::RecordCall(state, "TesselNicImpl::Disable", name_);
    });
    stale_ = true;
}

bool TesselNicImpl::IsEnabled() const {
    return Interface(*StateFor({"TesselNicImpl::IsEnabled"}), name_).value("enabled", true);
}

void TesselNicImpl::ConnectTo(const KN::ConnectionPoint& point, bool) {
    // Read the point before taking the state's lock: its getters read the state themselves.
    const int type = point.GetConnecteeType();
    json connection;
    if (type == KN::CONNECTEE_PORTGROUP) {
        connection = {{"type", "portgroup"}, {"portGroup", point.GetPortGroupName()}};
    } else if (const auto* port = dynamic_cast<const KN::FabricPort*>(&point)) {
        connection = {{"type", "fabric"},
                      {"fabric", point.GetPortsetName()},
                      {"portId", port->GetFabricPortId()}};
    } else {
        throw KeelsonException("Cannot connect " + name_ + " to a connectee of type " +
                               std::to_string(type));
    }
    UpdateState([&](json& state) {
        CheckFault(state, {"TesselNicImpl::ConnectTo"});
        json& nic = Interface(state, name_);
        if (type == KN::CONNECTEE_PORTGROUP) {
            json& target =
                Require(state, "portGroups", Text(connection, "portGroup"), "Port group");
            target["activeClients"] = target.value("activeClients", 0) + 1;
        } else {
            const std::string id = Text(connection, "portId");
            if (FindPort(Require(state, "fabrics", Text(connection, "fabric"), "Fabric"), id) ==
                nullptr)
                throw KeelsonException("Fabric port " + id + " not found");
        }
        const json old = nic.value("connection", json::object());
        if (Text(old, "type") == "portgroup") {
            if (json* previous = Named(Array(state, "portGroups"), Text(old, "portGroup")))
                (*previous)["activeClients"] = std::max(0, previous->value("activeClients", 1) - 1);
        }
        nic["connection"] = connection;
    });
    stale_ = true;
}

KN::IpConfig TesselNicImpl::GetIpConfig() {
    CheckFault(*HostSim::Platform::ReadState(), {"TesselNicImpl::GetIpConfig"});
    RefreshIfStale();
    return ipConfig_;
}

KN::IpConfig TesselNicImpl::GetConfiguredIpConfig() {
    CheckFault(*HostSim::Platform::ReadState(), {"TesselNicImpl::GetConfiguredIpConfig"});
    RefreshIfStale();
    return configuredIpConfig_;
}

void TesselNicImpl::SetIpConfig(const KN::IpConfig& config) {
    UpdateState([&](json& state) {
        CheckFault(state, {"TesselNicImpl::SetIpConfig"});
        IpConfigInto(state, Interface(state, name_), config);
    });
    stale_ = true;
}

KN::Ipv4Address TesselNicImpl::GetDhcpServer() {
    CheckFault(*HostSim::Platform::ReadState(), {"TesselNicImpl::GetDhcpServer"});
    RefreshIfStale();
    return dhcpServer_;
}

bool TesselNicImpl::GetDhcpBound() {
    CheckFault(*HostSim::Platform::ReadState(), {"TesselNicImpl::GetDhcpBound"});
    RefreshIfStale();
    return dhcpBound_;
}

void TesselNicImpl::SetDhcpBound(bool bound) {
    UpdateState([&](json& state) {
        CheckFault(state, {"TesselNicImpl::SetDhcpBound"});
        Object(Interface(state, name_), "ipv4")["dhcpBound"] = bound;
    });
    stale_ = true;
}

// A renewal is counted and recorded; on a DHCP interface it takes the segment's lease afresh.
void TesselNicImpl::RenewDhcp() {
    UpdateState([&](json& state) {
        CheckFault(state, {"TesselNicImpl::RenewDhcp"});
        json& nic = Interface(state, name_);
        json& ipv4 = Object(nic, "ipv4");
        ipv4["renewals"] = ipv4.value("renewals", 0) + 1;
        if (Text(ipv4, "mode") == "dhcp")
            TakeLease(state, nic);
        HostSim::Platform::RecordCall(state, "TesselNicImpl::RenewDhcp", name_);
    });
    stale_ = true;
}

void TesselNicImpl::RenewDhcp6() {
    UpdateState([&](json& state) {
        CheckFault(state, {"TesselNicImpl::RenewDhcp6"});
        json& ipv6 = Object(Interface(state, name_), "ipv6");
        ipv6["renewals"] = ipv6.value("renewals", 0) + 1;
        HostSim::Platform::RecordCall(state, "TesselNicImpl::RenewDhcp6", name_);
    });
    stale_ = true;
}

// ---- PnicImpl

PnicImpl::PnicImpl(std::string name) : name_(std::move(name)) {}

std::string PnicImpl::GetName() const {
    return name_;
}

KN::MacAddress PnicImpl::GetMacAddress() const {
    return mac_;
}

bool PnicImpl::GetLinkState() const {
    return link_;
}

void PnicImpl::Refresh() {
    const json nic = Require(*StateFor({"PnicImpl::Refresh"}), "pnics", name_, "Physical NIC");
    mac_ = KN::MacAddress(Text(nic, "mac"));
    link_ = nic.value("link", false);
}

KN::PciDevice* PnicImpl::GetPciDevice() const {
    const json nic = Require(*StateFor({"PnicImpl::GetPciDevice"}), "pnics", name_, "Physical NIC");
    auto label = nic.find("pciLabel");
    if (label == nic.end() || !label->is_string())
        return nullptr;
    return new SimPciDevice(name_);
}

// ---- NetworkInfoImpl

void NetworkInfoImpl::UpdateManagementInterface() {
    StateFor({"NetworkInfoImpl::UpdateManagementInterface"});
}

KN::NetworkInterface* NetworkInfoImpl::GetManagementInterface() const {
    const auto document = StateFor({"NetworkInfoImpl::GetManagementInterface"});
    const json& state = *document;
    const json network = state.value("network", json::object());
    const std::string name = Text(network, "managementInterface");
    if (name.empty() || Named(network.value("interfaces", json::array()), name) == nullptr)
        return nullptr;
    return new TesselNicImpl(name);
}

std::vector<std::unique_ptr<KN::Pnic>> NetworkInfoImpl::GetPnics(int) const {
    const auto document = StateFor({"NetworkInfoImpl::GetPnics"});
    const json& state = *document;
    std::vector<std::unique_ptr<KN::Pnic>> pnics;
    for (const json& nic : state.value("pnics", json::array())) {
        auto pnic = std::make_unique<PnicImpl>(Text(nic, "name"));
        pnic->Refresh();
        pnic->SetStale(false);
        pnics.push_back(std::move(pnic));
    }
    return pnics;
}

std::vector<std::unique_ptr<KN::PortGroup>> NetworkInfoImpl::GetAllPortGroups(int) const {
    const auto document = StateFor({"NetworkInfoImpl::GetAllPortGroups"});
    const json& state = *document;
    std::vector<std::unique_ptr<KN::PortGroup>> groups;
    for (const json& group : state.value("portGroups", json::array()))
        groups.push_back(std::make_unique<SimPortGroup>(Text(group, "name")));
    return groups;
}

bool NetworkInfoImpl::IsTesselIpv6Enabled() const {
    return StateFor({"NetworkInfoImpl::IsTesselIpv6Enabled"})
        ->value("network", json::object())
        .value("ipv6Enabled", false);
}

void NetworkInfoImpl::SetTesselIpv6Enabled(bool enabled) {
    UpdateState([&](json& state) {
        CheckFault(state, {"NetworkInfoImpl::SetTesselIpv6Enabled"});
        Object(state, "network")["ipv6Enabled"] = enabled;
    });
}

void NetworkInfoImpl::DisableNetDumper() {
    UpdateState([&](json& state) {
        CheckFault(state, {"NetworkInfoImpl::DisableNetDumper"});
        Object(Object(state, "network"), "netDump")["enabled"] = false;
    });
}

void NetworkInfoImpl::ClearNetworkConfig() {
    UpdateState([&](json& state) {
        CheckFault(state, {"NetworkInfoImpl::ClearNetworkConfig"});
        json& network = Object(state, "network");
        network["managementInterface"] = "";
        network["interfaces"] = json::array();
        network["gateway"] = "";
        network["ipv6Gateway"] = "";
        network["dns"] = {
            {"servers", json::array()}, {"searchDomains", json::array()}, {"dhcp", false}};
        state["switches"] = json::array();
        state["portGroups"] = json::array();
        state["fabrics"] = json::array();
    });
}

// Defaults: one standard switch on the first NIC, its management port group, and a DHCP interface.
void NetworkInfoImpl::AutoConfigNetwork() {
    UpdateState([&](json& state) {
        CheckFault(state, {"NetworkInfoImpl::AutoConfigNetwork"});
        const json pnics = state.value("pnics", json::array());
        if (!pnics.is_array() || pnics.empty())
            throw KeelsonException("No physical NIC to configure the network on");
        const std::string uplink = Text(pnics[0], "name");
        json teaming = NewTeaming();
        teaming["uplinkOrder"] = {uplink};
        teaming["maxActiveUplinks"] = 1;
        Array(state, "switches")
            .push_back({{"name", "switch0"},
                        {"uplinks", {uplink}},
                        {"portGroups", {"Management Network"}},
                        {"numPorts", KN::Portset::DEF_NUM_PORTS},
                        {"usedPorts", 2},
                        {"configuredPorts", KN::Portset::DEF_NUM_PORTS},
                        {"mtu", 1500},
                        {"teaming", teaming}});
        Array(state, "portGroups")
            .push_back({{"name", "Management Network"},
                        {"switch", "switch0"},
                        {"vlan", 0},
                        {"activeClients", 1},
                        {"teaming", teaming}});
        json& network = Object(state, "network");
        Array(network, "interfaces")
            .push_back(
                {{"name", "tnic0"},
                 {"mac", Text(pnics[0], "mac")},
                 {"enabled", true},
                 {"mtu", 1500},
                 {"connection", {{"type", "portgroup"}, {"portGroup", "Management Network"}}},
                 {"ipv4",
                  {{"mode", "dhcp"},
                   {"address", "0.0.0.0"},
                   {"netmask", "0.0.0.0"},
                   {"configuredAddress", "0.0.0.0"},
                   {"configuredNetmask", "0.0.0.0"},
                   {"dhcpServer", "0.0.0.0"},
                   {"dhcpBound", false}}},
                 {"ipv6", {{"dhcp", false}, {"autoconf", true}, {"addresses", json::array()}}}});
        network["managementInterface"] = "tnic0";
        Object(network, "dns")["dhcp"] = true;
        // A DHCP server on the wire answers the new interface at once.
        const json server = network.value("dhcpOnLink", json());
        if (server.is_object() && !Text(server, "server").empty()) {
            json& ipv4 = network["interfaces"].back()["ipv4"];
            ipv4["address"] = Text(server, "address");
            ipv4["netmask"] = Text(server, "netmask");
            ipv4["dhcpServer"] = Text(server, "server");
            ipv4["dhcpBound"] = true;
            network["gateway"] = Text(server, "gateway");
        }
    });
}

// ---- TesselNicInfoImpl, VirtualSwitchInfoImpl

std::vector<std::unique_ptr<KN::NetworkInterface>> TesselNicInfoImpl::GetTesselNics(int) const {
    const auto document = StateFor({"TesselNicInfoImpl::GetTesselNics"});
    const json& state = *document;
    std::vector<std::unique_ptr<KN::NetworkInterface>> nics;
    for (const json& nic :
         state.value("network", json::object()).value("interfaces", json::array()))
        nics.push_back(std::make_unique<TesselNicImpl>(Text(nic, "name")));
    return nics;
}

std::vector<std::unique_ptr<KN::VirtualSwitch>>
VirtualSwitchInfoImpl::GetVirtualSwitches(int) const {
    const auto document = StateFor({"VirtualSwitchInfoImpl::GetVirtualSwitches"});
    const json& state = *document;
    std::vector<std::unique_ptr<KN::VirtualSwitch>> switches;
    for (const json& sw : state.value("switches", json::array()))
        switches.push_back(std::make_unique<SimVirtualSwitch>(Text(sw, "name")));
    return switches;
}

std::vector<std::unique_ptr<KN::FabricSwitch>> VirtualSwitchInfoImpl::GetFabricSwitches() const {
    const auto document = StateFor({"VirtualSwitchInfoImpl::GetFabricSwitches"});
    const json& state = *document;
    std::vector<std::unique_ptr<KN::FabricSwitch>> fabrics;
    for (const json& fabric : state.value("fabrics", json::array()))
        fabrics.push_back(std::make_unique<SimFabric>(Text(fabric, "name")));
    return fabrics;
}

KN::VirtualSwitch* VirtualSwitchInfoImpl::AddVirtualSwitch(const std::string& name,
                                                           uint32_t numPorts) {
    UpdateState([&](json& state) {
        CheckFault(state, {"VirtualSwitchInfoImpl::AddVirtualSwitch"});
        if (name.empty())
            throw KeelsonException("Invalid virtual switch name");
        if (Named(Array(state, "switches"), name) != nullptr ||
            Named(Array(state, "fabrics"), name) != nullptr)
            throw KeelsonException("A virtual switch named " + name + " already exists");
        Array(state, "switches")
            .push_back({{"name", name},
                        {"uplinks", json::array()},
                        {"portGroups", json::array()},
                        {"numPorts", numPorts},
                        {"usedPorts", 0},
                        {"configuredPorts", numPorts},
                        {"mtu", 1500},
                        {"teaming", NewTeaming()}});
    });
    return new SimVirtualSwitch(name);
}

bool PortsetImpl::IsValidVirtualSwitch(const std::string& name) {
    const auto document = StateFor({"PortsetImpl::IsValidVirtualSwitch"});
    const json& state = *document;
    return Find(state, "switches", name) != nullptr || Find(state, "fabrics", name) != nullptr;
}

bool PortGroupImpl::IsValidPortGroup(const std::string& name) {
    const auto document = StateFor({"PortGroupImpl::IsValidPortGroup"});
    const json& state = *document;
    return Find(state, "portGroups", name) != nullptr;
}

KN::FabricPort* FabricPortImpl::CreateFabricPort(const KN::FabricPortParam& param,
                                                 const std::string& portId) {
    std::string fabricName;
    UpdateState([&](json& state) {
        CheckFault(state, {"FabricPortImpl::CreateFabricPort"});
        if (portId.empty())
            throw KeelsonException("Invalid fabric port id");
        json* fabric = nullptr;
        for (json& entry : Array(state, "fabrics"))
            if (Text(entry, "id") == param.fabricId)
                fabric = &entry;
        if (fabric == nullptr)
            throw KeelsonException("Fabric " + param.fabricId + " not found");
        if (FindPort(*fabric, portId) != nullptr)
            throw KeelsonException("Fabric port " + portId + " already exists");
        Array(*fabric, "ports")
            .push_back({{"id", portId},
                        {"name", portId},
                        {"portGroup", ""},
                        {"vlan", 0},
                        {"hostLocal", param.portKind == 1},
                        {"blocked", false},
                        {"properties", json::object()}});
        fabricName = Text(*fabric, "name");
    });
    return new SimFabricPort(fabricName, portId);
}

} // namespace TesselCtl::Network
