#include "WelcomeTestRoot.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "store/StateStore.hpp"

namespace fs = std::filesystem;

namespace WelcomeTest {
namespace {

struct RootState {
    std::string parent;
    std::string root;
    nlohmann::json initial;
    std::map<std::string, std::uintmax_t> marks; // record file -> size at the last reset
};

RootState& Shared() {
    static RootState state;
    return state;
}

std::uintmax_t SizeOf(const std::string& path) {
    std::error_code error;
    const auto size = fs::file_size(path, error);
    return error ? 0 : size;
}

void RunHostsim(const std::vector<std::string>& args) {
    const pid_t pid = fork();
    if (pid == 0) {
        std::vector<char*> argv;
        argv.push_back(const_cast<char*>(WELCOME_TEST_HOSTSIM));
        for (const std::string& arg : args)
            argv.push_back(const_cast<char*>(arg.c_str()));
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        _exit(127);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error("hostsim " + args.front() + " failed");
}

class RootEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "lanyx-welcome-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        RootState& shared = Shared();
        shared.parent = pattern;
        shared.root = pattern + "/root";
        ASSERT_NO_THROW(RunHostsim({"create", shared.root}));
        setenv("LANYX_HOST_ROOT", shared.root.c_str(), 1);
        shared.initial = HostSim::StateStore(shared.root).Read();
    }

    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(Shared().parent, ignored);
    }
};

const auto* const environment = ::testing::AddGlobalTestEnvironment(new RootEnvironment);

} // namespace

const std::string& Root() {
    return Shared().root;
}

void ResetState(const std::function<void(nlohmann::json&)>& change) {
    RootState& shared = Shared();
    HostSim::StateStore(shared.root).Update([&](nlohmann::json& state) {
        state = shared.initial;
        if (change)
            change(state);
    });
    for (const char* record : {syslogPath, auditPath})
        shared.marks[record] = SizeOf(shared.root + record);
}

void ChangeState(const std::function<void(nlohmann::json&)>& change) {
    HostSim::StateStore(Root()).Update(change);
}

nlohmann::json State() {
    return HostSim::StateStore(Root()).Read();
}

void SetLibFault(const std::string& operation, const std::string& text) {
    ChangeState([&](nlohmann::json& state) { state["faults"]["lib"][operation] = text; });
}

std::vector<std::string> RecordLines(const std::string& hostPath) {
    std::ifstream file(Root() + hostPath, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(Shared().marks[hostPath]));
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> Matching(const std::string& hostPath, const std::string& text) {
    std::vector<std::string> found;
    for (const std::string& line : RecordLines(hostPath)) {
        if (line.find(text) != std::string::npos)
            found.push_back(line);
    }
    return found;
}

} // namespace WelcomeTest
