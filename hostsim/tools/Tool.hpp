// The simulated host's command-line tools: one program, many names. Each tool reads and
// changes the host state through HostSim::StateStore and answers as the console expects.
#pragma once
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "store/StateStore.hpp"

namespace HostSim::Tools {

// Arguments the tool does not accept: message on stderr, exit status 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The tool ran but refused or failed: message on the stream the tool's users read, given status.
class ToolFailure : public std::runtime_error {
public:
    ToolFailure(const std::string& text, int status, bool onStdout = false)
        : std::runtime_error(text), status_(status), onStdout_(onStdout) {}
    int Status() const { return status_; }
    bool OnStdout() const { return onStdout_; }

private:
    int status_;
    bool onStdout_;
};

struct Context {
    std::string root;              // absolute host root
    std::string name;              // the tool's short name
    std::vector<std::string> args; // arguments behind the name
    StateStore store;

    Context(std::string rootPath, std::string toolName, std::vector<std::string> arguments)
        : root(std::move(rootPath)), name(std::move(toolName)), args(std::move(arguments)),
          store(root) {}
};

using ToolFunction = int (*)(Context&);

// The tool of that short name, or null.
ToolFunction FindTool(const std::string& name);
// Every short name, sorted.
std::vector<std::string> ToolNames();

// Local time as "YYYY-MM-DDTHH:MM:SS" (the records' stamp).
std::string Timestamp();

// Appends {time, tool, args} to the state's "toolRecords" (kept to the newest entries).
void AddRecord(nlohmann::json& state, const std::string& tool,
               const std::vector<std::string>& args);

// A member of `object` at `key`, created as an empty object when it is missing or of another type.
nlohmann::json& ObjectAt(nlohmann::json& object, const std::string& key);
// A member of `object` at `key`, created as an empty array when it is missing or of another type.
nlohmann::json& ArrayAt(nlohmann::json& object, const std::string& key);
// A boolean member, `fallback` when missing or not a boolean.
bool BoolAt(const nlohmann::json& object, const std::string& key, bool fallback);
// A string member, `fallback` when missing or not a string.
std::string StringAt(const nlohmann::json& object, const std::string& key,
                     const std::string& fallback = "");

// The element of an array of objects whose "name" is `name`, or null.
nlohmann::json* FindNamed(nlohmann::json& array, const std::string& name);
const nlohmann::json* FindNamed(const nlohmann::json& array, const std::string& name);

// Parses "-x value" options and plain flags in any order; each at most once, all given ones known.
class Options {
public:
    // valueOptions take one value, flags take none.
    Options(const std::vector<std::string>& args, size_t first,
            const std::vector<std::string>& valueOptions, const std::vector<std::string>& flags);
    bool Has(const std::string& option) const;
    // The value of a required option; UsageError when it is missing.
    const std::string& Required(const std::string& option) const;
    std::optional<std::string> Value(const std::string& option) const;

private:
    std::vector<std::pair<std::string, std::string>> values_;
    std::vector<std::string> flags_;
};

// A decimal integer, the whole text; nullopt for anything else or out of range.
std::optional<long long> ParseInteger(const std::string& text);

// The tools, by group.
int Helmq(Context& context);
int Ostraq(Context& context);
int Benchq(Context& context);
int OstraTune(Context& context);
int ServiceScript(Context& context); // OstraShell, SSH
int GridmeshAgent(Context& context); // gridmesh-opsagent
int GridmeshCfgXbar(Context& context);
int AgentsScript(Context& context);
int TesselTrace(Context& context);
int TesselPing(Context& context);
int HaltGuests(Context& context);
int StateSave(Context& context);
int FactoryState(Context& context);
int Power(Context& context); // reboot, poweroff, halt, shutdown

} // namespace HostSim::Tools
