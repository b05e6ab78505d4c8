// The resting screen of the console: who the host is and where it is managed, or the host's
// own welcome text. F2 and F12 lead through the login; every session ends back here.
#pragma once
#include "core/Frame.hpp"
#include "keelson/Dns.hpp"
#include "keelson/System.hpp"
#include "text/TextArea.hpp"
#include "welcome/SessionHooks.hpp"

namespace Lanyx {

// The alert about a host without network adapters has been raised by this process.
extern bool adapterAlertSent;

class WelcomeWindow : public Frame {
public:
    // Without hooks F2 and F12 lead nowhere; the program passes its own (core/SessionWiring.hpp).
    explicit WelcomeWindow(SessionHooks hooks = {});
    ~WelcomeWindow() override;

    // Never returns in ordinary running.
    bool Execute() override;
    // Decides the layout from the host's welcome message and fills it anew.
    void Reload() override;

    // The texts of the layout now shown; null where that layout is not built.
    TextArea* GetManagementText() const { return managementText; }
    TextArea* GetWarningText() const { return warningText; }
    TextArea* GetVersionText() const { return versionText; }
    TextArea* GetVendorText() const { return vendorText; }
    TextArea* GetHardwareText() const { return hardwareText; }
    TextArea* GetFooterText() const { return footerText; }
    TextArea* GetCustomText() const { return customText; }

    // One round of the key loop after `key`: a repaint, or a login with what follows it.
    void HandleKey(int key);

private:
    void ShowCustomLayout();
    void ShowDefaultLayout();
    void BuildDefaultLayout();
    void FillDefaultLayout();
    void DropDefaultLayout();
    void DropCustomLayout();
    void RunLoginRound(int key);

    Window* topPane = nullptr;
    Window* bottomPane = nullptr;
    TextArea* versionText = nullptr;
    TextArea* vendorText = nullptr;
    TextArea* hardwareText = nullptr;
    TextArea* managementText = nullptr;
    TextArea* warningText = nullptr;
    TextArea* footerText = nullptr;
    TextArea* customText = nullptr;
    TesselCtl::Network::DnsConfigImpl dnsConfig{"defaultTcpipStack"};
    TesselCtl::System::SystemInfoImpl systemInfo;
    SessionHooks hooks;
};

} // namespace Lanyx
