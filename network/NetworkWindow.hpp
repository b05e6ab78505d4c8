// The management network menu: the pending configuration read from the host when the screen
// opens, its six editing dialogs, the right pane for each entry, and on the way out the question
// whether to write it all back.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "keelson/Network.hpp"
#include "network/ApplyWalk.hpp"
#include "network/PendingConfiguration.hpp"
#include "text/MenuWindow.hpp"

namespace Lanyx {

class NetworkWindow : public MenuWindow, private ApplyWalkScreen {
public:
    explicit NetworkWindow(Frame* owner);
    ~NetworkWindow() override;

    // Reads the host, then runs the menu. False when there is no management interface or its
    // switch cannot be read.
    bool Execute() override;
    // Writes the pending configuration to the host.
    bool ApplyChanges();
    // Right caption, detail text and footers of the selected entry.
    void ShowDetails();

    const PendingConfiguration& Pending() const { return pending; }

protected:
    void ShowSelectedEntry() override { ShowDetails(); }
    void RunEntry(uint32_t id) override;
    bool ConfirmLeave() override;

private:
    // Reads the pending configuration; false when the screen closes again at once.
    bool Open();

    std::string AdaptersText();
    std::string VlanText() const;
    std::string Ipv4Text() const;
    std::string Ipv6Text() const;
    std::string DnsText() const;
    std::string SuffixesText() const;
    // The label an adapter line shows: its PCI device name, else its MAC address.
    std::string AdapterLabel(const std::string& name) const;
    // The value or "Not set".
    std::string OrNotSet(const std::string& text) const;

    void ShowFailure(const std::string& message) override;
    void AddressWritten() override;
    void RebootHost() override;

    std::unique_ptr<Keelson::Network::NetworkInterface> managementInterface;
    PendingConfiguration pending;
};

} // namespace Lanyx
