// Text files of a new host root, made from its state.
#pragma once
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace HostSim::Cli {

// /etc/pam.d/lanyx naming the simulated module by absolute path.
std::string PamService(const std::string& root, const std::string& module);

// /etc/zephora/support: three pages.
std::string SupportFile(const nlohmann::json& state);

// The log files under /var/log with their first lines; the record files start empty.
std::vector<std::pair<std::string, std::string>> LogFiles(const nlohmann::json& state);

// /etc/hosts naming the host.
std::string HostsFile(const nlohmann::json& state);

} // namespace HostSim::Cli
