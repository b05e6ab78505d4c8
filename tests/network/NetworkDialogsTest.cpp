// The rules of the management network's forms: what each field refuses, which field a refusal
// selects and which rule it names, what the radios and the tick do, and what comes back.
#include <gtest/gtest.h>

#include <optional>

#include "NetworkWorld.hpp"
#include "network/AdaptersDialog.hpp"
#include "network/DNSConfigurationDialog.hpp"
#include "network/IPv6ConfigurationDialog.hpp"
#include "network/SuffixesDialog.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {
namespace {

using namespace Testing;
using Keelson::Network::IpConfig;
using Keelson::Network::Ipv4Address;
using Keelson::Network::Ipv6Address;

// A refused form stays open: Enter closes the message, Esc then leaves without a change.
constexpr const char* kRefusedThenLeave = "\n\n\x1b";

struct Refusal {
    uint32_t ordinal; // selected afterwards
    uint32_t title;
    uint32_t message;
};

using IPv6Form = NetworkForm;

TEST_F(IPv6Form, StaticAddressesAndGatewayValidated) {
    struct Row {
        std::vector<std::string> fields; // three addresses and the gateway
        std::optional<Refusal> refusal;
    };
    const Refusal noPrefix{4, Ids::InvalidAddressTitle, Ids::InvalidIpv6Address};
    const std::vector<Row> rows = {
        // Which texts are addresses is the library's; here, one of each the form refuses.
        {{"2001:db8::5/64", "", "", ""}, {}},
        {{"2001:db8::5/0", "2001:db8::6/128", "", "2001:db8::1"}, {}},
        {{"", "", "", "fe80::1%tnic0"}, {}}, // a link-local gateway is no matter of this form
        {{"2001:db8::5", "", "", ""}, noPrefix},
        {{"2001:db8::5/129", "", "", ""}, noPrefix},
        {{"", "2001:db8::5/", "", ""},
         Refusal{5, Ids::InvalidAddressTitle, Ids::InvalidIpv6Address}},
        {{"2001:db8::5/64", "", "fe80::1/64", ""},
         Refusal{6, Ids::InvalidScopeTitle, Ids::LinkLocalStatic}},
        {{"2001:db8::5/64", "", "", "2001:db8::1/64"},
         Refusal{7, Ids::InvalidGatewayTitle, Ids::InvalidIpv6Gateway}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.fields));
        Recorded().asked.clear();
        IPv6ConfigurationDialog form(nullptr, true, IpConfig(), IpConfig());
        for (size_t n = 0; n < 3; ++n)
            form.GetAddressItem(n)->SetValue(row.fields[n]);
        form.GetGatewayItem()->SetValue(row.fields[3]);
        Type(row.refusal ? kRefusedThenLeave : "\n");
        EXPECT_EQ(form.RunModal(), !row.refusal);
        EXPECT_TRUE(InputDrained());
        if (row.refusal) {
            EXPECT_EQ(form.GetItemList()->GetSelectedOrdinal(), row.refusal->ordinal);
            EXPECT_TRUE(Recorded().Asked(row.refusal->title) &&
                        Recorded().Asked(row.refusal->message));
            continue;
        }
        const auto filled = std::count_if(row.fields.begin(), row.fields.begin() + 3,
                                          [](const std::string& f) { return !f.empty(); });
        ASSERT_EQ(form.GetConfig().GetIpv6Network().size(), static_cast<size_t>(filled));
        for (const auto& network : form.GetConfig().GetIpv6Network())
            EXPECT_TRUE(network.GetIpv6AddressType() == 0 && network.GetIpv6Scope() == 3);
        EXPECT_EQ(form.GetConfig().GetIpv6Gateway().GetScopedStringAddress(),
                  row.fields[3].empty() ? "::"
                                        : Ipv6Address(row.fields[3]).GetScopedStringAddress());
    }
}

TEST_F(IPv6Form, RadiosTickAndFieldsFollowTheMode) {
    struct Row {
        const char* name;
        bool enabled, dhcp, ra; // at opening
        std::string keys;       // before Enter
        bool accepted;
        bool resultEnabled, resultDhcp, resultRa, edited;
    };
    const std::string down = kDown;
    const std::vector<Row> rows = {
        // Off at opening: Down cannot leave the radios, the tick and fields stay out of reach.
        {"off stays off", false, false, false, down + down + down + down + "1", true, false, false,
         false, false},
        {"off to dynamic", false, false, false, down + " ", true, true, false, true, false},
        {"dynamic tick toggles", true, false, true, down + down + " ", true, true, true, false,
         false},
        {"tick twice back", true, false, true, down + down + "  ", true, true, false, true, false},
        {"dynamic to static", true, true, false, down + down + down + " ", true, true, false, false,
         false},
        {"static to off keeps flags", true, true, false, " ", true, false, true, false, false},
        {"typed address counts", true, false, false, down + down + down + down + "\b", true, true,
         false, false, true},
        {"escape", true, false, false, down + " ", false, false, false, false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        IpConfig modes;
        modes.SetUseIpv6Dhcp(row.dhcp);
        modes.SetUseIpv6RouterAdvertised(row.ra);
        IPv6ConfigurationDialog form(nullptr, row.enabled, modes, IpConfig());
        Type(row.keys + (row.accepted ? "\n" : "\x1b"));
        EXPECT_EQ(form.RunModal(), row.accepted);
        EXPECT_TRUE(InputDrained());
        if (!row.accepted)
            continue;
        EXPECT_EQ(form.GetEnabled(), row.resultEnabled);
        EXPECT_EQ(form.GetConfig().GetUseIpv6Dhcp(), row.resultDhcp);
        EXPECT_EQ(form.GetConfig().GetUseIpv6RouterAdvertised(), row.resultRa);
        EXPECT_EQ(form.GetAddressEdited(), row.edited);
        const bool staticMode = row.resultEnabled && !row.resultDhcp && !row.resultRa;
        EXPECT_EQ(form.GetAddressItem(0)->IsEnabled(), staticMode);
        EXPECT_EQ(form.GetDhcpv6Item()->IsEnabled(), row.resultEnabled && !staticMode);
    }
}

TEST_F(IPv6Form, HostStaticAddressesFillTheFieldsAndDhcpv6KeepsTheGateway) {
    IpConfig addresses;
    const char* const texts[] = {"fe80::1/64", "2001:db8::1/64", "2001:db8::2/64", "2001:db8::3/64",
                                 "2001:db8::4/64"};
    for (const char* text : texts)
        addresses.AddIpv6Network(Keelson::Network::Ipv6Network(text));
    auto learned = Keelson::Network::Ipv6Network("2001:db8::99/64");
    learned.SetIpv6AddressType(7);
    addresses.AddIpv6Network(learned);
    addresses.SetIpv6Gateway(Ipv6Address("2001:db8::fe"));
    IpConfig modes;
    modes.SetUseIpv6Dhcp(true);
    IPv6ConfigurationDialog form(nullptr, true, modes, addresses);
    EXPECT_EQ(form.GetAddressItem(0)->GetValue(), "2001:db8::1/64");
    EXPECT_EQ(form.GetAddressItem(2)->GetValue(), "2001:db8::3/64");
    EXPECT_EQ(form.GetGatewayItem()->GetValue(), "2001:db8::fe");
    EXPECT_TRUE(form.GetGatewayItem()->IsEnabled());
    EXPECT_FALSE(form.GetAddressItem(0)->IsEnabled());
    // The link-local, the fourth static and the learned address stay in the result.
    EXPECT_EQ(form.GetConfig().GetIpv6Network().size(), 3u);
}

using DnsForm = NetworkForm;

TEST_F(DnsForm, ServerAddressesValidatedAndTyped) {
    struct Row {
        std::string primary, alternate;
        std::optional<uint32_t> refusedOrdinal;
        int primaryFamily, alternateFamily; // -1: none
    };
    const std::vector<Row> rows = {
        {"10.0.0.53", "2001:db8::53", {}, 0, 1},
        {"", "", {}, -1, -1},
        {"::ffff:10.0.0.1", "", {}, 1, -1}, // both kinds would take it: IPv6
        {"10.0.0.256", "", 2u, 0, 0},
        {"10.0.0.1", "1.2.3.", 3u, 0, 0},
        {"10.0.0.1", "1::2::3", 3u, 0, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.primary + " | " + row.alternate);
        Recorded().asked.clear();
        DNSConfigurationDialog form(nullptr, false, false, nullptr, nullptr, "lab");
        form.GetPrimaryItem()->SetValue(row.primary);
        form.GetAlternateItem()->SetValue(row.alternate);
        Type(row.refusedOrdinal ? kRefusedThenLeave : "\n");
        EXPECT_EQ(form.RunModal(), !row.refusedOrdinal);
        EXPECT_TRUE(InputDrained());
        if (row.refusedOrdinal) {
            EXPECT_EQ(form.GetItemList()->GetSelectedOrdinal(), *row.refusedOrdinal);
            EXPECT_TRUE(Recorded().Asked(Ids::InvalidDnsTitle) &&
                        Recorded().Asked(Ids::InvalidDnsServer));
            continue;
        }
        auto family = [](const Keelson::Network::IpAddress* a) {
            return a ? a->GetAddressFamily() : -1;
        };
        EXPECT_EQ(family(form.GetPrimary()), row.primaryFamily);
        EXPECT_EQ(family(form.GetAlternate()), row.alternateFamily);
    }
}

TEST_F(DnsForm, LabelsRadiosAndTheHostnameField) {
    const Ipv4Address v4("10.0.0.53");
    const Ipv6Address v6("2001:db8::53");
    {
        // A static host: the radios are out of reach and the primary field opens selected.
        DNSConfigurationDialog form(nullptr, false, false, &v4, &v6, "lab");
        EXPECT_EQ(form.GetAlternateItem()->GetLabel(), "#" + std::to_string(Ids::Ipv6Dns));
        // Typing keeps the label while 3 or more characters stand; fewer and it is gone for good.
        Type(std::string(kDown) + "\x1bOF" + std::string(12, '\b'));
        Type(std::string("1.2.3.4") + kDown + "host_a.b-c\n");
        EXPECT_TRUE(form.RunModal());
        EXPECT_EQ(form.GetAlternateItem()->GetLabel(), "#" + std::to_string(Ids::AlternateDns));
        EXPECT_EQ(form.GetHostname(), "hosta.b-c");
        EXPECT_EQ(form.GetAlternate()->GetStringAddress(), "1.2.3.4");
    }
    {
        // Automatic on a DHCP host: the dimmed fields are not read, whatever they hold.
        DNSConfigurationDialog form(nullptr, true, true, &v4, nullptr, "lab");
        EXPECT_FALSE(form.GetPrimaryItem()->IsEnabled());
        form.GetPrimaryItem()->SetValue("garbage");
        Type("\n");
        EXPECT_TRUE(form.RunModal());
        EXPECT_TRUE(form.GetUseDhcp());
        EXPECT_EQ(form.GetPrimary()->GetStringAddress(), "10.0.0.53");
    }
    {
        // Manual chosen: the fields light up and are read.
        DNSConfigurationDialog form(nullptr, true, true, &v4, nullptr, "lab");
        Type(std::string(kDown) + " " + kDown + "\b\n");
        EXPECT_TRUE(form.RunModal());
        EXPECT_FALSE(form.GetUseDhcp());
        EXPECT_EQ(form.GetPrimary(), nullptr);
        EXPECT_EQ(form.GetHostname(), "lab");
    }
}

TEST_F(NetworkForm, SuffixesTakeTheirCharactersAsTyped) {
    SuffixesDialog form(nullptr, "old.example");
    Type("a_b.example, c.test d;e,\n");
    EXPECT_TRUE(form.RunModal());
    EXPECT_EQ(form.GetValue(), "ab.example, c.test de,");
    SuffixesDialog left(nullptr, "old.example");
    Type("x\x1b");
    EXPECT_FALSE(left.RunModal());
}

using AdapterChoice = NetworkForm;

TEST_F(AdapterChoice, OrderOfChoiceAndTheWarningForOtherSwitches) {
    struct Row {
        const char* name;
        std::string keys;
        bool accepted;
        std::vector<std::string> chosen;
        bool warned;
    };
    const std::string down = kDown;
    const std::vector<Row> rows = {
        {"unchecked", " \n", true, {"hwport1"}, false},
        {"chosen again goes last", "  \n", true, {"hwport1", "hwport0"}, false},
        {"free NIC", down + down + " \n", true, {"hwport0", "hwport1", "hwport2"}, false},
        {"nothing chosen", " " + down + " \n", true, {}, false},
        {"held elsewhere, kept",
         down + down + down + " \n\n",
         true,
         {"hwport0", "hwport1", "hwport3"},
         true},
        {"held elsewhere, refused", down + down + down + " \n\x1b", false, {}, true},
        {"details leave the choice", "d\n\n", true, {"hwport0", "hwport1"}, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        networkHost->Reset([](nlohmann::json& state) {
            state["switches"].push_back({{"name", "switch1"},
                                         {"uplinks", {"hwport3"}},
                                         {"portGroups", nlohmann::json::array()},
                                         {"numPorts", 128},
                                         {"usedPorts", 0},
                                         {"configuredPorts", 128}});
        });
        Recorded().asked.clear();
        AdaptersDialog form(nullptr, {"hwport0", "hwport1"}, 2, "switch0");
        Type(row.keys);
        EXPECT_EQ(form.RunModal(), row.accepted);
        EXPECT_TRUE(InputDrained());
        EXPECT_EQ(Recorded().Asked(Ids::AdaptersWarningTitle), row.warned);
        if (row.accepted) {
            EXPECT_EQ(form.GetSelectedNames(), row.chosen);
        }
        ASSERT_EQ(form.GetRows().Count(), 4u);
        EXPECT_EQ(form.GetRows().Info(3).usedBy, "switch1");
    }
}

TEST_F(AdapterChoice, GatheringFailureClosesAtOnce) {
    networkHost->Reset([](nlohmann::json& state) {
        state["faults"]["lib"]["NetworkInfoImpl::GetPnics"] = "no NICs";
    });
    AdaptersDialog failed(nullptr, {"hwport0"}, 1, "switch0");
    EXPECT_FALSE(failed.RunModal());
}

// The list scrolls to the last of 256 NICs; number order (hwport10 after hwport9) and the holders
// found on every switch and the fabric, which the switch layer's tests check one by one.
TEST_F(AdapterChoice, LargeHostListsEveryNicInNumberOrderWithItsHolder) {
    const LanyxTest::HostRoot large("large");
    AdaptersDialog form(nullptr, {"hwport0", "hwport1"}, 2, "switch0");
    std::string keys;
    for (int n = 0; n < 255; ++n)
        keys += kDown;
    Type(keys + " \n\n");
    EXPECT_TRUE(form.RunModal());
    EXPECT_TRUE(InputDrained());
    EXPECT_TRUE(Recorded().Asked(Ids::AdaptersWarningTitle));
    EXPECT_EQ(form.GetSelectedNames(),
              (std::vector<std::string>{"hwport0", "hwport1", "hwport255"}));
    EXPECT_GT(form.GetItemList()->GetTopIndex(), 240);

    const AdapterRows& rows = form.GetRows();
    ASSERT_EQ(rows.Count(), 256u);
    for (size_t n = 0; n < rows.Count(); ++n)
        ASSERT_EQ(rows.Info(n).name, "hwport" + std::to_string(n));
    EXPECT_EQ(rows.Info(181).usedBy, "switch15");
    EXPECT_EQ(rows.Info(255).usedBy, "fab-storage");
}

} // namespace
} // namespace Lanyx
