#include "host/HostRoot.hpp"

#include <cstdlib>

namespace Lanyx {

std::string HostRootPrefix()
{
    // Read at every call: a process that points the variable at another root (a test making a
    // second host) must not keep the first.
    const char* value = std::getenv("LANYX_HOST_ROOT");
    std::string root = value ? value : "";
    while (!root.empty() && root.back() == '/')
        root.pop_back();
    return root;
}

std::string HostPath(std::string_view absolutePath)
{
    if (absolutePath.empty() || absolutePath.front() != '/' || absolutePath.starts_with("/dev/") ||
        absolutePath.starts_with("/usr/share/terminfo"))
        return std::string(absolutePath);
    return HostRootPrefix() + std::string(absolutePath);
}

} // namespace Lanyx
