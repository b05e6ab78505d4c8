#include <gtest/gtest.h>

#include "TempRoot.hpp"
#include "keelson/Dns.hpp"
#include "keelson/Hardware.hpp"
#include "keelson/System.hpp"

using HostSimTest::TempRoot;
using Keelson::Lib::KeelsonException;

namespace {

nlohmann::json FactsState() {
    return {{"host", {{"hostname", "lab01"}, {"domain", ""}}},
            {"hardware",
             {{"vendor", " Northwind "}, {"model", "NX 2840"}, {"serialNumber", "S1"},
              {"cpu", {{"packages", 2}, {"model", "Core  X"}}},
              {"memory", {{"totalPages", 4194304}, {"pageSize", 4096}}}}},
            {"keyboard", {{"layout", "US Default"}, {"layouts", {"German", "US Default"}}}},
            {"welcomeMessage", "Hello {hostname}"},
            {"faults", {{"lib", nlohmann::json::object()}}}};
}

} // namespace

TEST(SystemInfo, FactsComeFromTheStateAsStored) {
    TempRoot root;
    root.Store().Write(FactsState());
    TesselCtl::Network::DnsConfigImpl dns("defaultTcpipStack");
    EXPECT_EQ(dns.GetHostname(), "lab01");
    EXPECT_EQ(dns.GetDomain(), "");
    TesselCtl::Hardware::HardwareInfoImpl hardware;
    EXPECT_EQ(hardware.GetVendorName(), " Northwind ");
    EXPECT_EQ(hardware.GetSerialNumber(), "S1");
    EXPECT_EQ(TesselCtl::Hardware::CpuInfoImpl().GetNumCpuPackages(), 2);
    EXPECT_EQ(TesselCtl::Hardware::CpuInfoImpl().GetModelName(), "Core  X");
    TesselCtl::Hardware::MemoryInfoImpl memory;
    EXPECT_EQ(memory.GetTotalPages() * memory.GetPageSize(), 16ull << 30);
    TesselCtl::System::SystemInfoImpl system;
    EXPECT_EQ(system.GetWelcomeMessage(), "Hello {hostname}");
    // A change on the host shows at the next call: nothing is cached.
    root.Store().Update([](nlohmann::json& s) { s["host"]["hostname"] = "lab02"; });
    EXPECT_EQ(dns.GetHostname(), "lab02");
}

TEST(SystemInfo, KeyboardLayoutsAndAlertsAreStored) {
    TempRoot root;
    root.Store().Write(FactsState());
    TesselCtl::System::SystemInfoImpl system;
    EXPECT_EQ(system.GetKeyboardLayouts(), (std::vector<std::string>{"German", "US Default"}));
    system.LoadKeyboardMappings("German");
    system.SetKeyboardLayout("German");
    EXPECT_EQ(system.GetKeyboardLayout(), "German");
    EXPECT_THROW(system.SetKeyboardLayout("Klingon"), KeelsonException);
    EXPECT_EQ(system.GetKeyboardLayout(), "German");
    system.SetSystemAlert("No compatible network adapter found.");
    EXPECT_EQ(root.Store().Read()["systemAlerts"], nlohmann::json::array({"No compatible network adapter found."}));
}

TEST(SystemInfo, FaultsAndDamagedStateThrow) {
    TempRoot root;
    root.Store().Write(FactsState());
    root.Store().Update([](nlohmann::json& s) { s["faults"]["lib"]["SystemInfoImpl::GetWelcomeMessage"] = "gone"; });
    TesselCtl::System::SystemInfoImpl system;
    try {
        system.GetWelcomeMessage();
        ADD_FAILURE() << "no exception";
    } catch (const KeelsonException& e) {
        EXPECT_STREQ(e.what(), "gone");
    }
    EXPECT_EQ(system.GetKeyboardLayout(), "US Default");
    root.WriteRaw("/var/lib/hostsim/state.json", "");
    EXPECT_THROW(TesselCtl::Network::DnsConfigImpl("defaultTcpipStack").GetHostname(), KeelsonException);
}
