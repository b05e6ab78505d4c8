#include "TestRoot.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace HostTest {
namespace {

std::string& RootStorage()
{
    static std::string root;
    return root;
}

} // namespace

const std::string& Root()
{
    return RootStorage();
}

std::string Under(const std::string& hostPath)
{
    return Root() + hostPath;
}

void WriteFile(const std::string& hostPath, const std::string& text)
{
    const fs::path path = Under(hostPath);
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    if (!file.flush())
        throw std::runtime_error("cannot write " + path.string());
}

void WriteScript(const std::string& hostPath, const std::string& body)
{
    WriteFile(hostPath, "#!/bin/sh\n" + body + "\n");
    fs::permissions(Under(hostPath), fs::perms::owner_all | fs::perms::group_read |
                                         fs::perms::group_exec | fs::perms::others_read |
                                         fs::perms::others_exec);
}

std::string ReadFile(const std::string& hostPath)
{
    std::ifstream file(Under(hostPath), std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void RemoveFile(const std::string& hostPath)
{
    std::error_code ignored;
    fs::remove(Under(hostPath), ignored);
}

LogMark::LogMark() : offset_(ReadFile("/var/log/syslog.log").size()) {}

std::vector<std::string> LogMark::Lines() const
{
    const std::string all = ReadFile("/var/log/syslog.log");
    std::vector<std::string> lines;
    std::istringstream rest(all.size() > offset_ ? all.substr(offset_) : std::string());
    for (std::string line; std::getline(rest, line);) {
        // "<stamp> <facility>.<level> <ident>[<pid>]: <message>"
        const auto levelStart = line.find(' ');
        const auto identStart = line.find(' ', levelStart + 1);
        const auto message = line.find("]: ", identStart);
        if (levelStart == std::string::npos || identStart == std::string::npos ||
            message == std::string::npos)
            continue;
        lines.push_back(line.substr(levelStart + 1, identStart - levelStart - 1) + " " +
                        line.substr(message + 3));
    }
    return lines;
}

} // namespace HostTest

// Each test program gets its own root, set before anything asks for a host path.
int main(int argc, char** argv)
{
    std::string pattern = (fs::temp_directory_path() / "lanyx-host-test-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) {
        std::perror("mkdtemp");
        return 1;
    }
    HostTest::RootStorage() = pattern;
    ::setenv("LANYX_HOST_ROOT", pattern.c_str(), 1);
    fs::create_directories(pattern + "/var/log");
    fs::create_directories(pattern + "/tmp");
    // Like the host's shell: its own bin folders first, then the machine's plain utilities; and
    // like it, a shell that knows "let".
    HostTest::WriteScript("/bin/sh", "PATH=" + pattern + "/bin:/usr/bin:/bin\nexport PATH\n"
                                     "exec /bin/bash \"$@\"");

    ::testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();

    std::error_code ignored;
    fs::remove_all(pattern, ignored);
    return result;
}
