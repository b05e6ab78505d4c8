#include "cli/Helpers.hpp"

#include <unistd.h>

#include <filesystem>

#include "cli/CreateRoot.hpp"

namespace HostSim::Cli {

Helpers FindHelpers(const std::string& programDir, const std::string& installedTool,
                    const std::string& installedModule) {
    namespace fs = std::filesystem;
    const fs::path dir(programDir);
    const fs::path beside = dir / "hostsim-tool";
    if (::access(beside.c_str(), X_OK) == 0)
        return {beside.string(), (dir / "pam_hostsim.so").string()};
    // Paths written into the root's scripts stay readable: no "bin/../" in them.
    const fs::path tool = (dir / installedTool).lexically_normal();
    if (::access(tool.c_str(), X_OK) == 0)
        return {tool.string(), (dir / installedModule).lexically_normal().string()};
    throw CreateError("Cannot find hostsim-tool beside " + dir.string() + " nor at " +
                      tool.string());
}

} // namespace HostSim::Cli
