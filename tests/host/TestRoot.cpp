#include "TestRoot.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace HostTest {
namespace {
std::string root;
} // namespace

const std::string& Root() { return root; }

std::string Under(const std::string& hostPath) { return root + hostPath; }

void WriteFile(const std::string& hostPath, const std::string& text)
{
    const fs::path path = Under(hostPath);
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!(file << text).flush())
        throw std::runtime_error("cannot write " + path.string());
}

void WriteScript(const std::string& hostPath, const std::string& body)
{
    WriteFile(hostPath, "#!/bin/sh\n" + body + "\n");
    fs::permissions(Under(hostPath), fs::perms::owner_all | fs::perms::group_exec |
                                         fs::perms::others_exec, fs::perm_options::add);
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
    std::vector<std::string> lines;
    std::istringstream rest(ReadFile("/var/log/syslog.log").substr(offset_));
    for (std::string line; std::getline(rest, line);) {
        // "<stamp> <facility>.<level> <ident>[<pid>]: <message>"
        const auto level = line.find(' ') + 1;
        const auto ident = line.find(' ', level);
        const auto message = line.find("]: ", ident);
        if (level != 0 && ident != std::string::npos && message != std::string::npos)
            lines.push_back(line.substr(level, ident - level) + " " + line.substr(message + 3));
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
    HostTest::root = pattern;
    ::setenv("LANYX_HOST_ROOT", pattern.c_str(), 1);
    for (const char* folder : {"/var/log", "/tmp"})
        fs::create_directories(pattern + folder);
    // Like the host's shell: its own bin folders first, then the machine's; and one that knows "let".
    HostTest::WriteScript("/bin/sh", "PATH=" + pattern + "/bin:/usr/bin:/bin\nexport PATH\n"
                                     "exec /bin/bash \"$@\"");
    ::testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    std::error_code ignored;
    fs::remove_all(pattern, ignored);
    return result;
}
