// Guests over the state: a guest runs while its "running" is true.
#include "keelson/Resource.hpp"
#include "platform/HostState.hpp"

namespace TesselCtl::Resource {

bool ResourceInfoImpl::HasRunningVirtualMachines() const {
    const auto document =
        HostSim::Platform::StateFor({"ResourceInfoImpl::HasRunningVirtualMachines"});
    const nlohmann::json& state = *document;
    const nlohmann::json guests = state.value("guests", nlohmann::json::array());
    for (const nlohmann::json& guest : guests.is_array() ? guests : nlohmann::json::array())
        if (guest.is_object() && guest.value("running", false))
            return true;
    return false;
}

} // namespace TesselCtl::Resource
