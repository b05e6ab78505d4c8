// The host object with its firmware, storage and module facts, and the service tag; each call
// reads the state afresh.
#include <memory>

#include "keelson/Hardware.hpp"
#include "keelson/System.hpp"
#include "platform/HostState.hpp"

namespace {

using nlohmann::json;

json HardwareSection(std::initializer_list<const char*> operations) {
    const auto document = HostSim::Platform::StateFor(operations);
    const json& state = *document;
    json hardware = state.value("hardware", json::object());
    return hardware.is_object() ? hardware : json::object();
}

std::string Text(const json& object, const char* key) {
    auto it = object.find(key);
    return it != object.end() && it->is_string() ? it->get<std::string>() : std::string();
}

int32_t Number(const json& object, const char* key) {
    auto it = object.find(key);
    return it != object.end() && it->is_number_integer() ? it->get<int32_t>() : 0;
}

json Adapters(const json& hardware) {
    json adapters = hardware.value("storageAdapters", json::array());
    return adapters.is_array() ? adapters : json::array();
}

class SimHardwareInfo final : public Keelson::Hardware::HardwareInfo {
public:
    Keelson::Hardware::BiosData GetBiosData() const override {
        const json hardware = HardwareSection({"HardwareInfo::GetBiosData"});
        json bios = hardware.value("bios", json::object());
        if (!bios.is_object())
            bios = json::object();
        Keelson::Hardware::BiosData data;
        data.vendor = Text(bios, "vendor");
        data.version = Text(bios, "version");
        data.releaseDate = Text(bios, "date");
        data.assetTag = Text(bios, "assetTag");
        data.systemVersion = Text(hardware, "model");
        data.boardSerial = Text(hardware, "serialNumber");
        data.chassisType = "Rack Mount Chassis";
        data.releaseMajor = Number(bios, "releaseMajor");
        data.releaseMinor = Number(bios, "releaseMinor");
        return data;
    }

    std::string GetVersionString() const override {
        return Text(HardwareSection({"HardwareInfo::GetVersionString"}), "bmcVersion");
    }
};

class SimStorageInfo final : public Keelson::Hardware::StorageInfo {
public:
    std::vector<Keelson::Hardware::StorageAdapter> GetAdapters() const override {
        std::vector<Keelson::Hardware::StorageAdapter> result;
        for (const json& adapter : Adapters(HardwareSection({"StorageInfo::GetAdapters"}))) {
            if (adapter.is_object())
                result.push_back({Text(adapter, "name"), Text(adapter, "driver")});
        }
        return result;
    }
};

// Modules are the drivers of the storage adapters, at the versions the state gives them.
class SimSystemInfo final : public Keelson::System::SystemInfo {
public:
    Keelson::System::ModuleInfo GetModule(const std::string& name) const override {
        for (const json& adapter : Adapters(HardwareSection({"SystemInfo::GetModule"}))) {
            if (adapter.is_object() && Text(adapter, "driver") == name)
                return {name, Text(adapter, "driverVersion")};
        }
        throw Keelson::Lib::KeelsonException("Module " + name + " is not loaded");
    }
};

class SimHost final : public Keelson::Host {
public:
    std::unique_ptr<Keelson::Hardware::HardwareInfo> GetHardwareInfo() const override {
        return std::make_unique<SimHardwareInfo>();
    }
    std::unique_ptr<Keelson::Hardware::StorageInfo> GetStorageInfo() const override {
        return std::make_unique<SimStorageInfo>();
    }
    std::unique_ptr<Keelson::System::SystemInfo> GetSystemInfo() const override {
        return std::make_unique<SimSystemInfo>();
    }
};

} // namespace

namespace Keelson {

Host* HostFactory::GetHost() {
    HostSim::Platform::StateFor({"HostFactory::GetHost"});
    static SimHost host;
    return &host;
}

} // namespace Keelson

namespace TesselCtl::Hardware {

std::string HardwareInfoImpl::GetServiceTag() const {
    return Text(HardwareSection({"HardwareInfoImpl::GetServiceTag"}), "serviceTag");
}

} // namespace TesselCtl::Hardware
