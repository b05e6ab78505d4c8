// The management text of the welcome screen from given facts.
#include <gtest/gtest.h>

#include "text/en_US_Factory.hpp"
#include "welcome/ManagementText.hpp"

namespace Lanyx {
namespace {

class ManagementText : public ::testing::Test {
protected:
    std::string Compose() { return ComposeManagementText(facts, strings); }

    en_US_Factory strings;
    ManagementFacts facts;
};

TEST_F(ManagementText, StaticHostWithName)
{
    facts.hostname = "host01";
    facts.ipv4 = "192.168.10.21";
    EXPECT_EQ(Compose(), "To manage this host, go to:\nhttps://host01/ \nhttps://192.168.10.21/ (STATIC)");
}

TEST_F(ManagementText, EmptyOrLocalHostNameGivesNoNameLine)
{
    facts.ipv4 = "10.0.0.5";
    for (const char* name : {"", "localhost"}) {
        facts.hostname = name;
        EXPECT_EQ(Compose(), "To manage this host, go to:\nhttps://10.0.0.5/ (STATIC)") << name;
    }
    facts.hostname = "Localhost";
    EXPECT_NE(Compose().find("https://Localhost/ "), std::string::npos) << "the test is case-sensitive";
}

TEST_F(ManagementText, DhcpModes)
{
    facts.useDhcp = true;
    facts.dhcpServerKnown = true;
    facts.ipv4 = "192.168.10.57";
    EXPECT_EQ(Compose(), "To manage this host, go to:\nhttps://192.168.10.57/ (DHCP)");
    facts.dhcpServerKnown = false;
    facts.ipv4 = "0.0.0.0";
    EXPECT_EQ(Compose(), "To manage this host, go to:\nhttps://0.0.0.0/ (Waiting for DHCP...)");
}

TEST_F(ManagementText, NoIpv4AddressShowsOnlyADhcpMode)
{
    facts.useNone = true;
    facts.hostname = "host01";
    EXPECT_EQ(Compose(), "To manage this host, go to:\nhttps://host01/ ");
    facts.useDhcp = true;
    EXPECT_EQ(Compose(), "To manage this host, go to:\nhttps://host01/ (Waiting for DHCP...)");
}

TEST_F(ManagementText, Ipv6LinesFollowWhenEnabled)
{
    facts.ipv6 = {{"fe80::1", 1}, {"2001:db8::21", Ipv6Static}};
    EXPECT_EQ(Compose().find("https://["), std::string::npos) << "IPv6 switched off";
    facts.ipv6Enabled = true;
    EXPECT_EQ(Compose(), "To manage this host, go to:\nhttps://0.0.0.0/ (STATIC)\n"
                         "https://[fe80::1]/ \n"
                         "https://[2001:db8::21]/ (STATIC)\n");
}

TEST_F(ManagementText, Ipv6TypesAreNamed)
{
    const std::vector<Ipv6Entry> entries = {{"a::1", Ipv6Dhcp}, {"b::1", Ipv6Autoconf}, {"c::1", 2}, {"d::1", 0}};
    EXPECT_EQ(ComposeIpv6Lines(entries, strings), "https://[c::1]/ \n"
                                                  "https://[a::1]/ (DHCP)\n"
                                                  "https://[d::1]/ (STATIC)\n"
                                                  "https://[b::1]/ (AUTOCONF)\n");
}

TEST_F(ManagementText, Ipv6LinesSortByLengthKeepingTheHostsOrderOnTies)
{
    const std::vector<Ipv6Entry> entries = {
        {"2001:db8::aaaa", 0}, {"2001:db8::bbbb", 0}, {"b::2", 0}, {"a::1", 0}};
    EXPECT_EQ(ComposeIpv6Lines(entries, strings), "https://[b::2]/ (STATIC)\n"
                                                  "https://[a::1]/ (STATIC)\n"
                                                  "https://[2001:db8::aaaa]/ (STATIC)\n"
                                                  "https://[2001:db8::bbbb]/ (STATIC)\n");
}

TEST_F(ManagementText, FiveAddressesAreShownWholeSixAreCut)
{
    std::vector<Ipv6Entry> entries;
    for (char c = 'a'; c < 'f'; ++c)
        entries.push_back({std::string(1, c) + "::1", 0});
    std::string five = ComposeIpv6Lines(entries, strings);
    EXPECT_EQ(std::count(five.begin(), five.end(), '\n'), 5);
    EXPECT_EQ(five.find("..."), std::string::npos);

    // The sixth is a short one, but only the first four are taken before sorting.
    entries.push_back({"z::", 0});
    const std::string six = ComposeIpv6Lines(entries, strings);
    EXPECT_EQ(six, "https://[a::1]/ (STATIC)\nhttps://[b::1]/ (STATIC)\nhttps://[c::1]/ (STATIC)\n"
                   "https://[d::1]/ (STATIC)\n...");
    EXPECT_EQ(ComposeIpv6Lines({}, strings), "");
}

} // namespace
} // namespace Lanyx
