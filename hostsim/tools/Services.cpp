// Service scripts (OstraShell, SSH, gridmesh-opsagent, agents.sh), the overlay agent's port
// move tool and the live-core tracer.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "Tool.hpp"

namespace HostSim::Tools {

namespace {

// Exit status of an init script's "status" for a service that is stopped.
constexpr int kStatusStopped = 3;
// How long tesseltrace -w waits for its process, and how often it looks.
constexpr int kTraceWaitMs = 10000;
constexpr int kTracePollMs = 50;

std::string OneAction(const Context& context, const std::vector<std::string>& allowed) {
    std::string usage = "usage: " + context.name + " ";
    for (size_t i = 0; i < allowed.size(); ++i)
        usage += (i ? "|" : "") + allowed[i];
    if (context.args.size() != 1)
        throw UsageError(usage);
    for (const auto& action : allowed)
        if (context.args[0] == action)
            return action;
    throw UsageError(usage);
}

bool AgentRunning(const nlohmann::json& state) {
    auto agent = state.find("hostAgent");
    return agent == state.end() ? true : BoolAt(*agent, "running", true);
}

} // namespace

int ServiceScript(Context& context) {
    const std::string action = OneAction(context, {"start", "stop", "restart", "status"});
    const std::string label = context.name == "OstraShell" ? "Ostra Shell" : context.name;
    if (action == "status") {
        const nlohmann::json state = context.store.Read();
        const nlohmann::json services = state.value("services", nlohmann::json::object());
        const bool running =
            BoolAt(services.value(context.name, nlohmann::json::object()), "running", false);
        std::printf("%s is %s\n", label.c_str(), running ? "running" : "not running");
        return running ? 0 : kStatusStopped;
    }
    context.store.Update([&](nlohmann::json& state) {
        ObjectAt(ObjectAt(state, "services"), context.name)["running"] = action != "stop";
        AddRecord(state, context.name, context.args);
    });
    std::printf("%s %s\n", label.c_str(), action == "stop" ? "stopped" : "started");
    return 0;
}

int GridmeshAgent(Context& context) {
    const std::string action = OneAction(context, {"start", "stop", "restart", "status"});
    if (action == "status") {
        const nlohmann::json state = context.store.Read();
        const nlohmann::json gridmesh = state.value("gridmesh", nlohmann::json::object());
        if (!BoolAt(gridmesh, "present", false))
            throw ToolFailure("gridmesh-opsagent is not installed on this host", 1);
        const bool running = BoolAt(gridmesh, "running", false);
        std::printf("gridmesh-opsagent is %s\n", running ? "running" : "not running");
        return running ? 0 : kStatusStopped;
    }
    context.store.Update([&](nlohmann::json& state) {
        nlohmann::json& gridmesh = ObjectAt(state, "gridmesh");
        if (!BoolAt(gridmesh, "present", false))
            throw ToolFailure("gridmesh-opsagent is not installed on this host", 1);
        gridmesh["running"] = action != "stop";
        AddRecord(state, context.name, context.args);
    });
    std::printf("gridmesh-opsagent %s\n", action == "stop" ? "stopped" : "started");
    return 0;
}

// gridmeshcfg-xbar -m -p <port group> -I <kernel interface>: moves the interface to the port group.
int GridmeshCfgXbar(Context& context) {
    Options options(context.args, 0, {"-p", "-I"}, {"-m"});
    if (!options.Has("-m"))
        throw UsageError("usage: gridmeshcfg-xbar -m -p <portgroup> -I <interface>");
    const std::string& portGroup = options.Required("-p");
    const std::string& interface = options.Required("-I");
    context.store.Update([&](nlohmann::json& state) {
        if (!BoolAt(state.value("gridmesh", nlohmann::json::object()), "present", false))
            throw ToolFailure("gridmeshcfg-xbar: the gridmesh agent is not installed", 1);
        nlohmann::json& groups = ArrayAt(state, "portGroups");
        nlohmann::json* target = FindNamed(groups, portGroup);
        if (target == nullptr)
            throw ToolFailure("gridmeshcfg-xbar: port group '" + portGroup + "' not found", 1);
        nlohmann::json* nic =
            FindNamed(ArrayAt(ObjectAt(state, "network"), "interfaces"), interface);
        if (nic == nullptr)
            throw ToolFailure("gridmeshcfg-xbar: interface '" + interface + "' not found", 1);

        nlohmann::json& connection = ObjectAt(*nic, "connection");
        if (StringAt(connection, "type") == "portgroup") {
            if (nlohmann::json* old = FindNamed(groups, StringAt(connection, "portGroup"))) {
                const long long clients = old->value("activeClients", 0LL);
                (*old)["activeClients"] = clients > 0 ? clients - 1 : 0;
            }
        }
        connection = {{"type", "portgroup"}, {"portGroup", portGroup}};
        (*target)["activeClients"] = target->value("activeClients", 0LL) + 1;
        AddRecord(state, context.name, context.args);
    });
    std::printf("Moved %s to port group %s\n", interface.c_str(), portGroup.c_str());
    return 0;
}

int AgentsScript(Context& context) {
    const std::string action = OneAction(context, {"start", "stop", "restart"});
    context.store.Update([&](nlohmann::json& state) {
        ObjectAt(state, "hostAgent")["running"] = action != "stop";
        AddRecord(state, context.name, context.args);
    });
    std::printf("%s management agents: done\n", action == "stop" ? "Stopping" : "Starting");
    return 0;
}

// tesseltrace -w -n <process> -o <pattern> -d <folder>: writes a live core of a running process.
int TesselTrace(Context& context) {
    Options options(context.args, 0, {"-n", "-o", "-d"}, {"-w"});
    const std::string& process = options.Required("-n");
    const std::string& pattern = options.Required("-o");
    const std::string folder = options.Value("-d").value_or("/var/log/");
    if (folder.empty() || folder.front() != '/')
        throw UsageError("the folder must be an absolute path");
    if (pattern.empty() || pattern.find('/') != std::string::npos)
        throw UsageError("the output name must be a plain file name");

    // -w waits for the process to be up, as it may be restarting; without it, or after the
    // wait, a process that is not running is an error. Each look decides alone: a second one
    // could see the agent stopped by a restart beside the trace and fail a trace that found it.
    const bool wait = options.Has("-w");
    bool running = process == "helmd" && AgentRunning(context.store.Read());
    for (int waited = 0; process == "helmd" && !running && wait && waited < kTraceWaitMs;
         waited += kTracePollMs) {
        ::usleep(kTracePollMs * 1000);
        running = AgentRunning(context.store.Read());
    }
    if (!running)
        throw ToolFailure("tesseltrace: no running process named " + process, 1);

    std::string base = RootPath(context.root, folder);
    if (base.back() != '/')
        base += '/';
    std::string path, hostPath;
    int fd = -1;
    for (int n = 1; n < 10000 && fd < 0; ++n) {
        std::string fileName = pattern;
        if (auto percent = fileName.find('%'); percent != std::string::npos)
            fileName.replace(percent, 1, std::to_string(n));
        else if (n > 1)
            fileName.append(".").append(std::to_string(n));
        path = base + fileName + ".core";
        hostPath = folder + (folder.back() == '/' ? "" : "/") + fileName + ".core";
        fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        if (fd < 0 && errno != EEXIST)
            throw ToolFailure("tesseltrace: cannot write " + path + ": " + std::strerror(errno), 1);
    }
    if (fd < 0)
        throw ToolFailure("tesseltrace: no free core file name in " + base, 1);
    const std::string text = "live core of " + process + " (simulated host)\n";
    const bool written = ::write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    ::close(fd);
    if (!written)
        throw ToolFailure("tesseltrace: cannot write " + path, 1);

    context.store.Update(
        [&](nlohmann::json& document) { AddRecord(document, context.name, context.args); });
    std::printf("Live core of %s written to %s\n", process.c_str(), hostPath.c_str());
    return 0;
}

} // namespace HostSim::Tools
