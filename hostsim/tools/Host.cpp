// Whole-host tools: power (reboot, poweroff, halt, shutdown), guests, ping, state save and the
// factory reset. Power actions are only recorded: the machine itself is never touched.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "Tool.hpp"

namespace HostSim::Tools {

namespace {

constexpr long long kMaxPingCount = 100;

void Pause(long long milliseconds) {
    timespec wait{static_cast<time_t>(milliseconds / 1000),
                  static_cast<long>(milliseconds % 1000) * 1000000L};
    while (::nanosleep(&wait, &wait) != 0 && errno == EINTR) {
    }
}

bool Contains(const nlohmann::json& array, const std::string& value) {
    if (!array.is_array())
        return false;
    for (const auto& element : array)
        if (element.is_string() && element.get<std::string>() == value)
            return true;
    return false;
}

void RecordPower(Context& context, const std::string& action, const std::string& newState) {
    context.store.Update([&](nlohmann::json& state) {
        nlohmann::json& power = ObjectAt(state, "power");
        power["state"] = newState;
        ArrayAt(power, "history")
            .push_back({{"time", Timestamp()}, {"action", action}, {"args", context.args}});
    });
}

// What a factory reset puts back when the host keeps no "factory" snapshot of its own.
void ResetToDefaults(nlohmann::json& state) {
    for (auto& [name, option] : ObjectAt(state, "advancedOptions").items()) {
        if (option.is_object() && option.contains("default"))
            option["value"] = option["default"];
    }
    for (auto& [name, service] : ObjectAt(state, "services").items()) {
        if (service.is_object()) {
            service["running"] = false;
            service["enabled"] = false;
        }
    }
    ObjectAt(state, "lockdown")["enabled"] = false;
    state["welcomeMessage"] = "";
}

} // namespace

// reboot, poweroff, halt [-f] [-n] [-d <delay>]; shutdown [-h|-P|-H|-r] [time] [message...].
int Power(Context& context) {
    const auto& args = context.args;
    if (context.name == "shutdown") {
        std::string mode;
        size_t i = 0;
        for (; i < args.size() && !args[i].empty() && args[i][0] == '-'; ++i) {
            const std::string& option = args[i];
            if (option != "-h" && option != "-P" && option != "-H" && option != "-r")
                throw UsageError("unknown option '" + option + "'");
            if (!mode.empty())
                throw UsageError("only one of -h, -P, -H and -r may be given");
            mode = option;
        }
        if (i < args.size()) {
            const std::string& when = args[i];
            const bool relative =
                when.size() > 1 && when[0] == '+' && ParseInteger(when.substr(1)).has_value();
            const bool clock = when.size() == 5 && when[2] == ':' &&
                               ParseInteger(when.substr(0, 2)) && ParseInteger(when.substr(3));
            if (when != "now" && !relative && !clock)
                throw UsageError("invalid time '" + when + "'");
        }
        // Words after the time are the wall message; it has no reader on this host.
        const bool reboot = mode == "-r";
        RecordPower(context, "shutdown", reboot ? "rebooting" : "off");
        std::puts(reboot ? "The system is going down for reboot NOW!"
                         : "The system is going down for poweroff NOW!");
        return 0;
    }

    Options options(args, 0, {"-d"}, {"-f", "-n"});
    if (auto delay = options.Value("-d");
        delay && (!ParseInteger(*delay) || *ParseInteger(*delay) < 0))
        throw UsageError("invalid delay '" + *delay + "'");
    const bool reboot = context.name == "reboot";
    RecordPower(context, context.name, reboot ? "rebooting" : "off");
    return 0;
}

// haltGuests [--terminate]: every running guest is stopped.
int HaltGuests(Context& context) {
    const auto& args = context.args;
    if (args.size() > 1 || (args.size() == 1 && args[0] != "--terminate"))
        throw UsageError("usage: haltGuests [--terminate]");
    int stopped = 0;
    context.store.Update([&](nlohmann::json& state) {
        for (auto& guest : ArrayAt(state, "guests")) {
            if (guest.is_object() && BoolAt(guest, "running", false)) {
                guest["running"] = false;
                ++stopped;
            }
        }
        AddRecord(state, context.name, context.args);
    });
    std::printf("%s %d virtual machine(s)\n", args.empty() ? "Shut down" : "Terminated", stopped);
    return 0;
}

// tesselping -c <count> [-I <interface>] <address>: 0 only when the host lists the address as
// reachable.
int TesselPing(Context& context) {
    std::string count, interface, address;
    const auto& args = context.args;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& word = args[i];
        if (word == "-c" || word == "-I") {
            std::string& target = word == "-c" ? count : interface;
            if (!target.empty())
                throw UsageError("option " + word + " given twice");
            if (i + 1 >= args.size() || args[i + 1].empty())
                throw UsageError("option " + word + " needs a value");
            target = args[++i];
        } else if (word.empty() || word[0] == '-' || !address.empty()) {
            throw UsageError("unexpected argument '" + word + "'");
        } else {
            address = word;
        }
    }
    if (address.empty())
        throw UsageError("usage: tesselping -c <count> [-I <interface>] <address>");
    if (count.empty())
        throw UsageError("option -c is required");
    const auto packets = ParseInteger(count);
    if (!packets || *packets < 1 || *packets > kMaxPingCount)
        throw UsageError("invalid count '" + count + "'");

    const nlohmann::json state = context.store.Read();
    if (!interface.empty()) {
        const nlohmann::json network = state.value("network", nlohmann::json::object());
        if (FindNamed(network.value("interfaces", nlohmann::json::array()), interface) == nullptr)
            throw ToolFailure("tesselping: unknown interface " + interface, 1);
    }
    const nlohmann::json ping = state.value("ping", nlohmann::json::object());
    const bool reachable = Contains(ping.value("reachable", nlohmann::json::array()), address);
    // One packet a second, as a real ping sends them; without an answer it waits one more.
    const long long interval = std::max(0LL, ping.value("intervalMs", 1000LL));
    std::printf("PING %s: 56 data bytes\n", address.c_str());
    std::fflush(stdout);
    for (long long i = 0; i < *packets; ++i) {
        if (i > 0)
            Pause(interval);
        if (reachable)
            std::printf("64 bytes from %s: icmp_seq=%lld ttl=64 time=0.250 ms\n", address.c_str(),
                        i);
        std::fflush(stdout);
    }
    if (!reachable)
        Pause(2 * interval);
    std::printf("\n--- %s ping statistics ---\n%lld packets transmitted, %lld packets received, %s "
                "packet loss\n",
                address.c_str(), *packets, reachable ? *packets : 0, reachable ? "0%" : "100%");
    return reachable ? 0 : 1;
}

// stateSave.sh <level>: the host's configuration is saved; "stateSaved" tells when and at which
// level.
int StateSave(Context& context) {
    if (context.args.size() != 1 || !ParseInteger(context.args[0]) ||
        *ParseInteger(context.args[0]) < 0)
        throw UsageError("usage: stateSave.sh <level>");
    context.store.Update([&](nlohmann::json& state) {
        state["stateSaved"] = {{"time", Timestamp()}, {"level", *ParseInteger(context.args[0])}};
        AddRecord(state, context.name, context.args);
    });
    return 0;
}

// factoryState.py --reset-only: the configuration goes back to the host's factory values.
// A "factory" object in the state (top-level key -> value) says what they are; without one the
// options fall back to their defaults, services and lockdown go off and the welcome text goes.
int FactoryState(Context& context) {
    if (context.args.size() != 1 || context.args[0] != "--reset-only")
        throw UsageError("usage: factoryState.py --reset-only");
    context.store.Update([&](nlohmann::json& state) {
        auto factory = state.find("factory");
        if (factory != state.end() && factory->is_object()) {
            const nlohmann::json snapshot = *factory;
            for (const auto& [key, value] : snapshot.items())
                state[key] = value;
        } else {
            ResetToDefaults(state);
        }
        AddRecord(state, context.name, context.args);
    });
    std::puts("Configuration reset to factory values");
    return 0;
}

} // namespace HostSim::Tools
