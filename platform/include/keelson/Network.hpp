// Host control library: kernel interfaces, physical NICs, standard switches, port groups, fabrics
// (distributed switches) and their ports.
//
// Ownership: every pointer a getter returns belongs to the caller; lists are vectors of owning
// pointers. Any operation may throw Keelson::Lib::KeelsonException.
#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "keelson/Address.hpp"
#include "keelson/Lib.hpp"

namespace Keelson::Network {

class Portset;
class VirtualSwitch;
class FabricSwitch;
class FabricPort;
class Pnic;

// Kinds of connectee behind a connection point.
enum ConnecteeType : int {
    CONNECTEE_NONE = 0,
    CONNECTEE_PORTGROUP = 1,   // a PortGroup on a standard switch
    CONNECTEE_FABRIC_PORT = 2, // a FabricPort
    CONNECTEE_OPAQUE = 3,
};

// Health checks of a teaming policy; travels unchanged through the operations of this system.
struct LinkCriteriaSelectionPolicy {
    bool checkBeacon = false;
    std::string checkSpeed = "minimum";
    int32_t speed = 10;
    bool checkDuplex = false;
    bool fullDuplex = false;
    bool checkErrorPercent = false;
    int32_t percentage = 0;
};

// Teaming of a port group or standard switch, edited as a copy and written back whole.
class NicTeamingPolicy : public virtual Lib::KeelsonObject {
public:
    // Bit 4 (16): teaming follows the uplink order.
    static constexpr uint32_t FLAG_USE_UPLINK_ORDER = 16;

    uint32_t GetFlags() const { return flags_; }
    void SetFlags(uint32_t flags) { flags_ = flags; }
    // First is first choice.
    const std::vector<std::string>& GetUplinkOrder() const { return uplinkOrder_; }
    void SetUplinkOrder(const std::vector<std::string>& order) { uplinkOrder_ = order; }
    int32_t GetMaxActiveUplinks() const { return maxActiveUplinks_; }
    void SetMaxActiveUplinks(int32_t count) { maxActiveUplinks_ = count; }
    const std::string& GetPolicy() const { return policy_; }
    void SetPolicy(const std::string& policy) { policy_ = policy; }
    const LinkCriteriaSelectionPolicy& GetLinkCriteriaSelectionPolicy() const {
        return linkCriteria_;
    }
    void SetLinkCriteriaSelectionPolicy(const LinkCriteriaSelectionPolicy& criteria) {
        linkCriteria_ = criteria;
    }

private:
    uint32_t flags_ = 0;
    std::vector<std::string> uplinkOrder_;
    int32_t maxActiveUplinks_ = 0;
    std::string policy_;
    LinkCriteriaSelectionPolicy linkCriteria_;
};

// Where a kernel interface is connected. Type 1 points are PortGroup objects, type 2 FabricPort
// objects; types 0 and 3 are plain connection points.
class ConnectionPoint : public virtual Lib::KeelsonObject {
public:
    virtual int GetConnecteeType() const = 0;
    // Name of the switch (standard or fabric) behind the point; empty when there is none.
    virtual std::string GetPortsetName() const = 0;
    // Port group name of a type 1 point; a fabric port gives its fabric port group key.
    virtual std::string GetPortGroupName() const = 0;
    // The switch behind the point, owned by the caller; null when there is none.
    virtual Portset* GetPortset() const = 0;
};

// A virtual switch of either kind.
class Portset : public virtual Lib::KeelsonObject {
public:
    // Port count the library gives a new standard switch.
    static constexpr uint32_t DEF_NUM_PORTS = 128;

    virtual std::string GetName() const = 0;
    virtual std::vector<std::string> GetUplinks() const = 0;
};

class PortGroup : public virtual ConnectionPoint {
public:
    virtual std::string GetName() const = 0;
    // Its standard switch, owned by the caller.
    virtual VirtualSwitch* GetVirtualSwitch() const = 0;
    virtual uint16_t GetVlanId() const = 0;
    virtual void SetVlanId(uint16_t vlanId) = 0;
    virtual uint32_t GetActiveClients() const = 0;
    virtual NicTeamingPolicy GetTeamingPolicy() const = 0;
    virtual void SetTeamingPolicy(const NicTeamingPolicy& policy) = 0;
};

// A standard switch.
class VirtualSwitch : public virtual Portset {
public:
    // Names of its port groups, in the switch's own order.
    virtual std::vector<std::string> GetPortGroups() const = 0;
    virtual uint32_t GetNumPorts() const = 0;
    virtual uint32_t GetUsedPorts() const = 0;
    virtual uint32_t GetConfiguredPorts() const = 0;
    // Adds a port group without VLAN; the new group belongs to the caller.
    virtual PortGroup* AddPortGroup(const std::string& name) = 0;
    // `teaming` true also appends the uplink to the switch's teaming order.
    virtual void AddUplink(const std::string& uplink, bool teaming) = 0;
    // Throws when the switch does not hold the uplink; `teaming` true also drops it from the order.
    virtual void RemoveUplink(const std::string& uplink, bool teaming) = 0;
    virtual NicTeamingPolicy GetTeamingPolicy() const = 0;
    virtual void SetTeamingPolicy(const NicTeamingPolicy& policy) = 0;
};

// Description of a port on a fabric: of a new port, or of the uplink port of a NIC.
struct FabricPortParam {
    std::string fabricId;
    std::string portId;
    int32_t portKind = 1; // 1: a host-local port
};

struct FabricVlanRange {
    uint16_t start = 0;
    uint16_t end = 0;
};

struct FabricPortVlanPolicy {
    uint16_t vlanType = 0; // 0: a single VLAN id
    uint16_t vlanId = 0;
    std::vector<FabricVlanRange> ranges;
};

// Byte layout as the library keeps it: word at 0, bytes at 4 to 18, active list at 24,
// standby list at 48.
struct FabricPortTeamPolicy {
    uint32_t policy = 0;                     // 0
    uint8_t reversePolicy = 0;               // 4
    uint8_t notifySwitches = 0;              // 5
    uint8_t rollingOrder = 0;                // 6
    uint8_t linkBeacon = 0;                  // 7
    uint8_t linkSpeed = 0;                   // 8
    uint8_t linkDuplex = 0;                  // 9
    uint8_t linkErrors = 0;                  // 10
    uint8_t reserved11 = 0;                  // 11
    uint8_t reserved12 = 0;                  // 12
    uint8_t reserved13 = 0;                  // 13
    uint8_t reserved14 = 0;                  // 14
    uint8_t policyInherited = 0;             // 15
    uint8_t reserved16 = 0;                  // 16
    uint8_t uplinksInherited = 0;            // 17
    uint8_t failureInherited = 0;            // 18
    std::vector<std::string> activeUplinks;  // 24
    std::vector<std::string> standbyUplinks; // 48
};

struct FabricPortSecurityPolicy {
    uint8_t allowPromiscuous = 0;
    uint8_t macChanges = 0;
    uint8_t forgedTransmits = 0;
};

struct FabricPortShapingPolicy {
    bool enabled = false;
    uint64_t averageBandwidth = 0;
    uint64_t peakBandwidth = 0;
    uint64_t burstSize = 0;
};

struct FabricPortOverlayParam {
    std::string name;
    std::vector<uint8_t> data;
};

struct FABRICResPoolCfg {
    std::string key;
    std::string name;
    int64_t limit = -1;
    int32_t shares = 0;
};

// A distributed switch.
class FabricSwitch : public virtual Portset {
public:
    virtual std::string GetFabricId() const = 0;
    // Uplink ports by NIC name.
    virtual std::map<std::string, FabricPortParam> GetUplinkPorts() const = 0;
    // The port with that id, owned by the caller; null when the fabric has none.
    virtual FabricPort* GetFabricPort(const std::string& portId) const = 0;
    // Throws when the fabric does not hold the uplink.
    virtual void RemoveUplink(const std::string& uplink, bool teaming) = 0;
    // Whether the fabric is of this host maker's own kind (the only kind its ports can be
    // repaired).
    virtual bool IsZephoraFabric() const = 0;
};

class FabricPort : public virtual ConnectionPoint {
public:
    // Its fabric, owned by the caller.
    virtual FabricSwitch* GetFabric() const = 0;
    virtual std::string GetFabricId() const = 0;
    virtual std::string GetFabricPortId() const = 0;
    virtual std::string GetName() const = 0;

    virtual FabricPortVlanPolicy GetVlanPolicy() const = 0;
    virtual void SetVlanPolicy(const FabricPortVlanPolicy& policy) = 0;
    virtual bool GetBlocked() const = 0;
    virtual void SetBlocked(bool blocked) = 0;
    virtual bool GetTxUplink() const = 0;
    virtual void SetTxUplink(bool txUplink) = 0;
    virtual FabricPortTeamPolicy GetTeamingPolicy() const = 0;
    virtual void SetTeamingPolicy(const FabricPortTeamPolicy& policy) = 0;
    virtual bool GetIpfixEnabled() const = 0;
    virtual void SetIpfixEnabled(bool enabled) = 0;
    virtual FabricPortSecurityPolicy GetSecurityPolicy() const = 0;
    virtual void SetSecurityPolicy(const FabricPortSecurityPolicy& policy) = 0;
    // `input` true: traffic into the port; false: out of it.
    virtual FabricPortShapingPolicy GetShapingPolicy(bool input) const = 0;
    virtual void SetShapingPolicy(bool input, const FabricPortShapingPolicy& policy) = 0;
    virtual std::string GetPortPersistencePath() const = 0;
    virtual void SetPortPersistencePath(const std::string& path) = 0;
    virtual std::map<std::string, std::string> GetVendorData(int kind) const = 0;
    virtual void SetVendorData(int kind, const std::map<std::string, std::string>& data) = 0;
    virtual std::map<std::string, std::vector<uint8_t>> GetVendorBinaryData(int kind) const = 0;
    virtual void SetVendorData(int kind,
                               const std::map<std::string, std::vector<uint8_t>>& data) = 0;
    virtual std::vector<FabricPortOverlayParam> GetOverlayParams() const = 0;
    virtual void SetOverlayParams(const std::vector<FabricPortOverlayParam>& params) = 0;
    virtual std::vector<FABRICResPoolCfg> GetResPoolsCfg() const = 0;
    virtual void SetResPoolsCfg(const std::vector<FABRICResPoolCfg>& pools) = 0;
    virtual std::string GetResPoolAssoc() const = 0;
    virtual void SetResPoolAssoc(const std::string& pool) = 0;
    // Removes the port from its fabric.
    virtual void Destroy() = 0;
};

// The PCI function behind a physical NIC.
class PciDevice : public virtual Lib::KeelsonObject {
public:
    // The device's name as the firmware gives it, white space and all.
    virtual std::string GetName() const = 0;
};

// A physical NIC. It caches what it reports: the caller refreshes it when IsStale() says so and
// then clears the mark; a NIC built by name starts stale.
class Pnic : public virtual Lib::KeelsonObject {
public:
    virtual std::string GetName() const = 0;
    virtual MacAddress GetMacAddress() const = 0;
    // true: link up ("Connected").
    virtual bool GetLinkState() const = 0;
    // Its PCI device, owned by the caller; null when it has none.
    virtual PciDevice* GetPciDevice() const = 0;
    virtual bool IsStale() const = 0;
    virtual void SetStale(bool stale) = 0;
    virtual void Refresh() = 0;
};

// A kernel network interface.
class NetworkInterface : public virtual Lib::KeelsonObject {
public:
    // Where it is connected, owned by the caller; null when it is not connected.
    virtual ConnectionPoint* GetConnectionPoint() const = 0;
    virtual std::string GetInterfaceName() const = 0;
    // The object's name for logs and events; for an interface its interface name.
    virtual std::string GetName() const = 0;
    virtual MacAddress GetMacAddress() const = 0;
    virtual void SetMacAddress(const MacAddress& mac) = 0;
    virtual void Enable() = 0;
    virtual void Disable() = 0;
    virtual bool IsEnabled() const = 0;
    // Moves the interface to a port group or fabric port.
    virtual void ConnectTo(const ConnectionPoint& point, bool persistOnly) = 0;
    // Copies: the addresses in force, and the configured modes and addresses.
    virtual IpConfig GetIpConfig() = 0;
    virtual IpConfig GetConfiguredIpConfig() = 0;
    // Writes the whole configuration.
    virtual void SetIpConfig(const IpConfig& config) = 0;
    virtual void Refresh() = 0;
};

// A kernel interface of the host's own TCP/IP stack.
class TesselNic : public virtual NetworkInterface {
public:
    // The DHCP server that answered; 0.0.0.0 when none did.
    virtual Ipv4Address GetDhcpServer() = 0;
    virtual bool GetDhcpBound() = 0;
    virtual void SetDhcpBound(bool bound) = 0;
    virtual void RenewDhcp() = 0;
    virtual void RenewDhcp6() = 0;
};

} // namespace Keelson::Network

namespace TesselCtl::Network {

// A kernel interface of the host's stack. Cached getters (GetIpConfig, GetConfiguredIpConfig,
// GetDhcpServer, GetDhcpBound, GetInterfaceName) refresh first when the object is stale and then
// clear the mark; every change marks it stale.
class TesselNicImpl : public virtual Keelson::Network::TesselNic {
public:
    explicit TesselNicImpl(std::string name);

    Keelson::Network::ConnectionPoint* GetConnectionPoint() const override;
    std::string GetInterfaceName() const override;
    std::string GetName() const override;
    Keelson::Network::MacAddress GetMacAddress() const override;
    void SetMacAddress(const Keelson::Network::MacAddress& mac) override;
    void Enable() override;
    void Disable() override;
    bool IsEnabled() const override;
    void ConnectTo(const Keelson::Network::ConnectionPoint& point, bool persistOnly) override;
    Keelson::Network::IpConfig GetIpConfig() override;
    Keelson::Network::IpConfig GetConfiguredIpConfig() override;
    void SetIpConfig(const Keelson::Network::IpConfig& config) override;
    void Refresh() override;

    Keelson::Network::Ipv4Address GetDhcpServer() override;
    bool GetDhcpBound() override;
    void SetDhcpBound(bool bound) override;
    void RenewDhcp() override;
    void RenewDhcp6() override;

    // Takes the MAC address of the NIC.
    void SetMacAddressFromPnic(Keelson::Network::Pnic* pnic);

    bool IsStale() const { return stale_; }
    void SetStale(bool stale) { stale_ = stale; }

private:
    void RefreshIfStale();

    std::string name_;
    bool stale_ = true;
    Keelson::Network::IpConfig ipConfig_;
    Keelson::Network::IpConfig configuredIpConfig_;
    Keelson::Network::Ipv4Address dhcpServer_;
    bool dhcpBound_ = false;
};

// A physical NIC opened by its device name ("hwport0"); stale until refreshed.
class PnicImpl : public virtual Keelson::Network::Pnic {
public:
    explicit PnicImpl(std::string name);

    std::string GetName() const override;
    Keelson::Network::MacAddress GetMacAddress() const override;
    bool GetLinkState() const override;
    Keelson::Network::PciDevice* GetPciDevice() const override;
    bool IsStale() const override { return stale_; }
    void SetStale(bool stale) override { stale_ = stale; }
    // Reads the NIC afresh; throws when the host has no NIC of that name.
    void Refresh() override;

private:
    std::string name_;
    bool stale_ = true;
    Keelson::Network::MacAddress mac_;
    bool link_ = false;
};

class NetworkInfoImpl : public virtual Keelson::Lib::KeelsonObject {
public:
    // Lets the host settle which interface is the management interface.
    void UpdateManagementInterface();
    // The management interface, owned by the caller; null when the host has none.
    Keelson::Network::NetworkInterface* GetManagementInterface() const;
    // Physical NICs; what the selector number selects is the library's (0 and 1: all).
    std::vector<std::unique_ptr<Keelson::Network::Pnic>> GetPnics(int selector) const;
    // Port groups of all standard switches.
    std::vector<std::unique_ptr<Keelson::Network::PortGroup>> GetAllPortGroups(int selector) const;
    bool IsTesselIpv6Enabled() const;
    // Takes effect after the next restart of the host.
    void SetTesselIpv6Enabled(bool enabled);
    void DisableNetDumper();
    // Reverts the whole network configuration.
    void ClearNetworkConfig();
    // Configures the network with defaults.
    void AutoConfigNetwork();
};

class TesselNicInfoImpl : public virtual Keelson::Lib::KeelsonObject {
public:
    // Kernel interfaces of the host's stack.
    std::vector<std::unique_ptr<Keelson::Network::NetworkInterface>>
    GetTesselNics(int selector) const;
};

class VirtualSwitchInfoImpl : public virtual Keelson::Lib::KeelsonObject {
public:
    // Standard switches, in the host's order.
    std::vector<std::unique_ptr<Keelson::Network::VirtualSwitch>>
    GetVirtualSwitches(int selector) const;
    std::vector<std::unique_ptr<Keelson::Network::FabricSwitch>> GetFabricSwitches() const;
    // Creates a standard switch; the new switch belongs to the caller.
    Keelson::Network::VirtualSwitch* AddVirtualSwitch(const std::string& name, uint32_t numPorts);
};

class PortsetImpl {
public:
    // Whether a switch of either kind has that name.
    static bool IsValidVirtualSwitch(const std::string& name);
};

class PortGroupImpl {
public:
    // Whether a port group of that name exists.
    static bool IsValidPortGroup(const std::string& name);
};

class FabricPortImpl {
public:
    // Creates a port on the fabric of param.fabricId; the new port belongs to the caller.
    static Keelson::Network::FabricPort*
    CreateFabricPort(const Keelson::Network::FabricPortParam& param, const std::string& portId);
};

} // namespace TesselCtl::Network
