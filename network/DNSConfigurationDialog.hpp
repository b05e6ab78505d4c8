// Name servers and host name: from DHCP, or two addresses (IPv4 or IPv6) and a host name by
// hand. On a host without DHCP the radios are out of reach and only the manual fields remain.
#pragma once
#include <memory>
#include <string>

#include "keelson/Address.hpp"
#include "text/FormDialog.hpp"
#include "text/RadioGroup.hpp"

namespace Lanyx {

class DNSConfigurationDialog : public FormDialog {
public:
    // `primary` and `alternate` are the pending servers (null: none); the form keeps copies.
    DNSConfigurationDialog(Frame* owner, bool useDhcp, bool dhcpAvailable,
                           const Keelson::Network::IpAddress* primary,
                           const Keelson::Network::IpAddress* alternate,
                           const std::string& hostname);

    // After a true run. With the manual choice the servers are new objects built from the
    // fields, for the caller to take over; with the automatic one they are copies of those given.
    bool GetUseDhcp() const { return useDhcp; }
    std::unique_ptr<Keelson::Network::IpAddress> TakePrimary() { return std::move(primary); }
    std::unique_ptr<Keelson::Network::IpAddress> TakeAlternate() { return std::move(alternate); }
    const Keelson::Network::IpAddress* GetPrimary() const { return primary.get(); }
    const Keelson::Network::IpAddress* GetAlternate() const { return alternate.get(); }
    const std::string& GetHostname() const { return hostname; }

    InputItem* GetPrimaryItem() const { return primaryItem; }
    InputItem* GetAlternateItem() const { return alternateItem; }
    InputItem* GetHostnameItem() const { return hostnameItem; }

protected:
    void Open() override;
    KeyResult HandleKey(int key) override;
    bool Accept() override;
    void FieldEdited(InputItem& field) override;

private:
    bool useDhcp;
    std::unique_ptr<Keelson::Network::IpAddress> primary;
    std::unique_ptr<Keelson::Network::IpAddress> alternate;
    std::string hostname;
    RadioItem* autoItem = nullptr;
    RadioItem* manualItem = nullptr;
    InputItem* primaryItem = nullptr;
    InputItem* alternateItem = nullptr;
    InputItem* hostnameItem = nullptr;
    std::unique_ptr<RadioGroup> choice;
};

// A server typed by hand: null for an empty text, IPv6 when the text is one, else IPv4.
// Throws KeelsonException for a text that is neither.
std::unique_ptr<Keelson::Network::IpAddress> ParseServerAddress(const std::string& text);
// Whether a text is an address of either kind.
bool IsServerAddress(const std::string& text);

} // namespace Lanyx
