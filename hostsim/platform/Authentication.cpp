// The configuration store of the simulated host: a copy of the accounts under "configStore".
#include "keelson/Authentication.hpp"
#include "keelson/Lib.hpp"
#include "platform/HostState.hpp"

namespace Keelson::Authentication {

void StoreUserAccountsToCs() {
    HostSim::Platform::UpdateState([](nlohmann::json& state) {
        HostSim::Platform::CheckFault(state, {"Authentication::StoreUserAccountsToCs"});
        nlohmann::json& store = state["configStore"];
        if (!store.is_object())
            store = nlohmann::json::object();
        store["accounts"] = state.value("accounts", nlohmann::json::array());
    });
}

} // namespace Keelson::Authentication
