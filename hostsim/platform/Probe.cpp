// Kernel information nodes, made from the product and boot option of the state.
#include "zephora/probe.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <vector>

#include "keelson/Lib.hpp"
#include "keelson/Util.hpp"
#include "platform/HostState.hpp"

namespace {

// Fills the record of a node; false with a reason when the node or size is wrong.
bool FillNode(const nlohmann::json& state, ProbeNode node, void* record, size_t size,
              std::string& reason) {
    if (record == nullptr) {
        reason = "no record given";
        return false;
    }
    if (node == Probe_NODE_system_version) {
        if (size < PROBE_SYSTEM_VERSION_SIZE) {
            reason = "record too small for the system version node";
            return false;
        }
        std::vector<unsigned char> buffer(PROBE_SYSTEM_VERSION_SIZE, 0);
        const nlohmann::json product = state.value("product", nlohmann::json::object());
        std::string name = product.value("name", "");
        std::string version = product.value("version", "");
        std::memcpy(&buffer[PROBE_SYSTEM_VERSION_PRODUCT], name.data(),
                    std::min<size_t>(name.size(), 31));
        std::memcpy(&buffer[PROBE_SYSTEM_VERSION_VERSION], version.data(),
                    std::min<size_t>(version.size(), 31));
        uint32_t build = product.value("build", 0u);
        // The kernel's own version text and the build as text, beside the binary build number.
        const std::string kernel = product.value("kernelVersion", version);
        const std::string buildText = std::to_string(build);
        std::memcpy(&buffer[96], kernel.data(), std::min<size_t>(kernel.size(), 31));
        std::memcpy(&buffer[128], buildText.data(), std::min<size_t>(buildText.size(), 31));
        std::memcpy(&buffer[PROBE_SYSTEM_VERSION_BUILD], &build, sizeof build);
        std::memcpy(record, buffer.data(), buffer.size());
        return true;
    }
    if (node == Probe_NODE_system_bootOption) {
        if (size < 4) {
            reason = "record too small for the boot option node";
            return false;
        }
        unsigned char value[4] = {0, 0, 0, 0};
        value[0] =
            state.value("bootOption", nlohmann::json::object()).value("auditMode", false) ? 1 : 0;
        std::memcpy(record, value, sizeof value);
        return true;
    }
    reason = "unknown node " + std::to_string(static_cast<int>(node));
    return false;
}

} // namespace

extern "C" int Probe_Get(ProbeNode node, void* buffer, size_t size) {
    try {
        const auto document = HostSim::Platform::StateFor({"Probe_Get"});
        const nlohmann::json& state = *document;
        std::string reason;
        return FillNode(state, node, buffer, size, reason) ? 0 : EINVAL;
    } catch (const std::exception&) {
        return EIO;
    }
}

namespace TesselCtl::Util {

void SysinfoUtil::SysinfoGet(ProbeNode node, void* record, size_t size) {
    const auto document = HostSim::Platform::StateFor({"SysinfoUtil::SysinfoGet"});
    const nlohmann::json& state = *document;
    std::string reason;
    if (!FillNode(state, node, record, size, reason))
        throw Keelson::Lib::KeelsonException("SysinfoGet failed: " + reason);
}

} // namespace TesselCtl::Util
