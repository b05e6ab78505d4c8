// A fresh simulated host per test: made by the hostsim command from a profile, edited through
// the state store where no hostsim setting reaches, and read back for its log lines.
#pragma once
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "store/StateStore.hpp"

namespace Lanyx::Testing {

class SimulatedHost : public ::testing::Test {
protected:
    void TearDown() override { Remove(); }
    void Remove() { if (!base.empty()) std::filesystem::remove_all(base); }

    // A test may make several hosts one after the other; each replaces the one before.
    void Create(const std::string& profile = "default")
    {
        Remove();
        char pattern[] = "/tmp/lanyx-restore-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        base = pattern;
        root = base + "/host";
        const std::string command = std::string(HOSTSIM_COMMAND) + " create " + root + " --profile " + profile +
                                    " >/dev/null 2>&1";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        setenv("LANYX_HOST_ROOT", root.c_str(), 1);
    }

    nlohmann::json State() const { return HostSim::StateStore(root).Read(); }
    void Edit(const std::function<void(nlohmann::json&)>& change) const { HostSim::StateStore(root).Update(change); }
    // The library operation throws KeelsonException(text) from now on.
    void Fault(const std::string& operation, const std::string& text) const
    {
        Edit([&](nlohmann::json& state) { state["faults"]["lib"][operation] = text; });
    }

    // Messages of the error lines of the system log, oldest first.
    std::vector<std::string> Errors() const
    {
        std::vector<std::string> messages;
        std::ifstream in(root + "/var/log/syslog.log");
        for (std::string line; std::getline(in, line);)
            if (line.find(" user.err ") != std::string::npos) messages.push_back(line.substr(line.find("]: ") + 3));
        return messages;
    }

    std::string base;
    std::string root;
};

} // namespace Lanyx::Testing
