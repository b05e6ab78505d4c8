// Started by the runner tests to report what a child inherits: its open descriptors, its
// environment and its blocked signals.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <set>
#include <string>

#include <dirent.h>

extern char** environ;

int main(int argc, char** argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "fds") {
        DIR* dir = ::opendir("/proc/self/fd");
        if (!dir)
            return 2;
        std::set<int> open;
        while (const dirent* entry = ::readdir(dir)) {
            if (entry->d_name[0] == '.')
                continue;
            const int fd = std::atoi(entry->d_name);
            if (fd != ::dirfd(dir))
                open.insert(fd);
        }
        ::closedir(dir);
        for (int fd : open)
            std::printf("%d\n", fd);
        return 0;
    }
    if (mode == "env") {
        for (char** entry = environ; *entry; ++entry)
            std::printf("%s\n", *entry);
        return 0;
    }
    if (mode == "sigblk") {
        std::ifstream status("/proc/self/status");
        for (std::string line; std::getline(status, line);) {
            if (line.rfind("SigBlk:", 0) == 0)
                std::printf("%s\n", line.c_str());
        }
        return 0;
    }
    return 3;
}
