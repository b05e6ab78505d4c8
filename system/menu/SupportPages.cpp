#include "system/menu/SupportPages.hpp"

#include <fstream>

namespace Lanyx {

std::vector<std::string> ReadSupportPages(const std::string& path) {
    std::vector<std::string> pages;
    std::ifstream file(path);
    if (!file)
        return pages;
    std::string page;
    std::string line;
    while (std::getline(file, line)) {
        if (line.starts_with('#'))
            continue;
        if (line.starts_with('$')) {
            pages.push_back(std::move(page));
            page.clear();
            continue;
        }
        page += line;
        page += '\n';
    }
    pages.push_back(std::move(page));
    return pages;
}

} // namespace Lanyx
