// helmq: the host agent's command client. "helmq -U <user> <command>".
#include <algorithm>
#include <cstdio>

#include "Tool.hpp"

namespace HostSim::Tools {

namespace {

// The refusal status the console's fallback to its own service account keys on.
constexpr int kRefused = 255;
// The console's service account is always accepted by the agent.
const char* const kServiceAccount = "lanyx";

// Users the agent accepts: "hostAgent.users" when the host lists them, else every permitted
// account.
bool UserAllowed(const nlohmann::json& state, const std::string& user) {
    if (user == kServiceAccount)
        return true;
    auto agent = state.find("hostAgent");
    if (agent != state.end() && agent->is_object()) {
        auto users = agent->find("users");
        if (users != agent->end() && users->is_array())
            return std::any_of(users->begin(), users->end(), [&](const nlohmann::json& u) {
                return u.is_string() && u.get<std::string>() == user;
            });
    }
    auto accounts = state.find("accounts");
    if (accounts == state.end())
        return false;
    const nlohmann::json* account = FindNamed(*accounts, user);
    return account != nullptr && BoolAt(*account, "permitted", false);
}

bool AgentRunning(const nlohmann::json& state) {
    auto agent = state.find("hostAgent");
    return agent == state.end() ? true : BoolAt(*agent, "running", true);
}

void PrintBool(bool value) {
    std::puts(value ? "true" : "false");
}

struct ServiceCommand {
    const char* command;
    const char* service; // key under "services"
    const char* field;   // "running" or "enabled"
    bool value;
};

const ServiceCommand kServiceCommands[] = {
    {"helmnode/start_ostra_shell", "OstraShell", "running", true},
    {"helmnode/stop_ostra_shell", "OstraShell", "running", false},
    {"helmnode/enable_ostra_shell", "OstraShell", "enabled", true},
    {"helmnode/disable_ostra_shell", "OstraShell", "enabled", false},
    {"helmnode/start_ssh", "SSH", "running", true},
    {"helmnode/stop_ssh", "SSH", "running", false},
    {"helmnode/enable_ssh", "SSH", "enabled", true},
    {"helmnode/disable_ssh", "SSH", "enabled", false},
};

const char* const kQueries[] = {"helmsvc/auth/lockdown_is_enabled",
                                "helmsvc/auth/lockdown_is_possible"};
const char* const kRecorded[] = {"helmcore/refresh", "helmnode/autostartmanager/autostop"};

bool Known(const std::string& command) {
    for (const auto& entry : kServiceCommands)
        if (command == entry.command)
            return true;
    for (const char* query : kQueries)
        if (command == query)
            return true;
    for (const char* recorded : kRecorded)
        if (command == recorded)
            return true;
    return command == "helmsvc/auth/lockdown_mode_enter" ||
           command == "helmsvc/auth/lockdown_mode_exit";
}

} // namespace

int Helmq(Context& context) {
    const auto& args = context.args;
    if (args.size() != 3 || args[0] != "-U")
        throw UsageError("usage: helmq -U <user> <command>");
    const std::string& user = args[1];
    const std::string& command = args[2];
    if (user.empty())
        throw UsageError("the user name is empty");
    if (!Known(command))
        throw UsageError("unknown command '" + command + "'");

    const nlohmann::json state = context.store.Read();
    if (!UserAllowed(state, user))
        throw ToolFailure("helmq: user '" + user + "' is not allowed to run host agent commands",
                          kRefused);
    if (!AgentRunning(state))
        throw ToolFailure("helmq: cannot reach the host agent: it is not running", 1);

    if (command == "helmsvc/auth/lockdown_is_enabled") {
        PrintBool(BoolAt(state.value("lockdown", nlohmann::json::object()), "enabled", false));
        return 0;
    }
    if (command == "helmsvc/auth/lockdown_is_possible") {
        PrintBool(BoolAt(state.value("lockdown", nlohmann::json::object()), "possible", false));
        return 0;
    }

    context.store.Update([&](nlohmann::json& document) {
        if (command == "helmsvc/auth/lockdown_mode_enter" ||
            command == "helmsvc/auth/lockdown_mode_exit") {
            nlohmann::json& lockdown = ObjectAt(document, "lockdown");
            const bool enter = command == "helmsvc/auth/lockdown_mode_enter";
            if (enter && !BoolAt(lockdown, "enabled", false) &&
                !BoolAt(lockdown, "possible", false))
                throw ToolFailure("helmq: lockdown mode is not possible on this host", 1);
            lockdown["enabled"] = enter;
        }
        if (command == "helmnode/autostartmanager/autostop")
            ObjectAt(document, "autostartManager")["running"] = false;
        for (const auto& entry : kServiceCommands) {
            if (command != entry.command)
                continue;
            nlohmann::json& service = ObjectAt(ObjectAt(document, "services"), entry.service);
            service[entry.field] = entry.value;
            // The agent opens and closes the SSH ports with the service; the init script does not.
            if (std::string(entry.service) == "SSH" && std::string(entry.field) == "running") {
                nlohmann::json& ruleset = ObjectAt(ObjectAt(document, "firewall"), "sshServer");
                if (BoolAt(ruleset, "followsService", true))
                    ruleset["enabled"] = entry.value;
            }
        }
        AddRecord(document, context.name, context.args);
    });
    return 0;
}

} // namespace HostSim::Tools
