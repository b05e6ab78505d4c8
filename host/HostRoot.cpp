#include "host/HostRoot.hpp"

#include <cstdlib>

namespace Lanyx {

std::string HostRootPrefix() {
#if LANYX_HOST_ROOT_SEAM
    // Read at each call: cheap, and a process that changes its root (a test) gets the new one.
    const char* value = std::getenv("LANYX_HOST_ROOT");
    std::string root = value ? value : "";
    while (!root.empty() && root.back() == '/')
        root.pop_back();
    return root;
#else
    return {};
#endif
}

std::string HostPath(std::string_view absolutePath) {
    if (absolutePath.empty() || absolutePath.front() != '/' || absolutePath.starts_with("/dev/") ||
        absolutePath.starts_with("/usr/share/terminfo"))
        return std::string(absolutePath);
    return HostRootPrefix() + std::string(absolutePath);
}

} // namespace Lanyx
