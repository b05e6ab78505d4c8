// A simulated host for one test: a host root made by the hostsim command from a profile (or a
// bare root with only its folders), changed through hostsim or its state document, and read back
// through its records. LANYX_HOST_ROOT points at the root while it lives and at what it pointed
// at before afterwards. The folder is removed at the end unless the test failed; then its path
// is printed.
#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Process.hpp"

namespace LanyxTest {

std::string HostsimBinary();

// The record files of the simulated host.
enum class Record { Syslog, Notad, Audit };
const char* RecordPath(Record record);

class HostRoot {
public:
    // An empty profile gives a bare root: no state, no tools, only /var/log and /var/lib/hostsim.
    explicit HostRoot(const std::string& profile = "default");
    ~HostRoot();
    HostRoot(const HostRoot&) = delete;
    HostRoot& operator=(const HostRoot&) = delete;

    // The root folder, absolute, without a trailing slash.
    const std::string& Path() const { return root_; }
    // A host path under the root: "/var/run/lanyx.pid" -> "<root>/var/run/lanyx.pid".
    std::string File(std::string_view hostPath) const;

    // `hostsim <command> <root> <args...>`; the result is returned, failures are not judged.
    ProcessResult Hostsim(const std::string& command,
                          const std::vector<std::string>& args = {}) const;
    // `hostsim set <root> name value`, `hostsim fault <root> args...`; a failure fails the test.
    void Set(const std::string& name, const std::string& value) const;
    void Fault(const std::vector<std::string>& args) const;
    // A host library operation that throws `text` from now on (written to the state directly).
    void LibFault(const std::string& operation, const std::string& text) const;

    nlohmann::json State() const;
    void Edit(const std::function<void(nlohmann::json&)>& change) const;

    // Whole file under the root ("" when missing).
    std::string Read(std::string_view hostPath) const;
    void Write(std::string_view hostPath, std::string_view content) const;
    // An executable sh script; `body` follows the "#!/bin/sh" line.
    void WriteScript(std::string_view hostPath, const std::string& body) const;
    void Remove(std::string_view hostPath) const;

    // From now on the records are read from their current end.
    void Mark();
    // Lines of a record written since the mark (the mark starts at the root's creation).
    std::vector<std::string> Lines(Record record) const;
    std::vector<std::string> Matching(Record record, std::string_view text) const;
    // System log lines since the mark as "<facility>.<level> <message>"; with a priority given,
    // only the messages of that priority.
    std::vector<std::string> Messages(std::string_view priority = {}) const;
    // The host tools' runs, oldest first: of `tool`, each as its arguments joined by blanks;
    // with no tool given, every run as "<tool> <args...>".
    std::vector<std::string> ToolRuns(std::string_view tool = {}) const;
    // Waits until a line of the record since the mark contains `text`.
    ::testing::AssertionResult WaitForLine(Record record, std::string_view text,
                                           Duration timeout = 10s) const;

private:
    std::string parent_; // the temporary folder that holds the root
    std::string root_;
    std::optional<std::string> previous_; // LANYX_HOST_ROOT before
    std::size_t marks_[3] = {};
};

// Polls `condition` every few milliseconds until it holds or the deadline passes.
bool PollUntil(const std::function<bool()>& condition, Duration timeout);

// A test with a simulated host of its own; Create makes another in place of the one before.
class HostTest : public ::testing::Test {
protected:
    HostRoot& Create(const std::string& profile = "default") {
        host_.reset();
        host_ = std::make_unique<HostRoot>(profile);
        return *host_;
    }
    HostRoot& Host() const { return *host_; }

private:
    std::unique_ptr<HostRoot> host_;
};

// One root for a whole test program, made before the first test and removed after the last.
class ProgramHost : public ::testing::Environment {
public:
    explicit ProgramHost(std::string profile) : profile_(std::move(profile)) {}
    void SetUp() override;
    void TearDown() override { host_.reset(); }
    HostRoot& Host() { return *host_; }
    // Puts back the state the root was made with, changed by `change`, and marks the records.
    void Reset(const std::function<void(nlohmann::json&)>& change = {});

private:
    std::string profile_;
    std::unique_ptr<HostRoot> host_;
    nlohmann::json initial_;
};

// Registers the program's root; call at namespace scope.
ProgramHost* AddProgramHost(const std::string& profile = "");

} // namespace LanyxTest
