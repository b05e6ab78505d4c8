// Host control library: the host's resources as the guests use them.
#pragma once
#include "keelson/Lib.hpp"

namespace TesselCtl::Resource {

class ResourceInfoImpl : public virtual Keelson::Lib::KeelsonObject {
public:
    // Whether any guest is powered on.
    bool HasRunningVirtualMachines() const;
};

} // namespace TesselCtl::Resource
