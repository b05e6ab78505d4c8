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

// The firmware's description of the system board, in the order the firmware tables give it.
struct BiosData {
    std::string vendor;
    std::string version;     // BIOS version text
    std::string releaseDate; // BIOS date text
    std::string assetTag;
    std::string systemVersion;
    std::string boardSerial;
    std::string chassisType;
    int32_t releaseMajor = 0; // BIOS release
    int32_t releaseMinor = 0;
    int32_t firmwareMajor = 0; // embedded controller release
    int32_t firmwareMinor = 0;
    std::vector<std::string> oemStrings;
};

// One storage adapter and the kernel module that drives it.
struct StorageAdapter {
    std::string name;   // "storbus0", ...
    std::string driver; // module name
};

class HardwareInfo : public virtual Lib::KeelsonObject {
public:
    virtual BiosData GetBiosData() const = 0;
    // Version of the management controller.
    virtual std::string GetVersionString() const = 0;
};

class StorageInfo : public virtual Lib::KeelsonObject {
public:
    virtual std::vector<StorageAdapter> GetAdapters() const = 0;
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
    // The service tag the vendor gave the system; empty when it has none.
    std::string GetServiceTag() const;
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
