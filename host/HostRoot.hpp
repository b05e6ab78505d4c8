// Every absolute host path the console touches is taken under one host root
// (LANYX_HOST_ROOT; unset means "/"), so that a test or a demo never touches the machine.
// A build with LANYX_HOST_ROOT_SEAM off ignores the variable: every path is the host's own.
#pragma once
#include <string>
#include <string_view>

namespace Lanyx {

// The root, without a trailing slash; empty for "/".
std::string HostRootPrefix();

// "/var/run/lanyx.pid" -> "<root>/var/run/lanyx.pid". Devices ("/dev/...") and the terminfo
// folder stay where they are.
std::string HostPath(std::string_view absolutePath);

} // namespace Lanyx
