#include "host/HostRoot.hpp"

#include <cstdlib>

namespace Lanyx {

const std::string& HostRootPrefix()
{
    static const std::string prefix = [] {
        const char* value = std::getenv("LANYX_HOST_ROOT");
        std::string root = value ? value : "";
        while (!root.empty() && root.back() == '/')
            root.pop_back();
        return root;
    }();
    return prefix;
}

std::string HostPath(std::string_view absolutePath)
{
    if (absolutePath.empty() || absolutePath.front() != '/' || absolutePath.starts_with("/dev/") ||
        absolutePath.starts_with("/usr/share/terminfo"))
        return std::string(absolutePath);
    return HostRootPrefix() + std::string(absolutePath);
}

} // namespace Lanyx
