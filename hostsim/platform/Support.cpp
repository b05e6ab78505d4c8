// The host's support library: product state from the state document, log set-up, audit records.
#include "zephora/support.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>

#include "keelson/Lib.hpp"
#include "platform/HostState.hpp"
#include "platform/Records.hpp"

namespace {

// The strings handed out stay valid until the next call for the same field.
struct ProductStrings {
    std::mutex mutex;
    std::string name, version, build, option;
};

ProductStrings& Product() {
    static ProductStrings strings;
    return strings;
}

const char* ProductField(std::string ProductStrings::*field, const char* key) {
    ProductStrings& p = Product();
    std::lock_guard<std::mutex> lock(p.mutex);
    std::string value;
    try {
        const auto document = HostSim::Platform::ReadState();
        const nlohmann::json& state = *document;
        const nlohmann::json& product = state.value("product", nlohmann::json::object());
        auto it = product.find(key);
        if (it != product.end())
            value = it->is_string() ? it->get<std::string>() : it->dump();
    } catch (const std::exception&) {
        // The support library has no way to report; an empty string is its answer.
    }
    p.*field = value;
    return (p.*field).c_str();
}

} // namespace

extern "C" {

void Preference_Init(void) {}

const char* ProductState_GetName(void) {
    return ProductField(&ProductStrings::name, "name");
}
const char* ProductState_GetVersion(void) {
    return ProductField(&ProductStrings::version, "version");
}
const char* ProductState_GetBuildNumberString(void) {
    return ProductField(&ProductStrings::build, "build");
}
const char* ProductState_GetCompilationOption(void) {
    return ProductField(&ProductStrings::option, "compilationOption");
}

void Log_SetProductInfo(const char*, const char*, const char*, const char*) {}

void* Log_CfgInterface(void) {
    static int config;
    return &config;
}

int Log_InitWithSyslogSimpleInt(const char*, void*, const char*) {
    return 0;
}

int Str_Sprintf(char* buffer, size_t size, const char* format, ...) {
    va_list args;
    va_start(args, format);
    int length = std::vsnprintf(buffer, size, format, args);
    va_end(args);
    if (length < 0)
        return length;
    // The written length: at most what fitted.
    if (size == 0)
        return 0;
    return static_cast<size_t>(length) < size ? length : static_cast<int>(size - 1);
}

void ZephAudit_VLog(const char* action, const char* user, const char* service, int success, ...) {
    std::string line = HostSim::Platform::Timestamp() + " action=" + (action ? action : "") +
                       " user=" + (user ? user : "") + " service=" + (service ? service : "") +
                       " success=" + (success ? "1" : "0");
    va_list args;
    va_start(args, success);
    for (;;) {
        const char* key = va_arg(args, const char*);
        if (key == nullptr)
            break;
        const char* value = va_arg(args, const char*);
        line += std::string(" ") + key + "=\"" + (value ? value : "") + "\"";
        if (value == nullptr)
            break;
    }
    va_end(args);
    HostSim::Platform::AppendRecord("/var/log/audit.log", line);
}

} // extern "C"
