// Smart-card readers and their tokens, from "smartCard" in the state.
#include "keelson/Hardware.hpp"
#include "platform/HostState.hpp"

namespace TesselCtl::Hardware {

namespace {

std::vector<std::string> Strings(const nlohmann::json& token, const char* key) {
    std::vector<std::string> values;
    auto it = token.find(key);
    if (it != token.end() && it->is_array()) {
        for (const auto& value : *it) {
            if (value.is_string())
                values.push_back(value.get<std::string>());
        }
    }
    return values;
}

nlohmann::json Slots(const nlohmann::json& state) {
    nlohmann::json card = state.value("smartCard", nlohmann::json::object());
    nlohmann::json slots = card.value("slots", nlohmann::json::array());
    return slots.is_array() ? slots : nlohmann::json::array();
}

} // namespace

std::vector<std::string> SmartCardInfoImpl::GetAllSlots() const {
    const auto document = HostSim::Platform::StateFor({"SmartCardInfoImpl::GetAllSlots"});
    const nlohmann::json& state = *document;
    std::vector<std::string> names;
    for (const auto& slot : Slots(state))
        names.push_back(slot.value("name", ""));
    return names;
}

bool SmartCardInfoImpl::GetToken(const std::string& slot,
                                 Keelson::Hardware::SmartCardToken& token) const {
    const auto document = HostSim::Platform::StateFor({"SmartCardInfoImpl::GetToken"});
    const nlohmann::json& state = *document;
    for (const auto& entry : Slots(state)) {
        if (entry.value("name", "") != slot)
            continue;
        auto t = entry.find("token");
        if (t == entry.end() || !t->is_object())
            return false;
        token.label = t->value("label", "");
        token.manufacturer = t->value("manufacturer", "");
        token.model = t->value("model", "");
        token.serialNumber = t->value("serialNumber", "");
        token.slotDescription = t->value("slotDescription", "");
        token.firmware = t->value("firmware", "");
        token.certificates = Strings(*t, "certificates");
        token.userIds = Strings(*t, "userIds");
        return true;
    }
    throw Keelson::Lib::KeelsonException("No smart card reader slot named " + slot);
}

SmartCardInfoImpl& GetSmartCardInfo() {
    static SmartCardInfoImpl instance;
    return instance;
}

} // namespace TesselCtl::Hardware
