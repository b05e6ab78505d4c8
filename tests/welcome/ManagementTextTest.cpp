// The management text of the welcome screen from given facts.
#include <gtest/gtest.h>

#include "text/en_US_Factory.hpp"
#include "welcome/ManagementText.hpp"

namespace Lanyx {
namespace {

constexpr const char* kHead = "To manage this host, go to:\n";

TEST(ManagementText, NameLineAddressAndMode) {
    en_US_Factory strings;
    const struct {
        const char* hostname;
        const char* ipv4;
        bool dhcp, serverKnown, none;
        const char* expected;
    } cases[] = {
        // A named static host, a DHCP host with its lease and one still waiting are shown end to
        // end (the welcome, network and restore tests).
        {"", "10.0.0.5", false, false, false, "https://10.0.0.5/ (STATIC)"},
        {"localhost", "10.0.0.5", false, false, false, "https://10.0.0.5/ (STATIC)"},
        {"Localhost", "10.0.0.5", false, false, false,
         "https://Localhost/ \nhttps://10.0.0.5/ (STATIC)"},
        {"host01", "", false, false, true, "https://host01/ "},
        {"host01", "", true, false, true, "https://host01/ (Waiting for DHCP...)"},
    };
    for (const auto& c : cases) {
        ManagementFacts facts;
        facts.hostname = c.hostname;
        facts.ipv4 = c.ipv4;
        facts.useDhcp = c.dhcp;
        facts.dhcpServerKnown = c.serverKnown;
        facts.useNone = c.none;
        EXPECT_EQ(ComposeManagementText(facts, strings), kHead + std::string(c.expected))
            << c.hostname << c.ipv4;
    }
}

// Order and cut of the lines on screen are checked end to end; here, the rules behind them.
TEST(ManagementText, Ipv6LinesOnlyWhenEnabledTiesKeepTheHostsOrderAndOnlyFourOfSix) {
    en_US_Factory strings;
    ManagementFacts facts;
    facts.ipv6 = {{"fe80::1", 1}};
    EXPECT_EQ(ComposeManagementText(facts, strings).find("https://["), std::string::npos);
    facts.ipv6Enabled = true;
    EXPECT_NE(ComposeManagementText(facts, strings).find("https://[fe80::1]/ \n"),
              std::string::npos);

    EXPECT_EQ(ComposeIpv6Lines(
                  {{"2001:db8::aaaa", Ipv6Dhcp}, {"b::2", Ipv6Autoconf}, {"d::4", 0}, {"c::3", 0}},
                  strings),
              "https://[d::4]/ (STATIC)\nhttps://[c::3]/ (STATIC)\nhttps://[b::2]/ (AUTOCONF)\n"
              "https://[2001:db8::aaaa]/ (DHCP)\n");
    std::vector<Ipv6Entry> entries;
    for (const char* address : {"a::1", "b::1", "c::1", "d::1", "e::1", "z::"})
        entries.push_back({address, 0});
    EXPECT_EQ(ComposeIpv6Lines(entries, strings),
              "https://[a::1]/ (STATIC)\nhttps://[b::1]/ (STATIC)\n"
              "https://[c::1]/ (STATIC)\nhttps://[d::1]/ (STATIC)\n...");
}

} // namespace
} // namespace Lanyx
