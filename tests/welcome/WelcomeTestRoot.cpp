#include "WelcomeTestRoot.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include <gtest/gtest.h>

#include "store/StateStore.hpp"

namespace fs = std::filesystem;

namespace WelcomeTest {
namespace {

std::string parent, root;
nlohmann::json initial;
std::map<std::string, std::uintmax_t> marks; // record file -> size at the last reset

class RootEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        parent = (fs::temp_directory_path() / "lanyx-welcome-XXXXXX").string();
        ASSERT_NE(mkdtemp(parent.data()), nullptr);
        root = parent + "/root";
        const std::string create = std::string(WELCOME_TEST_HOSTSIM) + " create " + root + " >/dev/null";
        ASSERT_EQ(std::system(create.c_str()), 0) << create;
        setenv("LANYX_HOST_ROOT", root.c_str(), 1);
        initial = HostSim::StateStore(root).Read();
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(parent, ignored);
    }
};

const auto* const environment = ::testing::AddGlobalTestEnvironment(new RootEnvironment);

} // namespace

const std::string& Root() { return root; }

void ResetState(const std::function<void(nlohmann::json&)>& change) {
    HostSim::StateStore(root).Update([&](nlohmann::json& state) {
        state = initial;
        if (change)
            change(state);
    });
    for (const char* record : {syslogPath, auditPath}) {
        std::error_code missing;
        const auto size = fs::file_size(root + record, missing);
        marks[record] = missing ? 0 : size;
    }
}

void ChangeState(const std::function<void(nlohmann::json&)>& change) { HostSim::StateStore(root).Update(change); }

void SetLibFault(const std::string& operation, const std::string& text) {
    ChangeState([&](nlohmann::json& state) { state["faults"]["lib"][operation] = text; });
}

std::vector<std::string> RecordLines(const std::string& hostPath) {
    std::ifstream file(root + hostPath, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(marks[hostPath]));
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> Matching(const std::string& hostPath, const std::string& text) {
    std::vector<std::string> found;
    for (const std::string& line : RecordLines(hostPath))
        if (line.find(text) != std::string::npos)
            found.push_back(line);
    return found;
}

} // namespace WelcomeTest
