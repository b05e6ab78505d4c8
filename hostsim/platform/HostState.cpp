#include "platform/HostState.hpp"

#include "keelson/Lib.hpp"
#include "store/StateStore.hpp"

namespace HostSim::Platform {

StateDocument ReadState() {
    try {
        return StateStore(HostRoot()).Snapshot();
    } catch (const StateError& e) {
        throw Keelson::Lib::KeelsonException(e.what());
    }
}

void UpdateState(const std::function<void(nlohmann::json&)>& change) {
    try {
        StateStore(HostRoot()).Update(change);
    } catch (const StateError& e) {
        throw Keelson::Lib::KeelsonException(e.what());
    }
}

std::string FaultText(const nlohmann::json& state, const char* operation) {
    TraceCall(HostRoot(), state, std::string("lib ") + operation);
    auto faults = state.find("faults");
    if (faults == state.end() || !faults->is_object())
        return {};
    auto lib = faults->find("lib");
    if (lib == faults->end() || !lib->is_object())
        return {};
    auto entry = lib->find(operation);
    if (entry == lib->end())
        return {};
    if (entry->is_string()) {
        std::string text = entry->get<std::string>();
        return text.empty() ? std::string(operation) + " failed" : text;
    }
    return std::string(operation) + " failed";
}

void CheckFault(const nlohmann::json& state, std::initializer_list<const char*> operations) {
    for (const char* operation : operations) {
        std::string text = FaultText(state, operation);
        if (!text.empty())
            throw Keelson::Lib::KeelsonException(text);
    }
}

StateDocument StateFor(std::initializer_list<const char*> operations) {
    StateDocument state = ReadState();
    CheckFault(*state, operations);
    return state;
}

void RecordCall(nlohmann::json& state, const std::string& operation, const std::string& target) {
    nlohmann::json& records = state["libRecords"];
    if (!records.is_array())
        records = nlohmann::json::array();
    records.push_back({{"operation", operation}, {"target", target}});
    constexpr size_t kKept = 500;
    if (records.size() > kKept)
        records.erase(records.begin(), records.begin() + (records.size() - kKept));
}

std::string HostFile(const std::string& hostPath) {
    return RootPath(HostRoot(), hostPath);
}

} // namespace HostSim::Platform
