// Every test binary of the core runs against a host root of its own, so that nothing it logs
// or writes can reach the machine.
#pragma once
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace Lanyx::Testing {

class TemporaryHostRoot : public ::testing::Environment {
public:
    void SetUp() override
    {
        char pattern[] = "/tmp/lanyx-core-root-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        root = pattern;
        std::filesystem::create_directories(root + "/var/log");
        std::filesystem::create_directories(root + "/var/run");
        setenv("LANYX_HOST_ROOT", root.c_str(), 1);
    }
    void TearDown() override { std::filesystem::remove_all(root); }

    std::string root;
};

// Registered before any test runs; the first thing in each binary.
inline TemporaryHostRoot* const hostRoot = static_cast<TemporaryHostRoot*>(
    ::testing::AddGlobalTestEnvironment(new TemporaryHostRoot));

} // namespace Lanyx::Testing
