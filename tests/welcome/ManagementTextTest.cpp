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
        {"host01", "192.168.10.21", false, false, false,
         "https://host01/ \nhttps://192.168.10.21/ (STATIC)"},
        {"", "10.0.0.5", false, false, false, "https://10.0.0.5/ (STATIC)"},
        {"localhost", "10.0.0.5", false, false, false, "https://10.0.0.5/ (STATIC)"},
        {"Localhost", "10.0.0.5", false, false, false,
         "https://Localhost/ \nhttps://10.0.0.5/ (STATIC)"},
        {"", "192.168.10.57", true, true, false, "https://192.168.10.57/ (DHCP)"},
        {"", "0.0.0.0", true, false, false, "https://0.0.0.0/ (Waiting for DHCP...)"},
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

TEST(ManagementText, Ipv6LinesNamedSortedByLengthAndCut) {
    en_US_Factory strings;
    ManagementFacts facts;
    facts.ipv6 = {{"fe80::1", 1}, {"2001:db8::21", Ipv6Static}};
    EXPECT_EQ(ComposeManagementText(facts, strings).find("https://["), std::string::npos)
        << "IPv6 off";
    facts.ipv6Enabled = true;
    EXPECT_EQ(ComposeManagementText(facts, strings),
              kHead + std::string("https://0.0.0.0/ (STATIC)\nhttps://[fe80::1]/ "
                                  "\nhttps://[2001:db8::21]/ (STATIC)\n"));

    // Shortest line first, the host's order kept on ties.
    EXPECT_EQ(ComposeIpv6Lines({{"2001:db8::aaaa", Ipv6Dhcp},
                                {"b::2", Ipv6Autoconf},
                                {"d::4", 0},
                                {"a::1", 2},
                                {"c::3", 0}},
                               strings),
              "https://[a::1]/ \nhttps://[d::4]/ (STATIC)\nhttps://[c::3]/ (STATIC)\n"
              "https://[b::2]/ (AUTOCONF)\nhttps://[2001:db8::aaaa]/ (DHCP)\n");
    // Five are shown whole; of six, only the first four are taken before sorting.
    std::vector<Ipv6Entry> entries;
    for (char c = 'a'; c < 'f'; ++c)
        entries.push_back({std::string(1, c) + "::1", 0});
    EXPECT_EQ(ComposeIpv6Lines(entries, strings).find("..."), std::string::npos);
    entries.push_back({"z::", 0});
    EXPECT_EQ(ComposeIpv6Lines(entries, strings),
              "https://[a::1]/ (STATIC)\nhttps://[b::1]/ (STATIC)\n"
              "https://[c::1]/ (STATIC)\nhttps://[d::1]/ (STATIC)\n...");
}

} // namespace
} // namespace Lanyx
