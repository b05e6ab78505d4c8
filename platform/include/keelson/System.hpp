// Host control library: system information (welcome message, alerts, keyboard layouts,
// firewall rulesets).
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "keelson/Hardware.hpp"
#include "keelson/Lib.hpp"

namespace Keelson::System {

// One ruleset of the host's firewall, which opens the ports of one service.
class FirewallRuleset : public virtual Lib::KeelsonObject {
public:
    // Whether the ruleset is tied to its service: opened with it and closed with it.
    virtual bool FollowsService() const = 0;
    // Opens or closes the service's ports.
    virtual void Enable() = 0;
    virtual void Disable() = 0;
};

} // namespace Keelson::System

namespace TesselCtl::System {

class SystemInfoImpl : public virtual Keelson::Lib::KeelsonObject {
public:
    // The host-supplied welcome text; empty when the host has none.
    std::string GetWelcomeMessage() const;
    // Raises a system alert that the host shows to its administrators.
    void SetSystemAlert(const std::string& text);
    // The configured keyboard layout, and all layouts the host knows.
    std::string GetKeyboardLayout() const;
    std::vector<std::string> GetKeyboardLayouts() const;
    // Makes the layout work on this console; then SetKeyboardLayout stores it as configured.
    void LoadKeyboardMappings(const std::string& name);
    void SetKeyboardLayout(const std::string& name);
    // The firewall ruleset of that id ("sshServer"), owned by the caller.
    std::unique_ptr<Keelson::System::FirewallRuleset>
    GetFirewallRulesetById(const std::string& id) const;
};

} // namespace TesselCtl::System

namespace Keelson::System {

// A loaded kernel module.
struct ModuleInfo {
    std::string name;
    std::string version;
};

class SystemInfo : public virtual Lib::KeelsonObject {
public:
    // The module of that name; throws KeelsonException when no such module is loaded.
    virtual ModuleInfo GetModule(const std::string& name) const = 0;
};

} // namespace Keelson::System

namespace Keelson {

// The host as a whole; each getter gives a new object that belongs to the caller.
class Host : public virtual Lib::KeelsonObject {
public:
    virtual std::unique_ptr<Hardware::HardwareInfo> GetHardwareInfo() const = 0;
    virtual std::unique_ptr<Hardware::StorageInfo> GetStorageInfo() const = 0;
    virtual std::unique_ptr<System::SystemInfo> GetSystemInfo() const = 0;
};

class HostFactory {
public:
    // The one host object; it is not the caller's.
    static Host* GetHost();
};

} // namespace Keelson
