// The readers of host facts, alone and as substitution tags, against a simulated host.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "WelcomeTestRoot.hpp"
#include "keelson/Lib.hpp"
#include "text/Markup.hpp"
#include "welcome/HostFacts.hpp"

namespace Lanyx {
namespace {

using nlohmann::json;
using WelcomeTest::Matching;
using WelcomeTest::ResetState;
using WelcomeTest::syslogPath;

constexpr uint64_t MiB = uint64_t{1} << 20;
constexpr uint64_t GiB = MiB << 10;
constexpr uint64_t TiB = GiB << 10;
constexpr uint64_t PiB = TiB << 10;

// ---------------------------------------------------------------- pure helpers

TEST(CollapseWhitespace, NormalisesEveryKindOfWhiteSpace)
{
    EXPECT_EQ(CollapseWhitespace(""), "");
    EXPECT_EQ(CollapseWhitespace(" \t\n "), "");
    EXPECT_EQ(CollapseWhitespace("plain"), "plain");
    EXPECT_EQ(CollapseWhitespace("  Tessellate(R) Core  Gold\t6430 \n @ 2.10GHz "),
              "Tessellate(R) Core Gold 6430 @ 2.10GHz");
    EXPECT_EQ(CollapseWhitespace("a\r\n\v\fb"), "a b");
}

TEST(FormatVendorLine, ProductThatBeginsWithTheVendorIsNotDoubled)
{
    EXPECT_EQ(FormatVendorLine("Northwind  Systems ", "Northwind Systems  NX-2840 Rack Server"),
              "Northwind Systems NX-2840 Rack Server");
    EXPECT_EQ(FormatVendorLine(" Acme", "Acme"), "Acme");
}

TEST(FormatVendorLine, OtherProductsFollowTheVendor)
{
    EXPECT_EQ(FormatVendorLine(" Acme  Corp ", "  R-1   Server "), "Acme Corp R-1 Server");
    // Only the start of the product counts, and after normalising.
    EXPECT_EQ(FormatVendorLine("Acme", "Server by Acme"), "Acme Server by Acme");
    // The test is on the text, not on words.
    EXPECT_EQ(FormatVendorLine("Acme Corp", "Acme  Corporation"), "Acme Corporation");
    EXPECT_EQ(FormatVendorLine("Acme  Corp", "AcmeCorp R-1"), "Acme Corp AcmeCorp R-1");
}

TEST(MemoryTag, RoundsUpToAQuarterGibibyteAndCutsOneDecimal)
{
    EXPECT_EQ(FormatMemoryTag(16 * GiB), "16 GB");
    EXPECT_EQ(FormatMemoryTag(16 * GiB + GiB / 4), "16.2 GB");
    EXPECT_EQ(FormatMemoryTag(100 * MiB), "256 MB");
    EXPECT_EQ(FormatMemoryTag(16 * GiB - 5 * MiB), "16 GB");
    EXPECT_EQ(FormatMemoryTag(16 * GiB + 1), "16.2 GB");
    EXPECT_EQ(FormatMemoryTag(768 * MiB), "768 MB");
    EXPECT_EQ(FormatMemoryTag(1024 * MiB), "1 GB");
    EXPECT_EQ(FormatMemoryTag(2 * TiB), "2 TB");
    EXPECT_EQ(FormatMemoryTag(3 * PiB), "3 PB");
    EXPECT_EQ(FormatMemoryTag(4096 * PiB), "4096 PB") << "no unit beyond P";
    EXPECT_EQ(FormatMemoryTag(0), "0 MB");
}

TEST(MemoryLine, KeepsTheExactSizeWithOneCutDecimal)
{
    EXPECT_EQ(FormatMemoryLine(16 * GiB), "16 GiB Memory");
    EXPECT_EQ(FormatMemoryLine(16 * GiB - 100 * MiB), "15.9 GiB Memory");
    EXPECT_EQ(FormatMemoryLine(33488896ull * 4096), "127.7 GiB Memory");
    EXPECT_EQ(FormatMemoryLine(512 * MiB), "512 MiB Memory");
    EXPECT_EQ(FormatMemoryLine(MiB / 2), "0.5 MiB Memory") << "below 1 MiB the unit stays MiB";
    EXPECT_EQ(FormatMemoryLine(2 * TiB + TiB / 2), "2.5 TiB Memory");
    EXPECT_EQ(FormatMemoryLine(5 * PiB), "5 PiB Memory");
}

// ---------------------------------------------------------------- readers on a simulated host

class HostFacts : public ::testing::Test {
protected:
    void SetUp() override { ResetState(); }

    // The tag as a text area of the given width would show it.
    static std::string Tag(const std::string& tag, int width = 200)
    {
        RegisterHostFactTags();
        return Format("{" + tag + "}", width, MakeTagSources());
    }
};

TEST_F(HostFacts, ProductAndVersionComeFromTheKernelNode)
{
    EXPECT_EQ(Tag("ostraproduct"), "Zephora Ostra");
    EXPECT_EQ(Tag("ostraversion"), "8.0.3 build-24280767");
    ResetState([](json& state) { state["product"]["build"] = 123; });
    EXPECT_EQ(Tag("ostraversion"), "8.0.3 build-00123");
}

TEST_F(HostFacts, HostNameJoinsNameAndDomain)
{
    EXPECT_EQ(Tag("hostname"), "lanyx-lab01.lab.example.test");
    ResetState([](json& state) { state["host"]["domain"] = ""; });
    EXPECT_EQ(Tag("hostname"), "lanyx-lab01.");
}

TEST_F(HostFacts, HardwareTags)
{
    EXPECT_EQ(Tag("serial-number"), "NWS7Q4K2B19");
    EXPECT_EQ(Tag("servicetag"), "7Q4K2B1");
    // 127.75 GiB is a whole number of quarters already.
    EXPECT_EQ(Tag("memory"), "127.7 GB");
    EXPECT_EQ(Tag("BIOSversion"), "2.14.1 (2.14) 03/11/2026");
    EXPECT_EQ(Tag("assettag"), "LAB-0042");
    EXPECT_EQ(Tag("BMCversion"), "4.40.10.00");
    EXPECT_EQ(Tag("PLSAversion"), "1.2.4.11-1vmw");
    for (const char* constant : {"supportstart", "supportperiod", "CPLDversion"})
        EXPECT_EQ(Tag(constant), "N/A") << constant;
}

TEST_F(HostFacts, MissingServiceTagIsNotAvailable)
{
    ResetState([](json& state) { state["hardware"].erase("serviceTag"); });
    EXPECT_EQ(GetServiceTag(), "N/A");
    ResetState([](json& state) { state["hardware"]["serviceTag"] = ""; });
    EXPECT_EQ(GetServiceTag(), "N/A");
}

TEST_F(HostFacts, StorageDriverVersionFallsBack)
{
    // No adapter of that name.
    ResetState([](json& state) { state["hardware"]["storageAdapters"].erase(0); });
    EXPECT_EQ(GetBiosField(1), "N/A");
    EXPECT_TRUE(Matching(syslogPath, "version string failed").empty());

    // The module cannot be read: logged with the adapter and the library's text.
    ResetState();
    WelcomeTest::SetLibFault("SystemInfo::GetModule", "module table unreadable");
    EXPECT_EQ(GetBiosField(1), "N/A");
    EXPECT_EQ(Matching(syslogPath, "Get storbus0 version string failed, err=module table unreadable").size(), 1u);
}

TEST_F(HostFacts, UnknownBiosFieldIsLogged)
{
    EXPECT_EQ(GetBiosField(5), "N/A");
    EXPECT_EQ(GetBiosField(0), "N/A");
    const auto lines = Matching(syslogPath, "Invalid version id: ");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_NE(lines[0].find(".err "), std::string::npos) << lines[0];
    EXPECT_NE(lines[0].find("Invalid version id: 5 requested"), std::string::npos) << lines[0];
}

// Where the table lets the library's failure pass, it reaches the caller of Format.
TEST_F(HostFacts, LibraryFailuresPassWhereNoFallbackIsGiven)
{
    WelcomeTest::SetLibFault("HardwareInfoImpl::GetSerialNumber", "no serial");
    EXPECT_THROW(Tag("serial-number"), Keelson::Lib::KeelsonException);
    WelcomeTest::SetLibFault("SysinfoUtil::SysinfoGet", "node gone");
    EXPECT_THROW(Tag("ostraversion"), Keelson::Lib::KeelsonException);
    EXPECT_THROW(GetProductName(), Keelson::Lib::KeelsonException);
    WelcomeTest::SetLibFault("HardwareInfo::GetBiosData", "no tables");
    EXPECT_THROW(GetBiosField(3), Keelson::Lib::KeelsonException);
    WelcomeTest::SetLibFault("HardwareInfoImpl::GetServiceTag", "no tag");
    EXPECT_EQ(GetServiceTag(), "N/A");
}

TEST_F(HostFacts, IpIsTheManagementAddress)
{
    EXPECT_EQ(Tag("ip"), "192.168.10.21");
    // A padding column of seven shows the first seven characters.
    RegisterHostFactTags();
    EXPECT_EQ(Format("{align:padding:7}{ip}{/align}|", 80, MakeTagSources()), "192.168|");
    ResetState([](json& state) { state["network"]["managementInterface"] = ""; });
    EXPECT_EQ(Tag("ip"), "0.0.0.0");
}

// ---------------------------------------------------------------- the real tools

// What the tool itself says, to compare with.
std::string ToolOutput(const std::string& command)
{
    std::string output;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[512];
        while (size_t n = fread(buffer, 1, sizeof buffer, pipe))
            output.append(buffer, n);
        pclose(pipe);
    }
    return output;
}

TEST_F(HostFacts, SslThumbprintsAreTheCertificateFingerprints)
{
    const std::string certificate = WelcomeTest::Root() + "/etc/zephora/ssl/node.crt";
    for (const auto& [tag, digest] : {std::pair{"ssl-thumbprint-sha-1", "SHA1"},
                                      std::pair{"ssl-thumbprint-sha-256", "SHA256"},
                                      std::pair{"ssl-thumbprint-sha-512", "SHA512"}}) {
        SCOPED_TRACE(tag);
        std::string expected =
            ToolOutput("openssl x509 -noout -fingerprint -" + std::string(digest) + " -in " + certificate);
        const size_t equals = expected.find('=');
        ASSERT_NE(equals, std::string::npos) << expected;
        expected = expected.substr(equals + 1);
        while (!expected.empty() && expected.back() == '\n')
            expected.pop_back();
        EXPECT_EQ(Tag(tag), expected);
    }
    EXPECT_TRUE(Matching(syslogPath, "SSL thumbprint").empty());
}

TEST_F(HostFacts, UnreadableCertificateGivesEmptyTextAndOneLogLinePerLayout)
{
    const std::string certificate = WelcomeTest::Root() + "/etc/zephora/ssl/node.crt";
    const std::string moved = certificate + ".away";
    std::filesystem::rename(certificate, moved);
    EXPECT_EQ(Tag("ssl-thumbprint-sha-256"), "");
    EXPECT_EQ(Tag("ssl-thumbprint-sha-256"), "");
    std::filesystem::rename(moved, certificate);
    const auto lines = Matching(syslogPath, "Failed to generate the host's SHA256 SSL thumbprint");
    EXPECT_EQ(lines.size(), 2u);
    ASSERT_FALSE(lines.empty());
    EXPECT_NE(lines[0].find(".err "), std::string::npos) << lines[0];
}

TEST_F(HostFacts, SshFingerprintsAreTheSecondWordOfTheTool)
{
    for (const auto& [tag, key] : {std::pair{"ssh-rsa-fingerprint", "rsa"}, std::pair{"ssh-dsa-fingerprint", "dsa"}}) {
        SCOPED_TRACE(tag);
        const std::string keyFile = WelcomeTest::Root() + "/etc/ssh/ssh_host_" + key + "_key";
        if (!std::filesystem::exists(keyFile))
            continue; // a tool that no longer makes this kind of key
        const std::string line = ToolOutput("ssh-keygen -l -f " + keyFile);
        const size_t first = line.find(' ');
        const std::string expected = line.substr(first + 1, line.find(' ', first + 1) - first - 1);
        EXPECT_EQ(Tag(tag), expected);
        EXPECT_TRUE(expected.starts_with("SHA256:")) << expected;
    }
}

TEST_F(HostFacts, MissingSshKeyIsLoggedWithTheToolsError)
{
    EXPECT_EQ(GetSshFingerprint("/etc/ssh/ssh_host_none_key"), "");
    const auto lines = Matching(syslogPath, "SSH Key Fingerprint generation failed: ");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find("ssh_host_none_key"), std::string::npos) << "the tool's own message: " << lines[0];
}

} // namespace
} // namespace Lanyx
