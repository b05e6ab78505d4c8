// Where hostsim finds the programs that a host root it makes calls back into.
#pragma once
#include <string>

namespace HostSim::Cli {

struct Helpers {
    std::string tool;      // hostsim-tool, run by every tool script of the root
    std::string pamModule; // pam_hostsim.so, named by the root's PAM service file
};

// In a build folder both lie beside hostsim. In an installed tree they lie elsewhere, at
// `installedTool` and `installedModule`, taken relative to hostsim's folder so that a staged
// install works before it reaches its final place. Throws CreateError when neither place holds
// the tool.
Helpers FindHelpers(const std::string& programDir, const std::string& installedTool,
                    const std::string& installedModule);

} // namespace HostSim::Cli
