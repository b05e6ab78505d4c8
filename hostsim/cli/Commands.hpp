// The state-changing commands of hostsim: settings and faults.
#pragma once
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace HostSim::Cli {

// Bad usage: an unknown name or a value of the wrong form. The text says which.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Setting {
    const char* name;
    const char* help;
    // Changes the state; throws UsageError for a bad value.
    void (*apply)(nlohmann::json& state, const std::string& value);
};

const std::vector<Setting>& Settings();

// Library operations that accept a fault, and tool short names.
const std::vector<std::string>& FaultOperations();
const std::vector<std::string>& FaultTools();

// `hostsim set`: applies one setting to the state of the root.
void ApplySetting(const std::string& root, const std::string& name, const std::string& value);

// `hostsim fault`: args are what follows DIR.
void ApplyFault(const std::string& root, const std::vector<std::string>& args);

} // namespace HostSim::Cli
