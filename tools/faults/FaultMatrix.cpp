// The fault matrix: each scenario brings a screen up and presses the keys that make it call the
// host. A first run with the host's call trace on learns which library operations and tools
// those keys reach; then each operation is made to throw, and each tool to exit with status 1,
// to print garbage and to hang, one at a time, each on a fresh host. Every run must leave the
// console alive (running, or ended with status 0), free of sanitizer reports, reading keys again
// within the tool's time-out or in a wait that is its answer, and on its way back to the welcome
// screen by Esc.
//
//     lanyx_faults [--short] [--only SCENARIO] [--trace] [--doc FILE]
//
// --short: the scenarios marked for it, with their one operation and one tool; --trace: the
// traced runs alone, with their calls; --doc: the table as Markdown too.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "harness/Session.hpp"

using namespace LanyxE2E;

namespace {

using Clock = std::chrono::steady_clock;

// Keys of the tables; a plain text of more than one character is typed.
const std::string kEsc(Keys::Escape), kEnter(Keys::Enter), kDown(Keys::Down), kRight(Keys::Right),
    kSpace(" "), kF2(Keys::F(2)), kF11(Keys::F(11));
const std::string kNewPassword = "Fault-Pass9";

// A key, sent only while `when` is on the screen when that is given: a key answers a question
// that a failure may leave out.
struct Key {
    std::string bytes, when;
    Key(std::string key, std::string shown = "") : bytes(std::move(key)), when(std::move(shown)) {}
    Key(const char* key) : bytes(key) {}
};

const std::vector<Key> kLogIn = {"root", kEnter, kRootPassword, kEnter};
const Key kYes{"y", "Apply changes"};

struct Scenario {
    std::string name;
    std::string what; // the keys in words, for the table
    std::string profile;
    std::vector<std::string> steps; // Session::Walk
    std::vector<Key> prepare{}, trigger{};
    std::string done{};    // shown once a screen that reads keys meanwhile has ended
    std::string escapes{}; // the title of a box that Esc closes while its tools run
    SessionOptions options{};
    std::string shortOperation{}, shortTool{}; // what --short takes of this scenario
};

const SessionOptions kFastPing{.prepare = [](HostRoot& host) {
    host.Edit([](nlohmann::json& state) { state["ping"]["intervalMs"] = 100; });
}};

// clang-format off
const std::vector<Scenario> kScenarios = {
    {"welcome", "a key reloads the welcome screen", "default", {}, {}, {kSpace}},
    {"login", "name and password in the login box", "default", {"@f2"}, {},
     {"root", kEnter, kRootPassword, kEnter}, "", "", {}, "NetworkInfoImpl::GetManagementInterface"},
    {"menu", "Down through the System Customization menu", "default", {"@login"}, {},
     {kDown, kDown, kDown, kDown, kDown, kDown, kDown, kDown, kDown, kDown, kDown}},
    {"network", "Configure Management Network opened and left", "default",
     {"@login", "=Configure Management Network"}, {}, {kEnter, kEsc}},
    {"adapters", "Network Adapters opened and left", "default",
     {"@login", "Configure Management Network", "=Network Adapters"}, {}, {kEnter, kEsc}},
    {"apply-ipv4", "a new static address applied", "default",
     {"@login", "Configure Management Network", "IPv4 Configuration"},
     {kDown, kDown, kDown, "192.168.10.30", kEnter}, {kEsc, kYes}, "", "", {},
     "TesselNicImpl::SetIpConfig"},
    {"apply-vlan", "a VLAN applied", "default",
     {"@login", "Configure Management Network", "VLAN (optional)"}, {"42", kEnter}, {kEsc, kYes}},
    {"apply-dns", "a host name applied", "default",
     {"@login", "Configure Management Network", "DNS Configuration"},
     {kDown, kDown, "fault-host", kEnter}, {kEsc, kYes}},
    {"restart-network", "Restart Management Network opened, F11", "default",
     {"@login", "=Restart Management Network"}, {}, {kEnter, {kF11, "Restart management network now?"}},
     "<Enter> OK", "", {}, "TesselNicImpl::Enable"},
    {"test-network", "Test Management Network opened, Enter", "default",
     {"@login", "=Test Management Network"}, {}, {kEnter, {kEnter, "Ping Address #1:"}},
     "<Enter> OK", "Testing Management Network", kFastPing},
    {"factory-restore", "Restore Network Settings on a stranded host, VMs powered off",
     "fabric-broken", {"@login", "Network Restore Options", "=Restore Network Settings"}, {},
     {kEnter, kF11, {kEnter, "Warning: VMs running"}}, "<Enter> OK"},
    {"safe-mode", "Restore Standard Switch on a stranded host", "fabric-broken",
     {"@login", "Network Restore Options", "=Restore Standard Switch"}, {}, {kEnter, kF11}},
    {"fabric-restore", "Restore fabric, without uplinks", "fabric-misconfigured",
     {"@login", "Network Restore Options", "=Restore fabric"}, {},
     {kEnter, kF11, {kEnter, "No uplinks were selected."}}},
    {"new-switch", "Create Standard Switch with a free uplink", "no-standard-switch",
     {"@login", "Network Restore Options", "=Create Standard Switch"}, {},
     {kEnter, "backup", kDown, kSpace, kEnter}},
    {"port-group", "Create Port Group", "default",
     {"@login", "Network Restore Options", "=Create Port Group"}, {}, {kEnter, "Storage", kEnter}},
    // Enter on the outcome too: the agent is started again as the screen closes.
    {"migrate-nic", "Migrate Tessel NIC to Standard Switch, its outcome closed", "gridmesh",
     {"@login", "Network Restore Options", "=Migrate Tessel NIC to Standard Switch"}, {},
     {kEnter, kRight, kEnter, {kEnter, "Operation"}}, "", "", {.cols = 100}},
    {"shell-ssh", "Ostra Shell and SSH switched on", "default",
     {"@login", "Troubleshooting Options"}, {}, {kEnter, kDown, kEnter}},
    {"shell-timeouts", "both shell time-outs changed", "default",
     {"@login", "Troubleshooting Options", "=Modify Ostra Shell and SSH"}, {},
     {kEnter, "30", kDown, "20", kEnter}},
    {"idle-timeout", "the console's idle time-out changed", "default",
     {"@login", "Troubleshooting Options", "=Modify LANYX idle timeout"}, {}, {kEnter, "25", kEnter}},
    {"restart-agents", "Restart Management Agents with a live core, F11", "default",
     {"@login", "Troubleshooting Options", "=Restart Management Agents"}, {},
     {kEnter, kSpace, kF11}, "<Enter> OK"},
    {"password", "a new password set", "default", {"@login", "=Configure Password"}, {},
     {kEnter, kRootPassword, kEnter, kNewPassword, kEnter, kNewPassword, kEnter}},
    {"lockdown", "lockdown mode switched on", "default", {"@login", "=Configure Lockdown Mode"}, {},
     {kEnter, {kSpace, "Enable lockdown mode"}, {kEnter, "Enable lockdown mode"}}, "", "", {}, "",
     "helmq"},
    {"keyboard", "another keyboard layout chosen", "default", {"@login", "=Configure Keyboard"},
     {}, {kEnter, kDown, kSpace, kEnter}, "", "", {.term = "xterm"}},
    {"shutdown", "F2 in the shutdown dialog behind F12", "default", {"@f12"}, kLogIn, {kF2}},
    {"restart", "F11 in the shutdown dialog behind F12", "default", {"@f12"}, kLogIn, {kF11}},
    {"reset", "Reset System Configuration, F11, then Enter to restart", "default",
     {"@login", "=Reset System Configuration"}, {},
     {kEnter, kF11, {kEnter, "Default settings are restored."}}},
};
// clang-format on

// Screens that stop at a text on purpose: the host is going down.
const std::vector<std::string> kEndlessWaits = {"Shutdown in progress...", "Restart in progress...",
                                                "Default settings are restored."};

// The time-outs the console gives its tools (host/CommandRunner.cpp): the helmq queries alone;
// every other run waits for its tool.
struct ToolTimeout {
    std::string tool, argument;
    int seconds;
};
const std::vector<ToolTimeout> kTimeouts = {{"helmq", "helmsvc/auth/lockdown_is_", 120}};

// A hang behind a time-out is waited for on an accelerated clock: this many seconds a second.
constexpr int kSpeed = 50;
// What a run may take beyond the time-outs, sanitizers and a busy machine included.
constexpr auto kMargin = 30s;
// How long the console must stand beside a hung tool before it counts as waiting for it.
constexpr auto kStandStill = 3s;

// Printf and markup directives, a control character, letters no parser expects and more than a
// capture holds; valid UTF-8, as the host state keeps it.
const std::string kGarbage =
    "%s%n%x{color:red}\x01\u00ff\u202e not what was asked " + std::string(300, '#');

enum class Kind { None, Lib, Exit, Garbage, Hang };

struct Fault {
    Kind kind = Kind::None;
    std::string name; // the operation or tool

    std::string Label() const {
        switch (kind) {
        case Kind::None:
            return "none";
        case Kind::Lib:
            return name + " throws";
        case Kind::Exit:
            return name + " exits 1";
        case Kind::Garbage:
            return name + " prints garbage";
        case Kind::Hang:
            return name + " hangs";
        }
        return "";
    }
    // The words behind `hostsim fault DIR`. An empty text throws "<operation> failed".
    std::vector<std::string> Args() const {
        switch (kind) {
        case Kind::Lib:
            return {"lib", name, ""};
        case Kind::Exit:
            return {"tool", name, "exit", "1"};
        case Kind::Garbage:
            return {"tool", name, "output", kGarbage};
        case Kind::Hang:
            return {"tool", name, "hang"};
        default:
            return {};
        }
    }
};

// What the traced run of a scenario's keys reached, in the order of first calls.
struct Trace {
    std::vector<std::string> operations, tools;
    std::vector<std::string> runs; // "tool args..."
};

// Where a run stands: reading keys, waiting for the host to go down (it reads no more keys),
// ended, waiting for a hung tool run without time-out, or none of these in time.
enum class State { Reading, Down, Ended, Tool, Stuck };

struct Outcome {
    std::string result{}, shown{}, log{};
    std::string failure{}; // empty when the console did what it may
};

std::string Joined(const std::vector<std::string>& parts, const std::string& separator) {
    std::string text;
    for (const std::string& part : parts)
        text += (text.empty() ? "" : separator) + part;
    return text;
}

// At most `length` bytes, never inside a UTF-8 sequence.
std::string Cut(std::string text, size_t length) {
    if (text.size() <= length)
        return text;
    size_t end = length - 3;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end) + "...";
}

void AddOnce(std::vector<std::string>& list, const std::string& item) {
    if (std::find(list.begin(), list.end(), item) == list.end())
        list.push_back(item);
}

// Processes of the root's tools (of `tool` alone when given): pid and "tool args...".
std::vector<std::pair<pid_t, std::string>> ToolProcesses(const std::string& root,
                                                         const std::string& tool = "") {
    std::vector<std::pair<pid_t, std::string>> found;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
        const std::string pid = entry.path().filename();
        if (pid.find_first_not_of("0123456789") != std::string::npos)
            continue;
        std::ifstream in(entry.path() / "cmdline");
        std::vector<std::string> argv;
        for (std::string arg; std::getline(in, arg, '\0');)
            argv.push_back(arg);
        // hostsim-tool --root ROOT NAME ARGS...
        if (argv.size() < 4 || argv[1] != "--root" || argv[2] != root ||
            (!tool.empty() && argv[3] != tool))
            continue;
        found.emplace_back(std::stoi(pid),
                           Joined(std::vector<std::string>(argv.begin() + 3, argv.end()), " "));
    }
    return found;
}

// Whether a process has children: a console that waits for none is not running a tool.
bool HasChildren(pid_t pid) {
    std::error_code error;
    const std::string tasks = "/proc/" + std::to_string(pid) + "/task";
    for (const auto& task : std::filesystem::directory_iterator(tasks, error)) {
        std::ifstream children(task.path() / "children");
        if (std::string child; children >> child)
            return true;
    }
    return false;
}

// The time-out of a tool run ("tool args..."), 0 for none.
int TimeoutOf(const std::string& run) {
    for (const ToolTimeout& timeout : kTimeouts)
        if (run.starts_with(timeout.tool + " ") && run.find(timeout.argument) != std::string::npos)
            return timeout.seconds;
    return 0;
}

// Seconds of time-out ahead of the runs of `tool` in the trace.
int TimedSeconds(const Trace& trace, const std::string& tool) {
    int seconds = 0;
    for (const std::string& run : trace.runs)
        if (run.starts_with(tool + " "))
            seconds += TimeoutOf(run);
    return seconds;
}

// The topmost box on the screen (the smallest whole one off the left edge): its text, title
// first, and its footer.
struct Box {
    std::string text, footer;
};

Box TopBox(const Console& console) {
    int best = -1, top = 0, left = 0, bottom = 0, right = 0;
    for (int row = 0; row < console.Rows(); ++row) {
        for (int col = 1; col < console.Cols(); ++col) {
            if (console.CellAt(row, col).text != "┌")
                continue;
            int r = col + 1, b = row + 1;
            while (r < console.Cols() && console.CellAt(row, r).text == "─")
                ++r;
            while (b < console.Rows() && console.CellAt(b, col).text == "│")
                ++b;
            if (r >= console.Cols() || b >= console.Rows() || console.CellAt(row, r).text != "┐" ||
                console.CellAt(b, col).text != "└")
                continue;
            const int area = (r - col) * (b - row);
            if (best < 0 || area < best)
                std::tie(best, top, left, bottom, right) = std::tuple(area, row, col, b, r);
        }
    }
    Box box;
    if (best < 0)
        return box;
    std::vector<std::string> lines;
    for (int row = top + 1; row < bottom; ++row) {
        std::string line;
        // Runs of blanks inside a line are layout.
        for (char c : console.Text(row, left + 1, right - left - 1))
            if (c != ' ' || (!line.empty() && line.back() != ' '))
                line += c;
        if (!line.empty() && !line.starts_with("─"))
            lines.push_back(line);
    }
    if (!lines.empty() && lines.back().find('<') != std::string::npos) {
        box.footer = lines.back();
        lines.pop_back();
    }
    if (!lines.empty()) {
        box.text = lines.front();
        lines.erase(lines.begin());
        if (!lines.empty())
            box.text += ": " + Joined(lines, " ");
    }
    return box;
}

std::string ShownWait(const Console& console) {
    for (const std::string& text : kEndlessWaits)
        if (console.Find(text))
            return text;
    return "";
}

class Matrix {
public:
    bool onlyTrace = false;
    std::vector<std::pair<const Scenario*, std::vector<std::pair<Fault, Outcome>>>> table;
    int failures = 0;

    void Run(const Scenario& scenario, bool shortRun) {
        std::vector<std::pair<Fault, Outcome>> rows;
        Trace trace;
        rows.emplace_back(Fault{}, RunOne(scenario, Fault{}, trace, &trace));
        if (onlyTrace) {
            std::cout << "  operations: " << Joined(trace.operations, " ")
                      << "\n  tools: " << Joined(trace.runs, "; ") << "\n";
        }
        std::vector<Fault> faults;
        if (shortRun) {
            if (!scenario.shortOperation.empty())
                faults.push_back({Kind::Lib, scenario.shortOperation});
            if (!scenario.shortTool.empty()) {
                faults.push_back({Kind::Exit, scenario.shortTool});
                faults.push_back({Kind::Hang, scenario.shortTool});
            }
        } else if (!onlyTrace) {
            for (const std::string& operation : trace.operations)
                faults.push_back({Kind::Lib, operation});
            for (const std::string& tool : trace.tools)
                for (Kind kind : {Kind::Exit, Kind::Garbage, Kind::Hang})
                    faults.push_back({kind, tool});
        }
        for (const Fault& fault : faults) {
            const bool called =
                fault.kind == Kind::Lib
                    ? std::count(trace.operations.begin(), trace.operations.end(), fault.name)
                    : std::count(trace.tools.begin(), trace.tools.end(), fault.name);
            if (!called) {
                Outcome missing{.failure = "not called by these keys"};
                Report(scenario, fault, missing);
                rows.emplace_back(fault, missing);
                continue;
            }
            rows.emplace_back(fault, RunOne(scenario, fault, trace, nullptr));
        }
        table.emplace_back(&scenario, std::move(rows));
    }

private:
    // One run on a fresh host; with `learn`, the run with the trace on, which fills it.
    Outcome RunOne(const Scenario& scenario, const Fault& fault, const Trace& trace, Trace* learn) {
        SessionOptions options = scenario.options;
        const int timed = fault.kind == Kind::Hang ? TimedSeconds(trace, fault.name) : 0;
        if (timed > 0) {
            options.faketime = "+0 x" + std::to_string(kSpeed);
            options.settings.push_back({"lanyx-timeout", "0"});
        }
        const auto bound = kMargin + std::chrono::seconds(timed / kSpeed + 1);
        Session s(scenario.profile, options);
        Console& console = s.Screen();
        HostRoot& host = s.Host();
        Outcome outcome;
        if (auto reached = s.Walk(scenario.steps); !reached) {
            outcome.failure = "screen not reached: " + Cut(reached.message(), 2000);
            return Finish(scenario, fault, s, outcome);
        }
        if (!Press(s, scenario.prepare, bound)) {
            outcome.failure = "keys before the fault not taken:\n" + console.Describe();
            return Finish(scenario, fault, s, outcome);
        }
        host.Mark();
        if (const auto set = host.Hostsim("fault", learn ? std::vector<std::string>{"trace", "on"}
                                                         : fault.Args());
            !set.Succeeded()) {
            outcome.failure = "fault not set: " + set.output;
            return Finish(scenario, fault, s, outcome);
        }

        Press(s, scenario.trigger, bound, fault);
        State state = Settle(s, scenario.done, fault, bound);
        std::vector<std::string> result;
        if (fault.kind == Kind::Hang &&
            !host.Matching(Record::Syslog, "Killing process because").empty())
            result.push_back(fault.name + " killed at its time-out");
        if (state == State::Tool && !scenario.escapes.empty()) {
            // Its keys stay live beside its tools: Esc must close it now.
            s.Screen().Send(kEsc);
            if (s.Screen().WaitForTextGone(scenario.escapes, kMargin))
                result.push_back("Esc closes it while " + fault.name + " hangs");
            else
                outcome.failure = "Esc does not close it while " + fault.name + " hangs";
        } else if (state == State::Tool) {
            result.push_back("waits for " + fault.name + " (no time-out) until it is killed");
        }
        if (state == State::Tool) {
            host.Fault({"clear"});
            KillTools(host.Path(), fault.name);
            state = Settle(s, scenario.done, Fault{}, kMargin);
        }
        if (learn) {
            host.Fault({"trace", "off"});
            Learn(host, *learn);
            if (onlyTrace)
                std::cout << "  log: " << Joined(host.Messages(), "\n       ") << "\n";
        }
        outcome.log = Logged(host);
        if (state == State::Ended) {
            const ExitInfo exit = *console.Exit();
            if (!exit.Exited() || exit.Code() != 0)
                outcome.failure = "crash: " + exit.Describe();
            else if (host.Matching(Record::Syslog, "LANYX aborted by exception: ").empty())
                result.push_back("ends with status 0");
            else
                result.push_back("ends by the top-level handler");
        } else if (state == State::Stuck) {
            outcome.failure =
                "no key read within " + std::to_string(std::chrono::seconds(bound).count()) + " s";
            for (const auto& [pid, run] : ToolProcesses(host.Path()))
                outcome.failure += "; " + run + " still runs";
        } else {
            outcome.shown = TopBox(console).text;
            result.push_back(ShownWait(console).empty() ? "on" : "waits: host going down");
            if (const std::string back = Return(s); !back.empty())
                outcome.failure = back;
        }
        outcome.result = Joined(result, ", ");
        return Finish(scenario, fault, s, outcome);
    }

    // Sends keys, each once the console reads; stops at the first it does not read in time.
    bool Press(Session& s, const std::vector<Key>& keys, Duration bound, const Fault& fault = {}) {
        for (const Key& key : keys) {
            if (Settle(s, "", fault, bound) != State::Reading)
                return false;
            if (!key.when.empty() && !s.Screen().Find(key.when))
                continue;
            const bool typed = key.bytes.size() > 1 && key.bytes[0] != '\x1b';
            if (!(typed ? s.Type(key.bytes) : s.Key(key.bytes)))
                return false;
        }
        return true;
    }

    // Waits until the console reads keys (with `done` shown, when given), ends, stands at a host
    // going down, waits for a hung tool that has no time-out, or the bound passes.
    State Settle(Session& s, const std::string& done, const Fault& fault, Duration bound) {
        Console& console = s.Screen();
        const auto deadline = Clock::now() + bound;
        // Zero while the console does not stand beside a hung tool (an optional here trips
        // a false maybe-uninitialized warning at -O2).
        Clock::time_point waitingSince{};
        for (;;) {
            console.Pump();
            if (!console.Running())
                return State::Ended;
            const bool reading = static_cast<bool>(console.WaitUntilReading(100ms));
            if (reading && (done.empty() || console.Find(done) || !ShownWait(console).empty()))
                return State::Reading;
            if (!reading && !ShownWait(console).empty() && !HasChildren(console.Pid()))
                return State::Down;
            // A hung run counts once the console has stood still beside it for a while: a tool
            // that hangs on another thread leaves the main thread running other tools meanwhile.
            const auto hung = ToolProcesses(s.Host().Path(), fault.name);
            const bool waits = fault.kind == Kind::Hang && !reading && !hung.empty() &&
                               std::none_of(hung.begin(), hung.end(),
                                            [](const auto& p) { return TimeoutOf(p.second) > 0; });
            if (!waits)
                waitingSince = {};
            else if (waitingSince == Clock::time_point{})
                waitingSince = Clock::now();
            else if (Clock::now() - waitingSince >= kStandStill)
                return State::Tool;
            if (Clock::now() >= deadline)
                return reading ? State::Reading : State::Stuck;
        }
    }

    // Esc back to the welcome screen (Enter on a box that waits for it, N to a question). Empty
    // when it worked, else what went wrong.
    std::string Return(Session& s) {
        Console& console = s.Screen();
        s.Host().Fault({"clear"});
        KillTools(s.Host().Path());
        for (int keys = 0; keys < 12; ++keys) {
            if (const State state = Settle(s, "", Fault{}, kMargin); state == State::Down)
                return "";
            else if (state != State::Reading)
                return state == State::Ended ? "ends on the way back" : "stuck on the way back";
            const Box box = TopBox(console);
            if (!ShownWait(console).empty() || (console.Find(kWelcomeReady) && box.text.empty()))
                return "";
            const bool question = box.footer.find("<N> No") != std::string::npos;
            const bool enterOnly = box.footer.find("<Enter> OK") != std::string::npos &&
                                   box.footer.find("<Esc>") == std::string::npos;
            s.Key(question ? "n" : enterOnly ? kEnter : kEsc);
        }
        return "Esc does not lead back:\n" + console.Describe();
    }

    // Kills the runs of the root's tools (of `tool` alone, when given) that are there now, and
    // waits for them to go; runs the console starts afterwards are left alone.
    static void KillTools(const std::string& root, const std::string& tool = "") {
        const auto running = ToolProcesses(root, tool);
        for (const auto& [pid, run] : running)
            ::kill(pid, SIGKILL);
        for (int round = 0; round < 100; ++round) {
            if (std::none_of(running.begin(), running.end(), [](const auto& p) {
                    return std::filesystem::exists("/proc/" + std::to_string(p.first));
                }))
                return;
            std::this_thread::sleep_for(50ms);
        }
    }

    static void Learn(const HostRoot& host, Trace& trace) {
        std::istringstream calls(host.Read("/var/lib/hostsim/calls.log"));
        for (std::string line; std::getline(calls, line);) {
            if (line.starts_with("lib ")) {
                AddOnce(trace.operations, line.substr(4));
            } else if (line.starts_with("tool ")) {
                trace.runs.push_back(line.substr(5));
                AddOnce(trace.tools, line.substr(5, line.find(' ', 5) - 5));
            }
        }
    }

    // The new warnings and errors of the system log, each once.
    static std::string Logged(const HostRoot& host) {
        std::vector<std::string> lines;
        for (std::string line : host.Messages()) {
            const std::string level = line.substr(0, line.find(' '));
            if (!level.ends_with(".err") && !level.ends_with(".warning"))
                continue;
            AddOnce(lines, line.starts_with("user.") ? line.substr(5) : line);
        }
        return Joined(lines, "; ");
    }

    Outcome Finish(const Scenario& scenario, const Fault& fault, Session& s, Outcome outcome) {
        HostRoot& host = s.Host();
        KillTools(host.Path());
        const auto fail = [&](const std::string& what) {
            outcome.failure += (outcome.failure.empty() ? "" : "; ") + what;
        };
        if (const std::string reports = s.Screen().SanitizerReports(); !reports.empty()) {
            fail("sanitizer report");
            std::cerr << reports << "\n";
        }
        // What the console writes itself must stand whole: the hosts file it takes apart for a
        // lookup, and the host state behind every call.
        if (host.Read("/etc/hosts").empty() || !host.Read("/etc/hosts.backup").empty())
            fail("hosts file not restored");
        try {
            host.State();
        } catch (const std::exception& e) {
            fail(std::string("host state damaged: ") + e.what());
        }
        Report(scenario, fault, outcome);
        return outcome;
    }

    void Report(const Scenario& scenario, const Fault& fault, const Outcome& outcome) {
        if (!outcome.failure.empty())
            ++failures;
        std::cout << scenario.name << " | " << fault.Label() << " | "
                  << (outcome.failure.empty() ? outcome.result : "FAIL " + outcome.failure) << " | "
                  << outcome.shown << " | " << Cut(outcome.log, 200) << std::endl;
    }
};

// A table cell: no column break, no tag a renderer would swallow, no control character.
std::string MdCell(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '|')
            out += "\\|";
        else if (c == '<')
            out += "&lt;";
        else if (static_cast<unsigned char>(c) < 0x20)
            out += ' ';
        else
            out += c;
    }
    return out;
}

void WriteDoc(const Matrix& matrix, const std::string& path) {
    std::ofstream out(path);
    out << "# What a failing host gives\n\n"
           "Written by `scripts/faults.sh --doc docs/faults.md` (`tools/faults`) on the simulated "
           "host. Each section is one screen and the keys that make it call the host. Its first "
           "row is the run with nothing broken. Then, once the screen stands and before its keys, "
           "each host library operation those keys reach is made to throw, and each host tool "
           "they run is made to exit with status 1, to print garbage (printf and markup "
           "directives, a control character and 350 bytes, more than any capture) and to hang: "
           "one at a time, each on a fresh host.\n\n"
           "- Outcome: *on*: the console reads keys again, and Esc leads back to the welcome "
           "screen. *waits for a tool (no time-out) until it is killed*: the console runs that "
           "tool without a time-out and goes on when it ends. *killed at its time-out*: the "
           "console ended a hung tool itself. *waits: host going down*: the answer to a shutdown, "
           "restart or reset. *ends by the top-level handler*: the screen does not catch that "
           "failure, and the console ends with status 0 after logging \"LANYX aborted by "
           "exception\" (its unit starts it again).\n"
           "- Shown: the box on the screen afterwards, title first.\n"
           "- Log: the new warning and error lines of the system log.\n";
    for (const auto& [scenario, rows] : matrix.table) {
        out << "\n## " << scenario->name << ": " << scenario->what << "\n\nProfile `"
            << scenario->profile << "`.\n\n| Fault | Outcome | Shown | Log |\n|---|---|---|---|\n";
        for (const auto& [fault, outcome] : rows)
            out << "| " << MdCell(fault.Label()) << " | "
                << MdCell(outcome.failure.empty() ? outcome.result
                                                  : "**FAILED**: " + outcome.failure)
                << " | " << MdCell(Cut(outcome.shown, 240)) << " | "
                << MdCell(Cut(outcome.log, 300)) << " |\n";
    }
}

} // namespace

int main(int argc, char** argv) {
    bool shortRun = false;
    std::string only, doc;
    Matrix matrix;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "--short")
            shortRun = true;
        else if (option == "--trace")
            matrix.onlyTrace = true;
        else if (option == "--only" && i + 1 < argc)
            only = argv[++i];
        else if (option == "--doc" && i + 1 < argc)
            doc = argv[++i];
        else {
            std::cerr << "usage: lanyx_faults [--short] [--only SCENARIO] [--trace] [--doc FILE]\n";
            return 2;
        }
    }
    const auto start = Clock::now();
    for (const Scenario& scenario : kScenarios) {
        if ((!only.empty() && scenario.name != only) ||
            (shortRun && scenario.shortOperation.empty() && scenario.shortTool.empty()))
            continue;
        matrix.Run(scenario, shortRun);
    }
    if (!doc.empty())
        WriteDoc(matrix, doc);
    size_t cells = 0;
    for (const auto& [scenario, rows] : matrix.table)
        cells += rows.size();
    const auto minutes = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start);
    std::cout << cells << " runs in " << minutes.count() << " s: "
              << (matrix.failures ? std::to_string(matrix.failures) + " FAILED" : "passed")
              << std::endl;
    return matrix.failures ? 1 : 0;
}
