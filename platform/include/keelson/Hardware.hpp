// Host control library: hardware facts and smart-card readers.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "keelson/Lib.hpp"

namespace Keelson::Hardware {

struct SmartCardToken {
    std::string label;
    std::string manufacturer;
    std::string model;
    std::string serialNumber;
    std::string slotDescription;
    std::string firmware;
    std::vector<std::string> certificates;
    std::vector<std::string> userIds;
};

} // namespace Keelson::Hardware

namespace TesselCtl::Hardware {

class SmartCardInfoImpl : public virtual Keelson::Lib::KeelsonObject {
public:
    // The reader slots, in order.
    std::vector<std::string> GetAllSlots() const;
    // Fills the token of that slot; false when no token is present.
    bool GetToken(const std::string& slot, Keelson::Hardware::SmartCardToken& token) const;
};

// The one global instance.
SmartCardInfoImpl& GetSmartCardInfo();

// System vendor, product name and serial number.
class HardwareInfoImpl : public virtual Keelson::Lib::KeelsonObject {
public:
    std::string GetVendorName() const;
    std::string GetProductName() const;
    std::string GetSerialNumber() const;
};

class CpuInfoImpl : public virtual Keelson::Lib::KeelsonObject {
public:
    int GetNumCpuPackages() const;
    // The model name as the host reports it, white space and all.
    std::string GetModelName() const;
};

class MemoryInfoImpl : public virtual Keelson::Lib::KeelsonObject {
public:
    uint64_t GetTotalPages() const;
    uint64_t GetPageSize() const;
};

} // namespace TesselCtl::Hardware
