#include "harness/HostRoot.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include <poll.h>

namespace LanyxE2E {

namespace fs = std::filesystem;

std::string LanyxBinary() { return LANYX_E2E_LANYX; }
std::string HostsimBinary() { return LANYX_E2E_HOSTSIM; }
std::string BuildDir() { return LANYX_E2E_BUILD_DIR; }

const char* RecordName(Record record)
{
    switch (record) {
    case Record::Syslog:
        return "/var/log/syslog.log";
    case Record::Notad:
        return "/var/log/notad.log";
    case Record::Audit:
        return "/var/log/audit.log";
    }
    return "";
}

bool PollUntil(const std::function<bool()>& condition, Duration timeout)
{
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        if (condition())
            return true;
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        poll(nullptr, 0, 10);
    }
}

HostRoot::HostRoot(std::string profile)
{
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/lanyx-e2e-XXXXXX";
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("cannot make a temporary folder from " + pattern);
    parent_ = fs::canonical(pattern).string();
    root_ = parent_ + "/root";
    const std::vector<std::string> argv{HostsimBinary(), "create", root_, "--profile", profile};
    const ProcessResult made = RunProcess(argv, 60s);
    if (!made.Succeeded()) {
        keep_ = true;
        throw std::runtime_error(JoinCommand(argv) + " failed (" +
                                 (made.timedOut ? std::string("timed out") : made.exit.Describe()) +
                                 "):\n" + made.output);
    }
}

HostRoot::~HostRoot()
{
    if (keep_ || ::testing::Test::HasFailure()) {
        std::cerr << "host root kept for inspection: " << root_ << std::endl;
        return;
    }
    std::error_code ignored;
    fs::remove_all(parent_, ignored);
}

std::string HostRoot::File(std::string_view hostPath) const
{
    return root_ + std::string(hostPath);
}

std::string HostRoot::RecordPath(Record record) const { return File(RecordName(record)); }

ProcessResult HostRoot::Hostsim(const std::string& command, const std::vector<std::string>& args) const
{
    std::vector<std::string> argv{HostsimBinary(), command, root_};
    argv.insert(argv.end(), args.begin(), args.end());
    return RunProcess(argv, 30s);
}

void HostRoot::Set(const std::string& name, const std::string& value) const
{
    const ProcessResult r = Hostsim("set", {name, value});
    EXPECT_TRUE(r.Succeeded()) << "hostsim set " << name << " " << value << ": " << r.exit.Describe() << "\n"
                               << r.output;
}

void HostRoot::Fault(const std::vector<std::string>& args) const
{
    const ProcessResult r = Hostsim("fault", args);
    EXPECT_TRUE(r.Succeeded()) << "hostsim fault " << JoinCommand(args) << ": " << r.exit.Describe() << "\n"
                               << r.output;
}

std::string HostRoot::State() const
{
    const ProcessResult r = Hostsim("state");
    EXPECT_TRUE(r.Succeeded()) << "hostsim state: " << r.exit.Describe() << "\n" << r.output;
    return r.output;
}

std::string HostRoot::ReadFile(std::string_view hostPath) const
{
    std::ifstream in(File(hostPath), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void HostRoot::WriteFile(std::string_view hostPath, std::string_view content) const
{
    const fs::path path = File(hostPath);
    fs::create_directories(path.parent_path());
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!out)
        throw std::runtime_error("cannot write " + path.string());
}

std::vector<std::string> HostRoot::Lines(Record record) const
{
    std::vector<std::string> lines;
    std::istringstream in(ReadFile(RecordName(record)));
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> HostRoot::Matching(Record record, std::string_view text) const
{
    std::vector<std::string> found;
    for (auto& line : Lines(record))
        if (line.find(text) != std::string::npos)
            found.push_back(std::move(line));
    return found;
}

::testing::AssertionResult HostRoot::WaitForLine(Record record, std::string_view text, Duration timeout) const
{
    if (PollUntil([&] { return !Matching(record, text).empty(); }, timeout))
        return ::testing::AssertionSuccess();
    auto failure = ::testing::AssertionFailure();
    failure << "no line containing \"" << text << "\" in " << RecordPath(record) << " within " << timeout.count()
            << " ms; the file holds:\n";
    for (const auto& line : Lines(record))
        failure << "  " << line << "\n";
    return failure;
}

} // namespace LanyxE2E
