#include "HostRoot.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include <poll.h>

#include "store/StateStore.hpp"

namespace LanyxTest {

namespace fs = std::filesystem;

std::string HostsimBinary() {
    return LANYX_TEST_HOSTSIM;
}

const char* RecordPath(Record record) {
    static const char* const paths[] = {"/var/log/syslog.log", "/var/log/notad.log",
                                        "/var/log/audit.log"};
    return paths[static_cast<int>(record)];
}

bool PollUntil(const std::function<bool()>& condition, Duration timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        if (condition())
            return true;
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        poll(nullptr, 0, 5);
    }
}

HostRoot::HostRoot(const std::string& profile) {
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/lanyx-test-XXXXXX";
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("cannot make a temporary folder from " + pattern);
    parent_ = fs::canonical(pattern).string();
    root_ = parent_ + "/root";
    if (profile.empty()) {
        for (const char* folder : {"/var/log", "/var/lib/hostsim", "/var/run", "/tmp"})
            fs::create_directories(root_ + folder);
    } else {
        const std::vector<std::string> argv{HostsimBinary(), "create", root_, "--profile", profile};
        const ProcessResult made = RunProcess(argv, 60s);
        if (!made.Succeeded())
            throw std::runtime_error(
                JoinCommand(argv) + " failed (" +
                (made.timedOut ? std::string("timed out") : made.exit.Describe()) + "):\n" +
                made.output);
    }
    if (const char* previous = std::getenv("LANYX_HOST_ROOT"))
        previous_ = previous;
    setenv("LANYX_HOST_ROOT", root_.c_str(), 1);
    Mark();
}

HostRoot::~HostRoot() {
    if (previous_)
        setenv("LANYX_HOST_ROOT", previous_->c_str(), 1);
    else
        unsetenv("LANYX_HOST_ROOT");
    if (::testing::Test::HasFailure()) {
        std::cerr << "host root kept for inspection: " << root_ << std::endl;
        return;
    }
    std::error_code ignored;
    fs::remove_all(parent_, ignored);
}

std::string HostRoot::File(std::string_view hostPath) const {
    return root_ + std::string(hostPath);
}

ProcessResult HostRoot::Hostsim(const std::string& command,
                                const std::vector<std::string>& args) const {
    std::vector<std::string> argv{HostsimBinary(), command, root_};
    argv.insert(argv.end(), args.begin(), args.end());
    return RunProcess(argv, 30s);
}

// A hostsim command whose failure fails the test.
static void Checked(const HostRoot& root, const std::string& command,
                    const std::vector<std::string>& args) {
    const ProcessResult r = root.Hostsim(command, args);
    EXPECT_TRUE(r.Succeeded()) << "hostsim " << command << " " << JoinCommand(args) << ": "
                               << r.exit.Describe() << "\n"
                               << r.output;
}

void HostRoot::Set(const std::string& name, const std::string& value) const {
    Checked(*this, "set", {name, value});
}

void HostRoot::Fault(const std::vector<std::string>& args) const {
    Checked(*this, "fault", args);
}

void HostRoot::LibFault(const std::string& operation, const std::string& text) const {
    Edit([&](nlohmann::json& state) { state["faults"]["lib"][operation] = text; });
}

nlohmann::json HostRoot::State() const {
    return HostSim::StateStore(root_).Read();
}

void HostRoot::Edit(const std::function<void(nlohmann::json&)>& change) const {
    HostSim::StateStore(root_).Update(change);
}

std::string HostRoot::Read(std::string_view hostPath) const {
    std::ifstream in(File(hostPath), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void HostRoot::Write(std::string_view hostPath, std::string_view content) const {
    const fs::path path = File(hostPath);
    fs::create_directories(path.parent_path());
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!out.flush())
        throw std::runtime_error("cannot write " + path.string());
}

void HostRoot::WriteScript(std::string_view hostPath, const std::string& body) const {
    Write(hostPath, "#!/bin/sh\n" + body + "\n");
    fs::permissions(File(hostPath),
                    fs::perms::owner_all | fs::perms::group_exec | fs::perms::others_exec,
                    fs::perm_options::add);
}

void HostRoot::Remove(std::string_view hostPath) const {
    std::error_code ignored;
    fs::remove(File(hostPath), ignored);
}

void HostRoot::Mark() {
    for (Record record : {Record::Syslog, Record::Notad, Record::Audit}) {
        std::error_code missing;
        const auto size = fs::file_size(File(RecordPath(record)), missing);
        marks_[static_cast<int>(record)] = missing ? 0 : size;
    }
}

std::vector<std::string> HostRoot::Lines(Record record) const {
    std::vector<std::string> lines;
    const std::string text = Read(RecordPath(record));
    // A record rewritten shorter than the mark is read whole.
    const std::size_t mark = marks_[static_cast<int>(record)];
    std::istringstream in(mark <= text.size() ? text.substr(mark) : text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> HostRoot::Matching(Record record, std::string_view text) const {
    std::vector<std::string> found;
    for (auto& line : Lines(record))
        if (line.find(text) != std::string::npos)
            found.push_back(std::move(line));
    return found;
}

std::vector<std::string> HostRoot::Messages(std::string_view priority) const {
    std::vector<std::string> messages;
    for (const std::string& line : Lines(Record::Syslog)) {
        // "<stamp> <facility>.<level> <ident>[<pid>]: <message>"
        const auto level = line.find(' ') + 1;
        const auto ident = line.find(' ', level);
        const auto message = line.find("]: ", ident);
        if (level == 0 || ident == std::string::npos || message == std::string::npos)
            continue;
        const std::string_view lineLevel(line.data() + level, ident - level);
        if (priority.empty())
            messages.push_back(std::string(lineLevel) + " " + line.substr(message + 3));
        else if (lineLevel == priority)
            messages.push_back(line.substr(message + 3));
    }
    return messages;
}

::testing::AssertionResult HostRoot::WaitForLine(Record record, std::string_view text,
                                                 Duration timeout) const {
    if (PollUntil([&] { return !Matching(record, text).empty(); }, timeout))
        return ::testing::AssertionSuccess();
    auto failure = ::testing::AssertionFailure();
    failure << "no line containing \"" << text << "\" in " << File(RecordPath(record)) << " within "
            << timeout.count() << " ms; since the mark it holds:\n";
    for (const auto& line : Lines(record))
        failure << "  " << line << "\n";
    return failure;
}

void ProgramHost::SetUp() {
    host_ = std::make_unique<HostRoot>(profile_);
    if (!profile_.empty())
        initial_ = host_->State();
}

std::vector<std::string> HostRoot::ToolRuns(std::string_view tool) const {
    std::vector<std::string> runs;
    for (const nlohmann::json& record : State().value("toolRecords", nlohmann::json::array())) {
        const std::string name = record.value("tool", "");
        if (!tool.empty() && name != tool)
            continue;
        std::string line = tool.empty() ? name : "";
        for (const nlohmann::json& arg : record.value("args", nlohmann::json::array()))
            line += (line.empty() ? "" : " ") + arg.get<std::string>();
        runs.push_back(line);
    }
    return runs;
}

void ProgramHost::Reset(const std::function<void(nlohmann::json&)>& change) {
    host_->Edit([&](nlohmann::json& state) {
        state = initial_;
        if (change)
            change(state);
    });
    host_->Mark();
}

ProgramHost* AddProgramHost(const std::string& profile) {
    return static_cast<ProgramHost*>(::testing::AddGlobalTestEnvironment(new ProgramHost(profile)));
}

} // namespace LanyxTest
