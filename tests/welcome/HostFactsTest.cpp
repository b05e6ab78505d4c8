// The readers of host facts, alone and as substitution tags, against a simulated host.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <tuple>

#include "HostRoot.hpp"
#include "keelson/Lib.hpp"
#include "text/Markup.hpp"
#include "welcome/HostFacts.hpp"

namespace Lanyx {
namespace {

using LanyxTest::Record;
using nlohmann::json;

auto* const program = LanyxTest::AddProgramHost("default");

std::vector<std::string> Logged(const std::string& text) {
    return program->Host().Matching(Record::Syslog, text);
}

constexpr uint64_t MiB = uint64_t{1} << 20;
constexpr uint64_t GiB = MiB << 10;
constexpr uint64_t PiB = GiB << 20;

// ---------------------------------------------------------------- pure helpers

TEST(TextHelpers, WhiteSpaceVendorLineAndMemorySizes) {
    EXPECT_EQ(CollapseWhitespace("  Tessellate(R) Core  Gold\t6430 \n @ 2.10GHz\r\v\f"),
              "Tessellate(R) Core Gold 6430 @ 2.10GHz");
    EXPECT_EQ(CollapseWhitespace(" \t\n "), "");
    // A product that begins with the vendor (after normalising, as text, not words) is not doubled.
    for (const auto& [vendor, product, line] :
         {std::tuple{"Northwind  Systems ", "Northwind Systems  NX-2840",
                     "Northwind Systems NX-2840"},
          std::tuple{"Acme", "Server by Acme", "Acme Server by Acme"},
          std::tuple{"Acme Corp", "Acme  Corporation", "Acme Corporation"},
          std::tuple{"Acme  Corp", "AcmeCorp R-1", "Acme Corp AcmeCorp R-1"}})
        EXPECT_EQ(FormatVendorLine(vendor, product), line);

    // The tag rounds up to a quarter gibibyte; the line keeps the exact size. Both cut one decimal.
    for (const auto& [bytes, text] :
         {std::pair{16 * GiB + GiB / 4, "16.2 GB"}, std::pair{100 * MiB, "256 MB"},
          std::pair{16 * GiB - 5 * MiB, "16 GB"}, std::pair{16 * GiB + 1, "16.2 GB"},
          std::pair{4096 * PiB, "4096 PB"}})
        EXPECT_EQ(FormatMemoryTag(bytes), text) << bytes;
    for (const auto& [bytes, text] :
         {std::pair{16 * GiB - 100 * MiB, "15.9 GiB Memory"}, std::pair{MiB / 2, "0.5 MiB Memory"},
          std::pair{5 * PiB, "5 PiB Memory"}})
        EXPECT_EQ(FormatMemoryLine(bytes), text) << bytes;
}

// ---------------------------------------------------------------- readers on a simulated host

class HostFacts : public ::testing::Test {
protected:
    void SetUp() override { program->Reset(); }

    // The tag as a text area of the given width would show it.
    static std::string Tag(const std::string& tag, int width = 200) {
        RegisterHostFactTags();
        return Format("{" + tag + "}", width, MakeTagSources());
    }
};

// The version, memory and BIOS tags of the default host are shown end to end.
TEST_F(HostFacts, TagsFromTheHost) {
    const std::pair<const char*, const char*> tags[] = {
        {"PLSAversion", "1.2.4.11-1vmw"},
        {"CPLDversion", "N/A"},
    };
    for (const auto& [tag, value] : tags)
        EXPECT_EQ(Tag(tag), value) << tag;
    program->Reset([](json& state) {
        state["product"]["build"] = 123;
        state["host"]["domain"] = "";
        state["hardware"]["serviceTag"] = "";
        state["network"]["managementInterface"] = "";
    });
    EXPECT_EQ(Tag("ostraversion"), "8.0.3 build-00123");
    EXPECT_EQ(Tag("hostname"), "lanyx-lab01.");
    EXPECT_EQ(Tag("servicetag"), "N/A");
    EXPECT_EQ(Tag("ip"), "0.0.0.0");
}

TEST_F(HostFacts, BiosFieldsFallBackAndLog) {
    // No adapter of that name: no log; an unreadable module: logged with the library's text.
    program->Reset([](json& state) { state["hardware"]["storageAdapters"].erase(0); });
    EXPECT_EQ(GetBiosField(1), "N/A");
    EXPECT_TRUE(Logged("version string failed").empty());
    program->Reset();
    program->Host().LibFault("SystemInfo::GetModule", "module table unreadable");
    EXPECT_EQ(GetBiosField(1), "N/A");
    EXPECT_EQ(Logged("Get storbus0 version string failed, err=module table unreadable").size(), 1u);

    EXPECT_EQ(GetBiosField(5), "N/A");
    const auto lines = Logged("Invalid version id: 5 requested");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find(".err "), std::string::npos) << lines[0];
}

// Where no fallback is given, the library's failure reaches the caller of Format.
TEST_F(HostFacts, LibraryFailuresPassWhereNoFallbackIsGiven) {
    program->Host().LibFault("HardwareInfoImpl::GetSerialNumber", "no serial");
    EXPECT_THROW(Tag("serial-number"), Keelson::Lib::KeelsonException);
    program->Host().LibFault("SysinfoUtil::SysinfoGet", "node gone");
    EXPECT_THROW(Tag("ostraversion"), Keelson::Lib::KeelsonException);
    program->Host().LibFault("HardwareInfo::GetBiosData", "no tables");
    EXPECT_THROW(GetBiosField(3), Keelson::Lib::KeelsonException);
    program->Host().LibFault("HardwareInfoImpl::GetServiceTag", "no tag");
    EXPECT_EQ(GetServiceTag(), "N/A");
}

// The thumbprints themselves are compared with the real tool end to end.
TEST_F(HostFacts, UnreadableCertificateGivesEmptyTextAndOneLogLinePerLayout) {
    const std::string certificate = program->Host().Path() + "/etc/zephora/ssl/node.crt";
    const std::string moved = certificate + ".away";
    std::filesystem::rename(certificate, moved);
    EXPECT_EQ(Tag("ssl-thumbprint-sha-256"), "");
    EXPECT_EQ(Tag("ssl-thumbprint-sha-256"), "");
    std::filesystem::rename(moved, certificate);
    const auto lines = Logged("Failed to generate the host's SHA256 SSL thumbprint");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_NE(lines[0].find(".err "), std::string::npos) << lines[0];
}

TEST_F(HostFacts, MissingSshKeyIsLoggedWithTheToolsError) {
    EXPECT_EQ(GetSshFingerprint("/etc/ssh/ssh_host_none_key"), "");
    const auto lines = Logged("SSH Key Fingerprint generation failed: ");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find("ssh_host_none_key"), std::string::npos)
        << "the tool's own message: " << lines[0];
}

} // namespace
} // namespace Lanyx
