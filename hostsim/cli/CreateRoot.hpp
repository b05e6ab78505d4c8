// Making a complete simulated host root in a folder.
#pragma once
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/Helpers.hpp"

namespace HostSim::Cli {

// A failure to build the root; the text says what and where.
class CreateError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Host paths of the command table that are simulated tools, with the tool's short name.
struct ToolPath {
    const char* path;
    const char* tool;
};
const std::vector<ToolPath>& ToolPaths();

// Builds the root at `dir` (created if missing) from the profile; its tool scripts and its PAM
// service call back into `helpers`. Refuses a folder that already holds a host unless `force`.
void CreateRoot(const std::string& dir, const std::string& profile, const Helpers& helpers,
                bool force);

} // namespace HostSim::Cli
