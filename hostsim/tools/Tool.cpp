// Helpers shared by the tools and the table of tool names.
#include "Tool.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <map>

namespace HostSim::Tools {

namespace {

// The newest records are enough to follow what the console did; the state stays small.
constexpr size_t kMaxRecords = 500;

const std::map<std::string, ToolFunction>& Table() {
    static const std::map<std::string, ToolFunction> table = {
        {"helmq", Helmq},
        {"ostraq", Ostraq},
        {"benchq", Benchq},
        {"ostra-tune", OstraTune},
        {"haltGuests", HaltGuests},
        {"tesseltrace", TesselTrace},
        {"tesselping", TesselPing},
        {"agents.sh", AgentsScript},
        {"stateSave.sh", StateSave},
        {"factoryState.py", FactoryState},
        {"OstraShell", ServiceScript},
        {"SSH", ServiceScript},
        {"gridmesh-opsagent", GridmeshAgent},
        {"gridmeshcfg-xbar", GridmeshCfgXbar},
        {"reboot", Power},
        {"poweroff", Power},
        {"halt", Power},
        {"shutdown", Power},
    };
    return table;
}

} // namespace

ToolFunction FindTool(const std::string& name) {
    auto found = Table().find(name);
    return found == Table().end() ? nullptr : found->second;
}

std::vector<std::string> ToolNames() {
    std::vector<std::string> names;
    for (const auto& [name, function] : Table())
        names.push_back(name);
    return names;
}

std::string Timestamp() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local);
    return text;
}

void AddRecord(nlohmann::json& state, const std::string& tool,
               const std::vector<std::string>& args) {
    nlohmann::json& records = ArrayAt(state, "toolRecords");
    records.push_back({{"time", Timestamp()}, {"tool", tool}, {"args", args}});
    if (records.size() > kMaxRecords)
        records.erase(records.begin(), records.end() - kMaxRecords);
}

nlohmann::json& ObjectAt(nlohmann::json& object, const std::string& key) {
    nlohmann::json& member = object[key];
    if (!member.is_object())
        member = nlohmann::json::object();
    return member;
}

nlohmann::json& ArrayAt(nlohmann::json& object, const std::string& key) {
    nlohmann::json& member = object[key];
    if (!member.is_array())
        member = nlohmann::json::array();
    return member;
}

bool BoolAt(const nlohmann::json& object, const std::string& key, bool fallback) {
    if (!object.is_object())
        return fallback;
    auto found = object.find(key);
    return (found != object.end() && found->is_boolean()) ? found->get<bool>() : fallback;
}

std::string StringAt(const nlohmann::json& object, const std::string& key,
                     const std::string& fallback) {
    if (!object.is_object())
        return fallback;
    auto found = object.find(key);
    return (found != object.end() && found->is_string()) ? found->get<std::string>() : fallback;
}

nlohmann::json* FindNamed(nlohmann::json& array, const std::string& name) {
    if (!array.is_array())
        return nullptr;
    for (auto& element : array)
        if (StringAt(element, "name", "\x01") == name)
            return &element;
    return nullptr;
}

const nlohmann::json* FindNamed(const nlohmann::json& array, const std::string& name) {
    if (!array.is_array())
        return nullptr;
    for (const auto& element : array)
        if (StringAt(element, "name", "\x01") == name)
            return &element;
    return nullptr;
}

Options::Options(const std::vector<std::string>& args, size_t first,
                 const std::vector<std::string>& valueOptions,
                 const std::vector<std::string>& flags) {
    auto known = [](const std::vector<std::string>& list, const std::string& word) {
        return std::find(list.begin(), list.end(), word) != list.end();
    };
    for (size_t i = first; i < args.size(); ++i) {
        const std::string& word = args[i];
        if (Has(word))
            throw UsageError("option " + word + " given twice");
        if (known(valueOptions, word)) {
            if (i + 1 >= args.size())
                throw UsageError("option " + word + " needs a value");
            values_.emplace_back(word, args[++i]);
        } else if (known(flags, word)) {
            flags_.push_back(word);
        } else {
            throw UsageError("unexpected argument '" + word + "'");
        }
    }
}

bool Options::Has(const std::string& option) const {
    if (std::find(flags_.begin(), flags_.end(), option) != flags_.end())
        return true;
    return Value(option).has_value();
}

std::optional<std::string> Options::Value(const std::string& option) const {
    for (const auto& [name, value] : values_)
        if (name == option)
            return value;
    return std::nullopt;
}

const std::string& Options::Required(const std::string& option) const {
    for (const auto& [name, value] : values_)
        if (name == option)
            return value;
    throw UsageError("option " + option + " is required");
}

std::optional<long long> ParseInteger(const std::string& text) {
    if (text.empty())
        return std::nullopt;
    errno = 0;
    char* end = nullptr;
    long long value = std::strtoll(text.c_str(), &end, 10);
    if (errno != 0 || end == text.c_str() || *end != '\0')
        return std::nullopt;
    if (text.front() == ' ' || text.front() == '\t' || text.front() == '+')
        return std::nullopt;
    return value;
}

} // namespace HostSim::Tools
