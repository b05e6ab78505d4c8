#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "HostRoot.hpp"
#include "store/StateStore.hpp"

using HostSim::StateError;
using TempRoot = LanyxTest::HostRoot;

namespace {

const char* kStatePath = "/var/lib/hostsim/state.json";

// The StateError text of a read, or "" when the read succeeded.
std::string ReadError(const TempRoot& root) {
    try {
        HostSim::StateStore(root.Path()).Read();
    } catch (const StateError& e) {
        return e.what();
    }
    return "";
}

} // namespace

TEST(StateStore, RootPathJoinsUnderTheRootAndUpdatesKeepTheRest) {
    EXPECT_EQ(HostSim::RootPath("/tmp/r/", "/var/log/x"), "/tmp/r/var/log/x");
    EXPECT_EQ(HostSim::RootPath("", "/var/log/x"), "/var/log/x");
    TempRoot root("");
    HostSim::StateStore(root.Path()).Write({{"host", {{"hostname", "a"}}}});
    HostSim::StateStore(root.Path()).Update([](nlohmann::json& s) { s["host"]["domain"] = "b"; });
    EXPECT_EQ(HostSim::StateStore(root.Path()).Read()["host"],
              (nlohmann::json{{"hostname", "a"}, {"domain", "b"}}));
}

TEST(StateStore, DamagedStatesAreNamedAndLeftAsTheyWere) {
    TempRoot root("");
    EXPECT_NE(ReadError(root).find("missing"), std::string::npos);
    EXPECT_NE(ReadError(root).find(root.File(kStatePath)), std::string::npos);

    for (const std::string& damaged :
         {std::string(""), std::string("{\"host\": {\"hostname\": \"a"), std::string("[1, 2]"),
          std::string("\x01\x02garbage")}) {
        SCOPED_TRACE(damaged);
        root.Write(kStatePath, damaged);
        std::string error = ReadError(root);
        EXPECT_NE(error.find(root.File(kStatePath)), std::string::npos) << error;
        EXPECT_THROW(HostSim::StateStore(root.Path()).Update([](nlohmann::json& s) { s["x"] = 1; }),
                     StateError);
        EXPECT_EQ(root.Read(kStatePath), damaged);
    }
    root.Write(kStatePath, "");
    EXPECT_NE(ReadError(root).find("empty"), std::string::npos);
    EXPECT_THROW(HostSim::StateStore(root.Path() + "/nowhere").Write(nlohmann::json::object()),
                 StateError);
}

TEST(StateStore, AChangeThatThrowsWritesNothing) {
    TempRoot root("");
    HostSim::StateStore(root.Path()).Write({{"n", 1}});
    const std::string before = root.Read(kStatePath);
    EXPECT_THROW(HostSim::StateStore(root.Path()).Update([](nlohmann::json& s) {
        s["n"] = 2;
        throw std::runtime_error("no");
    }),
                 std::runtime_error);
    EXPECT_EQ(root.Read(kStatePath), before);
    // No temporary file is left behind either: state.json and state.lock only.
    const auto files =
        std::distance(std::filesystem::directory_iterator(root.File("/var/lib/hostsim")), {});
    EXPECT_EQ(files, 2);
}

TEST(StateStore, ConcurrentProcessesLoseNoUpdateAndReadersSeeWholeDocuments) {
    TempRoot root("");
    // A large padding makes a torn write visible as a parse error.
    HostSim::StateStore(root.Path()).Write({{"count", 0}, {"padding", std::string(50000, 'x')}});
    constexpr int kProcesses = 4;
    constexpr int kIncrements = 25;
    const auto increments = [&] {
        for (int i = 0; i < kIncrements; ++i)
            HostSim::StateStore(root.Path()).Update([](nlohmann::json& s) {
                s["count"] = s["count"].get<int>() + 1;
            });
    };
    std::vector<pid_t> children;
    for (int p = 0; p < kProcesses; ++p) {
        pid_t pid = ::fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            try {
                increments();
            } catch (...) {
                ::_exit(1);
            }
            ::_exit(0);
        }
        children.push_back(pid);
    }
    std::atomic<bool> done{false};
    std::atomic<int> badReads{0};
    std::atomic<int> reads{0};
    std::thread reader([&] {
        while (!done) {
            try {
                auto s = HostSim::StateStore(root.Path()).Read();
                if (s["padding"].get<std::string>().size() != 50000)
                    ++badReads;
            } catch (...) {
                ++badReads;
            }
            ++reads;
        }
    });
    // Threads of this process write too.
    std::thread first(increments), second(increments);
    first.join();
    second.join();
    for (pid_t pid : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    done = true;
    reader.join();
    EXPECT_EQ(badReads, 0);
    EXPECT_GT(reads, 0);
    EXPECT_EQ(HostSim::StateStore(root.Path()).Read()["count"], (kProcesses + 2) * kIncrements);
}
