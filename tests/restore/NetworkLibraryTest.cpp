// The simulated network library where the console relies on it: address texts, modes, caching,
// faults.
#include <gtest/gtest.h>

#include "HostRoot.hpp"
#include "keelson/Network.hpp"

namespace Lanyx {
namespace {

using nlohmann::json;
namespace KN = Keelson::Network;
namespace TN = TesselCtl::Network;

// Which texts are valid addresses the forms' tests show through the forms.
TEST(NetworkValues, Ipv6TextsNormalizedAndDhcpAndNoneModesExcludeEachOther) {
    EXPECT_EQ(KN::Ipv6Network("2001:DB8:0::21/64").GetStringAddress(), "2001:db8::21/64");
    EXPECT_EQ(KN::Ipv6Address("fe80::1%tnic0").GetScopedStringAddress(), "fe80::1%tnic0");
    KN::IpConfig config;
    config.SetIpv4UseNone();
    config.SetUseDhcp(true);
    EXPECT_FALSE(config.GetIpv4UseNone());
    config.SetUseDhcp(false, true);
    EXPECT_TRUE(config.GetIpv4UseNone());
    EXPECT_FALSE(config.GetUseDhcp());
    config.SetUseDhcp(false);
    EXPECT_FALSE(config.GetIpv4UseNone());
}

class NetworkLibrary : public LanyxTest::HostTest {};

TEST_F(NetworkLibrary, InterfaceCachesUntilStaleAndFaultsByOperationName) {
    Create("dhcp");
    TN::TesselNicImpl nic("tnic0");
    EXPECT_EQ(nic.GetIpConfig().GetIpv4Address().GetStringAddress(), "192.168.10.57");
    EXPECT_TRUE(nic.GetConfiguredIpConfig().GetUseDhcp());
    Host().Edit([](json& state) {
        state["network"]["interfaces"][0]["ipv4"]["address"] = "192.168.10.99";
    });
    EXPECT_EQ(nic.GetIpConfig().GetIpv4Address().GetStringAddress(), "192.168.10.57") << "cached";
    nic.SetStale(true);
    EXPECT_EQ(nic.GetIpConfig().GetIpv4Address().GetStringAddress(), "192.168.10.99");

    Host().LibFault("TesselNicImpl::Disable", "link stuck");
    try {
        nic.Disable();
        ADD_FAILURE() << "no exception";
    } catch (const Keelson::Lib::KeelsonException& e) {
        EXPECT_STREQ(e.what(), "link stuck");
    }
    EXPECT_EQ(Host().State()["network"]["interfaces"][0]["enabled"], true) << "nothing written";
}

} // namespace
} // namespace Lanyx
