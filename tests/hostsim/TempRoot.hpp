// A temporary host root for one test, removed at the end; LANYX_HOST_ROOT points at it.
#pragma once
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "store/StateStore.hpp"

namespace HostSimTest {

class TempRoot {
public:
    TempRoot() : path_((std::filesystem::temp_directory_path() / "hostsim-test-XXXXXX").string()) {
        if (::mkdtemp(path_.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
        for (const char* folder : {"/var/lib/hostsim", "/var/log"})
            std::filesystem::create_directories(path_ + folder);
        ::setenv("LANYX_HOST_ROOT", path_.c_str(), 1);
    }
    TempRoot(const TempRoot&) = delete;
    TempRoot& operator=(const TempRoot&) = delete;
    ~TempRoot() {
        ::unsetenv("LANYX_HOST_ROOT");
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    const std::string& Path() const { return path_; }
    std::string File(const std::string& hostPath) const { return path_ + hostPath; }
    HostSim::StateStore Store() const { return HostSim::StateStore(path_); }

    std::string Read(const std::string& hostPath) const {
        std::ifstream in(File(hostPath), std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }
    void WriteRaw(const std::string& hostPath, const std::string& text) const {
        std::ofstream(File(hostPath), std::ios::binary | std::ios::trunc) << text;
    }

private:
    std::string path_;
};

} // namespace HostSimTest
