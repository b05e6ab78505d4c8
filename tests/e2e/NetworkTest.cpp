// The management network menu end to end: edits through the forms, the question on the way out,
// the host afterwards, the welcome screen's address and the next visit. Which stage logs what is
// the apply walk's own test.
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "harness/Session.hpp"

using namespace LanyxE2E;
using LanyxTest::Record;
using nlohmann::json;

namespace {

class Network : public ::testing::Test {
protected:
    // Logged in, the network menu open on `entry`.
    void Open(const std::string& entry) {
        ASSERT_TRUE(s.Walk({"@login", "Configure Management Network", "=" + entry}));
    }
    std::string Detail() { return s.Detail(); }
    // Esc, "y" to the question, and back in the System Customization menu; then logged out.
    void ApplyAndLogOut() {
        s.Host().Mark();
        ASSERT_TRUE(s.Press({Keys::Escape}));
        ASSERT_TRUE(s.Screen().WaitForText("Apply changes and restart management network?"));
        ASSERT_TRUE(s.Press({"y"}));
        ASSERT_TRUE(s.Host().WaitForLine(Record::Syslog, "Network settings changed."));
        ASSERT_TRUE(s.Screen().WaitForText("Configure Password"));
        ASSERT_TRUE(s.Press({Keys::Escape}));
        ASSERT_TRUE(s.AwaitWelcome());
    }
    json Tnic() { return s.Host().State()["network"]["interfaces"][0]; }

    Session s{"default"};
};

TEST_F(Network, ToDhcpAndBackThenANewAddressAndVlan) {
    Open("IPv4 Configuration");
    EXPECT_NE(Detail().find("Manual"), std::string::npos);
    ASSERT_TRUE(s.Press({Keys::Enter, Keys::Down, " ", Keys::Enter}));
    EXPECT_NE(Detail().find("Automatic"), std::string::npos) << s.Screen().Describe();
    ApplyAndLogOut();
    EXPECT_EQ(Tnic()["ipv4"]["mode"], "dhcp");
    EXPECT_EQ(Tnic()["ipv4"]["dhcpServer"], "192.168.10.254");
    EXPECT_TRUE(s.Screen().WaitForText("https://192.168.10.57/ (DHCP)"));

    // Back to static: the fields hold the lease, which the static address keeps. The form opens
    // on its first radio whichever is set.
    Open("IPv4 Configuration");
    EXPECT_NE(Detail().find("IPv4 Address: 192.168.10.57"), std::string::npos);
    ASSERT_TRUE(s.Press({Keys::Enter, Keys::Down, Keys::Down, " ", Keys::Enter}));
    ApplyAndLogOut();
    EXPECT_EQ(Tnic()["ipv4"]["mode"], "static");
    EXPECT_EQ(Tnic()["ipv4"]["dhcpServer"], "0.0.0.0");
    EXPECT_TRUE(s.Screen().WaitForText("https://192.168.10.57/ (STATIC)"));

    // A new address and gateway, each typed over whole, and a VLAN in one visit.
    Open("IPv4 Configuration");
    ASSERT_TRUE(s.Press({Keys::Enter, Keys::Down, Keys::Down, Keys::Down}));
    ASSERT_TRUE(s.Type("10.20.30.40"));
    ASSERT_TRUE(s.Press({Keys::Down, Keys::Down}));
    ASSERT_TRUE(s.Type("10.20.30.1"));
    ASSERT_TRUE(s.Press({Keys::Enter}));
    ASSERT_TRUE(s.SelectEntry("VLAN (optional)"));
    EXPECT_EQ(Detail().substr(0, 7), "Not set");
    ASSERT_TRUE(s.Press({Keys::Enter}));
    ASSERT_TRUE(s.Type("42"));
    ASSERT_TRUE(s.Press({Keys::Enter}));
    EXPECT_EQ(Detail().substr(0, 2), "42");
    s.Host().Edit([](json& state) { state["libRecords"] = json::array(); });
    ApplyAndLogOut();
    const json state = s.Host().State();
    EXPECT_EQ(Tnic()["ipv4"]["address"], "10.20.30.40");
    EXPECT_EQ(Tnic()["ipv4"]["netmask"], "255.255.255.0");
    EXPECT_EQ(state["network"]["gateway"], "10.20.30.1");
    EXPECT_EQ(state["portGroups"][0]["vlan"], 42);
    EXPECT_EQ(state["libRecords"][0]["operation"], "TesselNicImpl::Disable");
    EXPECT_EQ(state["libRecords"][1]["operation"], "TesselNicImpl::Enable");
    EXPECT_EQ(Tnic()["enabled"], true);
    EXPECT_TRUE(s.Screen().WaitForText("https://10.20.30.40/ (STATIC)"));

    // The next visit shows it all; nothing edited, Esc asks nothing and writes nothing.
    Open("IPv4 Configuration");
    const std::string pane = Detail();
    EXPECT_NE(pane.find("IPv4 Address: 10.20.30.40"), std::string::npos) << pane;
    EXPECT_NE(pane.find("Default Gateway: 10.20.30.1"), std::string::npos) << pane;
    ASSERT_TRUE(s.SelectEntry("VLAN (optional)"));
    EXPECT_EQ(Detail().substr(0, 2), "42");
    s.Host().Mark();
    ASSERT_TRUE(s.Press({Keys::Escape}));
    EXPECT_TRUE(s.Screen().WaitForText("Configure Password"));
    EXPECT_TRUE(s.Host().Messages("user.info").empty());
}

} // namespace
