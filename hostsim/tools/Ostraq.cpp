// ostraq and benchq (host configuration clients) and ostra-tune (advanced option reader).
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "Tool.hpp"

namespace HostSim::Tools {

namespace {

constexpr size_t kMaxSwitchName = 31;
constexpr size_t kMaxPortGroupName = 59;
const char* const kFormatterOption = "--formatter=";

// ostraq reports its failures on stdout: that is what the console keeps in its log.
[[noreturn]] void Fail(const std::string& text) {
    throw ToolFailure("Error: " + text, 1, true);
}

bool StartsWith(const std::vector<std::string>& args, size_t first,
                const std::vector<std::string>& words) {
    if (args.size() < first + words.size())
        return false;
    for (size_t i = 0; i < words.size(); ++i)
        if (args[first + i] != words[i])
            return false;
    return true;
}

void CheckName(const std::string& what, const std::string& name, size_t limit) {
    if (name.empty())
        Fail("the " + what + " name must not be empty");
    if (name.size() > limit)
        Fail("the " + what + " name '" + name + "' is longer than " + std::to_string(limit) +
             " characters");
    for (unsigned char c : name)
        if (c < 0x20 || c == 0x7f)
            Fail("the " + what + " name holds a control character");
}

// The switch or fabric that has `pnic` as an uplink, or "".
std::string UplinkUser(const nlohmann::json& state, const std::string& pnic) {
    for (const auto& sw : state.value("switches", nlohmann::json::array())) {
        for (const auto& uplink : sw.value("uplinks", nlohmann::json::array()))
            if (uplink.is_string() && uplink.get<std::string>() == pnic)
                return StringAt(sw, "name");
    }
    for (const auto& fabric : state.value("fabrics", nlohmann::json::array())) {
        auto uplinks = fabric.find("uplinks");
        if (uplinks != fabric.end() && uplinks->is_object() && uplinks->contains(pnic))
            return StringAt(fabric, "name");
    }
    return "";
}

void RemoveString(nlohmann::json& array, const std::string& value) {
    if (!array.is_array())
        return;
    for (auto it = array.begin(); it != array.end();) {
        if (it->is_string() && it->get<std::string>() == value)
            it = array.erase(it);
        else
            ++it;
    }
}

// "standard add -v <switch>"
void AddSwitch(nlohmann::json& state, const std::string& name) {
    CheckName("standard switch", name, kMaxSwitchName);
    if (FindNamed(ArrayAt(state, "switches"), name) != nullptr ||
        FindNamed(ArrayAt(state, "fabrics"), name) != nullptr)
        Fail("a virtual switch named '" + name + "' already exists");
    ArrayAt(state, "switches")
        .push_back({
            {"name", name},
            {"uplinks", nlohmann::json::array()},
            {"portGroups", nlohmann::json::array()},
            {"numPorts", 128},
            {"usedPorts", 0},
            {"configuredPorts", 128},
            {"mtu", 1500},
            {"teaming",
             {{"flags", 16},
              {"uplinkOrder", nlohmann::json::array()},
              {"maxActiveUplinks", 1},
              {"policy", "loadbalance_srcid"},
              {"linkCriteria", nlohmann::json::object()}}},
        });
}

nlohmann::json& StandardSwitch(nlohmann::json& state, const std::string& name) {
    nlohmann::json* sw = FindNamed(ArrayAt(state, "switches"), name);
    if (sw == nullptr)
        Fail("standard switch '" + name + "' not found");
    return *sw;
}

void CountUplinks(nlohmann::json& sw) {
    sw["usedPorts"] = ArrayAt(sw, "uplinks").size();
}

void AddUplink(nlohmann::json& state, const std::string& uplink, const std::string& switchName) {
    nlohmann::json& sw = StandardSwitch(state, switchName);
    if (FindNamed(ArrayAt(state, "pnics"), uplink) == nullptr)
        Fail("physical NIC '" + uplink + "' not found");
    const std::string user = UplinkUser(state, uplink);
    if (!user.empty())
        Fail("uplink '" + uplink + "' is already in use by '" + user + "'");
    ArrayAt(sw, "uplinks").push_back(uplink);
    ArrayAt(ObjectAt(sw, "teaming"), "uplinkOrder").push_back(uplink);
    CountUplinks(sw);
}

void RemoveUplink(nlohmann::json& state, const std::string& uplink, const std::string& switchName) {
    nlohmann::json& sw = StandardSwitch(state, switchName);
    nlohmann::json& uplinks = ArrayAt(sw, "uplinks");
    const size_t before = uplinks.size();
    RemoveString(uplinks, uplink);
    if (uplinks.size() == before)
        Fail("uplink '" + uplink + "' is not attached to standard switch '" + switchName + "'");
    RemoveString(ArrayAt(ObjectAt(sw, "teaming"), "uplinkOrder"), uplink);
    CountUplinks(sw);
}

void AddPortGroup(nlohmann::json& state, const std::string& name, const std::string& switchName) {
    CheckName("port group", name, kMaxPortGroupName);
    nlohmann::json& sw = StandardSwitch(state, switchName);
    if (FindNamed(ArrayAt(state, "portGroups"), name) != nullptr)
        Fail("a port group named '" + name + "' already exists");
    ArrayAt(sw, "portGroups").push_back(name);
    nlohmann::json teaming = sw.value("teaming", nlohmann::json::object());
    ArrayAt(state, "portGroups")
        .push_back({{"name", name},
                    {"switch", switchName},
                    {"vlan", 0},
                    {"activeClients", 0},
                    {"teaming", teaming}});
}

// "system settings advanced set -o <option> -i <integer>", shared by ostraq and benchq.
int SetAdvancedOption(Context& context, size_t first) {
    Options options(context.args, first, {"-o", "-i"}, {});
    const std::string& name = options.Required("-o");
    const std::string& text = options.Required("-i");
    auto value = ParseInteger(text);
    if (!value)
        throw ToolFailure("Error: '" + text + "' is not an integer", 1, true);
    context.store.Update([&](nlohmann::json& state) {
        nlohmann::json& all = ObjectAt(state, "advancedOptions");
        auto option = all.find(name);
        if (option == all.end() || !option->is_object())
            Fail("unable to find option " + name);
        if (StringAt(*option, "type") != "integer")
            Fail("option " + name + " is not an integer option");
        auto min = option->find("min");
        auto max = option->find("max");
        if ((min != option->end() && min->is_number_integer() && *value < min->get<long long>()) ||
            (max != option->end() && max->is_number_integer() && *value > max->get<long long>()))
            Fail("value " + text + " is out of range for option " + name);
        (*option)["value"] = *value;
        AddRecord(state, context.name, context.args);
    });
    return 0;
}

int PlankGet(Context& context, size_t first, const std::string& formatter) {
    Options options(context.args, first, {"-n"}, {});
    const std::string& plank = options.Required("-n");
    const nlohmann::json state = context.store.Read();
    const nlohmann::json gridmesh = state.value("gridmesh", nlohmann::json::object());
    if (plank != "gridmesh-opsagent" || !BoolAt(gridmesh, "present", false))
        throw ToolFailure("Error: plank '" + plank + "' is not installed", 1);
    const std::string version = StringAt(gridmesh, "version", "0.0.0");
    if (formatter == "keyvalue") {
        std::printf("Name=%s\nVersion=%s\nVendor=Zephora\nStatus=installed\n", plank.c_str(),
                    version.c_str());
    } else {
        std::printf("Name: %s\n   Version: %s\n   Vendor: Zephora\n   Status: installed\n",
                    plank.c_str(), version.c_str());
    }
    return 0;
}

} // namespace

int Ostraq(Context& context) {
    const auto& args = context.args;
    size_t first = 0;
    std::string formatter;
    if (!args.empty() && args[0].rfind(kFormatterOption, 0) == 0) {
        formatter = args[0].substr(std::string(kFormatterOption).size());
        if (formatter != "keyvalue")
            throw UsageError("unknown formatter '" + formatter + "'");
        first = 1;
    }

    if (StartsWith(args, first, {"software", "plank", "get"}))
        return PlankGet(context, first + 3, formatter);
    if (StartsWith(args, first, {"system", "settings", "advanced", "set"}))
        return SetAdvancedOption(context, first + 4);

    auto change = [&](size_t next, const std::vector<std::string>& valueOptions,
                      const std::function<void(nlohmann::json&, const Options&)>& action) {
        Options options(args, next, valueOptions, {});
        for (const auto& option : valueOptions)
            options.Required(option);
        context.store.Update([&](nlohmann::json& state) {
            action(state, options);
            AddRecord(state, context.name, context.args);
        });
        return 0;
    };
    if (StartsWith(args, first, {"network", "xbar", "standard", "add"}))
        return change(first + 4, {"-v"},
                      [](nlohmann::json& s, const Options& o) { AddSwitch(s, o.Required("-v")); });
    if (StartsWith(args, first, {"network", "xbar", "standard", "uplink", "add"}))
        return change(first + 5, {"-u", "-v"}, [](nlohmann::json& s, const Options& o) {
            AddUplink(s, o.Required("-u"), o.Required("-v"));
        });
    if (StartsWith(args, first, {"network", "xbar", "standard", "uplink", "remove"}))
        return change(first + 5, {"-u", "-v"}, [](nlohmann::json& s, const Options& o) {
            RemoveUplink(s, o.Required("-u"), o.Required("-v"));
        });
    if (StartsWith(args, first, {"network", "xbar", "standard", "portgroup", "add"}))
        return change(first + 5, {"-p", "-v"}, [](nlohmann::json& s, const Options& o) {
            AddPortGroup(s, o.Required("-p"), o.Required("-v"));
        });

    std::string line;
    for (const auto& word : args)
        line += (line.empty() ? "" : " ") + word;
    throw UsageError("unknown command '" + line + "'");
}

int Benchq(Context& context) {
    if (!StartsWith(context.args, 0, {"system", "settings", "advanced", "set"}))
        throw UsageError("usage: benchq system settings advanced set -o <option> -i <integer>");
    return SetAdvancedOption(context, 4);
}

int OstraTune(Context& context) {
    const auto& args = context.args;
    if (args.size() != 3 || args[0] != "-q" || args[1] != "-g")
        throw UsageError("usage: ostra-tune -q -g <option>");
    const std::string& name = args[2];
    const nlohmann::json state = context.store.Read();
    const nlohmann::json all = state.value("advancedOptions", nlohmann::json::object());
    auto option = all.find(name);
    if (option == all.end() || !option->is_object() || !option->contains("value"))
        throw ToolFailure("ostra-tune: option " + name + " not found", 1);
    const nlohmann::json& value = (*option)["value"];
    if (value.is_string())
        std::printf("%s\n", value.get<std::string>().c_str());
    else if (value.is_number_integer())
        std::printf("%lld\n", value.get<long long>());
    else
        throw ToolFailure("ostra-tune: option " + name + " has no usable value", 1);
    return 0;
}

} // namespace HostSim::Tools
