// Host control library: system information (welcome message, alerts, keyboard layouts).
#pragma once
#include <string>
#include <vector>

#include "keelson/Lib.hpp"

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
};

} // namespace TesselCtl::System
