// The state of the default profile, which the other profiles vary.
#pragma once
#include <nlohmann/json.hpp>

namespace HostSim::Cli {

nlohmann::json DefaultState();

} // namespace HostSim::Cli
