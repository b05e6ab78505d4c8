// A fresh simulated host for one test: made by `hostsim create`, removed afterwards unless
// the test failed (then its path is printed, so the records can be read).
#pragma once
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "harness/Process.hpp"

namespace LanyxE2E {

// Paths of the built programs (compile definitions of the harness library).
std::string LanyxBinary();
std::string HostsimBinary();
std::string BuildDir();

// The record files of the simulated host.
enum class Record { Syslog, Notad, Audit };

class HostRoot {
public:
    explicit HostRoot(std::string profile = "default");
    ~HostRoot();
    HostRoot(const HostRoot&) = delete;
    HostRoot& operator=(const HostRoot&) = delete;

    // The root folder, absolute, without a trailing slash.
    const std::string& Path() const { return root_; }
    // A host path under the root: "/var/run/lanyx.pid" -> "<root>/var/run/lanyx.pid".
    std::string File(std::string_view hostPath) const;
    std::string RecordPath(Record record) const;

    // `hostsim <command> <root> <args...>`; the result is returned, failures are not judged.
    ProcessResult Hostsim(const std::string& command, const std::vector<std::string>& args = {}) const;
    // `hostsim set <root> name value`; a failure fails the test.
    void Set(const std::string& name, const std::string& value) const;
    // `hostsim fault <root> args...`; a failure fails the test.
    void Fault(const std::vector<std::string>& args) const;
    // The state document as `hostsim state` prints it.
    std::string State() const;

    // Whole file under the root ("" when missing) and its lines.
    std::string ReadFile(std::string_view hostPath) const;
    void WriteFile(std::string_view hostPath, std::string_view content) const;
    std::vector<std::string> Lines(Record record) const;
    // Lines of the record that contain `text`.
    std::vector<std::string> Matching(Record record, std::string_view text) const;

    // Waits until a line of the record contains `text`, checking every few milliseconds.
    ::testing::AssertionResult WaitForLine(Record record, std::string_view text, Duration timeout = 10s) const;

    // Keep the folder even when the test passes.
    void Keep() { keep_ = true; }

private:
    std::string parent_; // the temporary folder that holds the root
    std::string root_;
    bool keep_ = false;
};

// Polls `condition` every few milliseconds until it holds or the deadline passes.
bool PollUntil(const std::function<bool()>& condition, Duration timeout);

const char* RecordName(Record record);

} // namespace LanyxE2E
