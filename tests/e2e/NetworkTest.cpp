// The management network menu end to end: an edit, the question on the way out, the host
// afterwards, the log lines of the apply in order, the welcome screen's address and the next visit.
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "harness/Session.hpp"

using namespace LanyxE2E;
using LanyxTest::Record;
using nlohmann::json;

namespace {

constexpr int kTop = 4, kDetailColumn = 42;

std::string Detail(const Console& console) {
    std::string text;
    for (int row = kTop; row < kTop + 18; ++row)
        text += console.Text(row, kDetailColumn, 36) + "\n";
    return text;
}

// `expected` stand among the system log's info lines in this order.
::testing::AssertionResult InOrder(const std::vector<std::string>& lines,
                                   const std::vector<std::string>& expected) {
    auto at = lines.begin();
    for (const std::string& line : expected) {
        at = std::find(at, lines.end(), line);
        if (at == lines.end()) {
            auto failure = ::testing::AssertionFailure()
                           << "missing or out of order: \"" << line << "\" in";
            for (const std::string& l : lines)
                failure << "\n  " << l;
            return failure;
        }
        ++at;
    }
    return ::testing::AssertionSuccess();
}

class Network : public ::testing::Test {
protected:
    // Logged in, the network menu open on `entry`.
    void Open(const std::string& entry) {
        if (!s)
            s = std::make_unique<Session>(profile);
        ASSERT_TRUE(s->LogIn());
        ASSERT_TRUE(s->OpenEntry("Configure Management Network"));
        ASSERT_TRUE(s->Screen().WaitForText("Configure Management Network"));
        ASSERT_TRUE(s->SelectEntry(entry));
    }
    void Keys(std::initializer_list<std::string_view> keys) {
        for (std::string_view key : keys)
            ASSERT_TRUE(s->Key(key));
        ASSERT_TRUE(s->Settle());
    }
    // Esc, "y" to the question, and back in the System Customization menu; then logged out.
    void ApplyAndLogOut(const char* question = "Apply changes and restart management network?") {
        s->Host().Mark();
        Keys({Keys::Escape});
        ASSERT_TRUE(s->Screen().WaitForText(question));
        Keys({"y"});
        ASSERT_TRUE(s->Host().WaitForLine(Record::Syslog, "Network settings changed."));
        ASSERT_TRUE(s->Screen().WaitForText("Configure Password"));
        info = s->Host().Messages("user.info");
        Keys({Keys::Escape});
        ASSERT_TRUE(s->AwaitWelcome());
    }
    json Tnic() { return s->Host().State()["network"]["interfaces"][0]; }

    std::string profile = "default";
    std::unique_ptr<Session> s;
    std::vector<std::string> info;
};

TEST_F(Network, StaticToDhcpAndBack) {
    Open("IPv4 Configuration");
    EXPECT_NE(Detail(s->Screen()).find("Manual"), std::string::npos);
    Keys({Keys::Enter, Keys::Down, " ", Keys::Enter});
    EXPECT_NE(Detail(s->Screen()).find("Automatic"), std::string::npos) << s->Screen().Describe();
    ApplyAndLogOut();
    EXPECT_TRUE(
        InOrder(info, {"Setting adapters to hwport0 hwport1", "Switching to DHCP on tnic0",
                       "Setting ipv6 configuration", "Setting hostname to lanyx-lab01",
                       "Setting suffixes to lab.example.test", "Network settings changed."}));
    EXPECT_EQ(Tnic()["ipv4"]["mode"], "dhcp");
    EXPECT_EQ(Tnic()["ipv4"]["dhcpServer"], "192.168.10.254");
    EXPECT_TRUE(s->Screen().WaitForText("https://192.168.10.57/ (DHCP)"));

    // Back to static: the fields hold the lease, which the static address keeps.
    Open("IPv4 Configuration");
    EXPECT_NE(Detail(s->Screen()).find("IPv4 Address: 192.168.10.57"), std::string::npos);
    // The form opens on its first radio whichever is set.
    Keys({Keys::Enter, Keys::Down, Keys::Down, " ", Keys::Enter});
    ApplyAndLogOut();
    EXPECT_TRUE(
        InOrder(info, {"Setting ipv4 configuration to 192.168.10.57 255.255.255.0 on tnic0",
                       "Setting default gateway to 192.168.10.1", "Network settings changed."}));
    EXPECT_EQ(Tnic()["ipv4"]["mode"], "static");
    EXPECT_EQ(Tnic()["ipv4"]["dhcpServer"], "0.0.0.0");
    EXPECT_TRUE(s->Screen().WaitForText("https://192.168.10.57/ (STATIC)"));
}

TEST_F(Network, NewAddressAndGatewayShownOnTheNextVisit) {
    Open("IPv4 Configuration");
    // The static radio is set already; the address, then the gateway, each typed over whole.
    Keys({Keys::Enter, Keys::Down, Keys::Down, Keys::Down});
    ASSERT_TRUE(s->Type("10.20.30.40"));
    Keys({Keys::Down, Keys::Down});
    ASSERT_TRUE(s->Type("10.20.30.1"));
    Keys({Keys::Enter});
    ApplyAndLogOut();
    EXPECT_TRUE(InOrder(
        info, {"Setting ipv4 configuration to 10.20.30.40 255.255.255.0 on tnic0",
               "Setting ipv6 configuration", "Setting default gateway to 10.20.30.1",
               "Setting nameservers to 192.168.10.2 192.168.10.3", "Network settings changed."}));
    EXPECT_EQ(Tnic()["ipv4"]["address"], "10.20.30.40");
    EXPECT_EQ(s->Host().State()["network"]["gateway"], "10.20.30.1");
    EXPECT_TRUE(s->Screen().WaitForText("https://10.20.30.40/ (STATIC)"));

    Open("IPv4 Configuration");
    const std::string pane = Detail(s->Screen());
    EXPECT_NE(pane.find("IPv4 Address: 10.20.30.40"), std::string::npos) << pane;
    EXPECT_NE(pane.find("Default Gateway: 10.20.30.1"), std::string::npos) << pane;
    // Nothing edited: Esc asks nothing and writes nothing.
    s->Host().Mark();
    Keys({Keys::Escape});
    EXPECT_TRUE(s->Screen().WaitForText("Configure Password"));
    EXPECT_TRUE(s->Host().Messages("user.info").empty());
}

TEST_F(Network, VlanChangeRestartsTheInterface) {
    Open("VLAN (optional)");
    EXPECT_EQ(Detail(s->Screen()).substr(0, 7), "Not set");
    Keys({Keys::Enter});
    ASSERT_TRUE(s->Type("42"));
    Keys({Keys::Enter});
    EXPECT_EQ(Detail(s->Screen()).substr(0, 2), "42");
    ApplyAndLogOut();
    EXPECT_TRUE(
        InOrder(info, {"Setting adapters to hwport0 hwport1", "Setting ipv6 configuration",
                       "Changed vlan, restarting management interface",
                       "Setting suffixes to lab.example.test", "Network settings changed."}));
    const json state = s->Host().State();
    EXPECT_EQ(state["portGroups"][0]["vlan"], 42);
    EXPECT_EQ(state["libRecords"][0]["operation"], "TesselNicImpl::Disable");
    EXPECT_EQ(state["libRecords"][1]["operation"], "TesselNicImpl::Enable");
    EXPECT_EQ(Tnic()["enabled"], true);
    EXPECT_TRUE(s->Screen().WaitForText("https://192.168.10.21/ (STATIC)"));

    Open("VLAN (optional)");
    EXPECT_EQ(Detail(s->Screen()).substr(0, 2), "42");
}

} // namespace
