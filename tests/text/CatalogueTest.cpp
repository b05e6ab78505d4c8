#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "FakeSysinfo.hpp"
#include "text/StringTable.hpp"
#include "text/en_US_Factory.hpp"

namespace Lanyx {
namespace {

using Testing::Sysinfo;

void PutField(size_t offset, const char* text) {
    std::memcpy(Sysinfo().record + offset, text, std::strlen(text) + 1);
}

class CatalogueTest : public ::testing::Test {
protected:
    void SetUp() override {
        ResetStringFactoryForTest();
        Sysinfo() = {};
        PutField(0, "Lanyx Host");
        PutField(32, "8.0.3");
        PutField(96, "8.0.3");
        PutField(128, "24280767");
    }
    void TearDown() override { ResetStringFactoryForTest(); }
};

TEST_F(CatalogueTest, OneInstanceForTheOneLocale) {
    EXPECT_EQ(GetStringFactory("de_DE"), nullptr);
    StringFactory* factory = GetStringFactory("en_US");
    ASSERT_NE(factory, nullptr);
    EXPECT_EQ(GetStringFactory("en_US"), factory);
    EXPECT_EQ(GetStringFactory("de_DE"), factory);
}

TEST_F(CatalogueTest, CountAndEnds) {
    StringFactory* strings = GetStringFactory("en_US");
    EXPECT_STREQ(strings->GetString(0), "Customize System/View Logs");
    EXPECT_STREQ(strings->GetString(289),
                 "Please choose which Tessel NIC should be migrated to which portgroup/switch.");
    EXPECT_STREQ(strings->GetString(290), "");
    EXPECT_STREQ(strings->GetString(UINT32_MAX), "");
    EXPECT_STREQ(strings->GetString(3), "");
    for (uint32_t id = 0; id < kStringCount; ++id) {
        if (id != 2 && id != 3) {
            EXPECT_STRNE(strings->GetString(id), "") << "id " << id;
        }
    }
}

TEST_F(CatalogueTest, EntriesAreVerbatim) {
    StringFactory* strings = GetStringFactory("en_US");
    EXPECT_STREQ(strings->GetString(135), "IP address is ");
    EXPECT_STREQ(strings->GetString(143), "Enter an authorized login name and password for ");
    EXPECT_STREQ(strings->GetString(98), "VLAN ID (1-4094, or 4095 to access all VLANs):");
    EXPECT_STREQ(strings->GetString(154),
                 "Password has expired.\nYou will be prompted to set a new password and then "
                 "login again.");
    EXPECT_STREQ(strings->GetString(1), strings->GetString(168));
    EXPECT_STREQ(strings->GetString(45), strings->GetString(75));
    const std::string warning = strings->GetString(245);
    EXPECT_EQ(warning.rfind("{color:red}Warning! Restarting", 0), 0u);
    EXPECT_EQ(warning.substr(warning.size() - 8), "{/color}");
    // Double blank kept as written.
    EXPECT_NE(std::string(strings->GetString(266)).find("allowed.  Changes"), std::string::npos);
    EXPECT_NE(std::string(strings->GetString(24)).find("lease.\n\nRestarting"), std::string::npos);
}

TEST_F(CatalogueTest, VersionLineFromTheKernelNode) {
    StringFactory* strings = GetStringFactory("en_US");
    const char* line = strings->GetString(2);
    EXPECT_STREQ(line, "Lanyx Host 8.0.3 (Tessel 8.0.3 Build 24280767)");
    // Read once, then kept, at the same address.
    EXPECT_EQ(strings->GetString(2), line);
    EXPECT_EQ(Sysinfo().reads, 1);
}

TEST_F(CatalogueTest, VersionLineIsRetriedAfterAFailure) {
    StringFactory* strings = GetStringFactory("en_US");
    Sysinfo().fail = true;
    EXPECT_STREQ(strings->GetString(2), "");
    EXPECT_STREQ(strings->GetString(2), "");
    EXPECT_EQ(Sysinfo().reads, 2);
    Sysinfo().fail = false;
    EXPECT_STREQ(strings->GetString(2), "Lanyx Host 8.0.3 (Tessel 8.0.3 Build 24280767)");
    EXPECT_STREQ(strings->GetString(2), "Lanyx Host 8.0.3 (Tessel 8.0.3 Build 24280767)");
    EXPECT_EQ(Sysinfo().reads, 3);
}

TEST_F(CatalogueTest, UnterminatedFieldsStopAtTheNextField) {
    std::memset(Sysinfo().record, 'A', sizeof Sysinfo().record);
    const std::string line = GetStringFactory("en_US")->GetString(2);
    const std::string expected = std::string(32, 'A') + " " + std::string(64, 'A') + " (Tessel " +
                                 std::string(32, 'A') + " Build " + std::string(216, 'A') + ")";
    EXPECT_EQ(line, expected);
}

} // namespace
} // namespace Lanyx
