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

} // namespace

// A refused change leaves the document as it was (HostsimCommand's refusals); nor is a temporary
// file left behind: state.json and state.lock only.
TEST(StateStore, ChangeThatThrowsLeavesNoFileBehind) {
    TempRoot root("");
    HostSim::StateStore(root.Path()).Write({{"n", 1}});
    EXPECT_THROW(HostSim::StateStore(root.Path()).Update([](nlohmann::json& s) {
        s["n"] = 2;
        throw std::runtime_error("no");
    }),
                 std::runtime_error);
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
                // Half the reads through the shared document, which the writers keep replacing.
                const HostSim::StateStore store(root.Path());
                const auto s = reads % 2 == 0 ? store.Read() : *store.Snapshot();
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

TEST(StateStore, SnapshotIsSharedUntilTheFileChangesInAnyWay) {
    TempRoot root("");
    const HostSim::StateStore store(root.Path());
    store.Write({{"n", 1}});
    const auto first = store.Snapshot();
    EXPECT_EQ(store.Snapshot(), first);
    EXPECT_EQ(HostSim::StateStore(root.Path()).Snapshot(), first);

    // Replaced many times within one tick of the file clock, at the same size each time.
    for (int n = 2; n < 40; ++n) {
        store.Update([n](nlohmann::json& s) { s["n"] = n % 10; });
        ASSERT_EQ((*store.Snapshot())["n"], n % 10) << n;
    }
    EXPECT_EQ((*first)["n"], 1); // a document once handed out stays as it was

    root.Write(kStatePath, R"({"n": 300})"); // rewritten in place
    EXPECT_EQ((*store.Snapshot())["n"], 300);
    root.Write(kStatePath, "{\"n\": ");
    EXPECT_THROW(store.Snapshot(), StateError);
    EXPECT_THROW(store.Snapshot(), StateError);

    TempRoot other("");
    HostSim::StateStore(other.Path()).Write({{"n", 9}});
    EXPECT_EQ((*HostSim::StateStore(other.Path()).Snapshot())["n"], 9);
    root.Remove(kStatePath);
    try {
        store.Snapshot();
        ADD_FAILURE() << "a removed state was read";
    } catch (const StateError& e) {
        EXPECT_NE(std::string(e.what()).find("missing"), std::string::npos) << e.what();
    }
}
