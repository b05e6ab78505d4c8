// Where hostsim finds hostsim-tool and pam_hostsim.so: beside itself in a build folder, at the
// installed places relative to its folder otherwise.
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "cli/CreateRoot.hpp"
#include "cli/Helpers.hpp"

namespace fs = std::filesystem;
using HostSim::Cli::CreateError;
using HostSim::Cli::FindHelpers;

namespace {

constexpr const char* kTool = "../libexec/hostsim/hostsim-tool";
constexpr const char* kModule = "../../lib/x86_64-linux-gnu/security/pam_hostsim.so";

class HelpersTest : public ::testing::Test {
protected:
    void SetUp() override {
        const char* tmp = std::getenv("TMPDIR");
        std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/helpers-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        top = pattern;
        fs::create_directories(top / "usr/bin");
    }
    void TearDown() override { fs::remove_all(top); }

    void Program(const fs::path& path, mode_t mode = 0755) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << "#!/bin/sh\n";
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
    }
    std::string Bin() const { return (top / "usr/bin").string(); }

    fs::path top;
};

TEST_F(HelpersTest, ABuildFolderUsesTheProgramsBesideHostsim) {
    Program(top / "usr/bin/hostsim-tool");
    // An installed tool as well does not matter: the build's own programs win.
    Program(top / "usr/libexec/hostsim/hostsim-tool");
    auto helpers = FindHelpers(Bin(), kTool, kModule);
    EXPECT_EQ(helpers.tool, Bin() + "/hostsim-tool");
    EXPECT_EQ(helpers.pamModule, Bin() + "/pam_hostsim.so");
}

TEST_F(HelpersTest, AnInstalledTreeUsesTheRelativePathsWithoutDotDot) {
    Program(top / "usr/libexec/hostsim/hostsim-tool");
    auto helpers = FindHelpers(Bin(), kTool, kModule);
    EXPECT_EQ(helpers.tool, (top / "usr/libexec/hostsim/hostsim-tool").string());
    EXPECT_EQ(helpers.pamModule, (top / "lib/x86_64-linux-gnu/security/pam_hostsim.so").string());
}

TEST_F(HelpersTest, AnAbsoluteInstalledPathIsTakenAsItIs) {
    Program(top / "opt/tool");
    auto helpers = FindHelpers(Bin(), (top / "opt/tool").string(), "/lib/security/pam_hostsim.so");
    EXPECT_EQ(helpers.tool, (top / "opt/tool").string());
    EXPECT_EQ(helpers.pamModule, "/lib/security/pam_hostsim.so");
}

TEST_F(HelpersTest, ANonExecutableToolDoesNotCountAndNoToolIsAnError) {
    Program(top / "usr/bin/hostsim-tool", 0644);
    try {
        FindHelpers(Bin(), kTool, kModule);
        FAIL() << "no error without a tool";
    } catch (const CreateError& error) {
        const std::string text = error.what();
        EXPECT_NE(text.find(Bin()), std::string::npos) << text;
        EXPECT_NE(text.find((top / "usr/libexec/hostsim/hostsim-tool").string()), std::string::npos)
            << text;
    }
}

} // namespace
