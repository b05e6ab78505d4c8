// The few host library entry points the catalogue needs, so its tests run without a host.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include "FakeSysinfo.hpp"
#include "keelson/Lib.hpp"
#include "keelson/Util.hpp"

namespace Lanyx::Testing {

FakeSysinfo& Sysinfo() {
    static FakeSysinfo sysinfo;
    return sysinfo;
}

} // namespace Lanyx::Testing

namespace Keelson {

namespace Lib {

KeelsonException::KeelsonException(std::string text) : text_(std::move(text)) {}

const char* KeelsonException::what() const noexcept {
    return text_.c_str();
}

} // namespace Lib

namespace Misc {

std::string StrPrintf(const char* format, ...) {
    va_list args;
    va_start(args, format);
    va_list copy;
    va_copy(copy, args);
    const int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    if (length > 0) {
        std::vsnprintf(text.data(), text.size() + 1, format, args);
    }
    va_end(args);
    return text;
}

} // namespace Misc

} // namespace Keelson

namespace TesselCtl::Util {

void SysinfoUtil::SysinfoGet(ProbeNode node, void* record, size_t size) {
    auto& fake = Lanyx::Testing::Sysinfo();
    ++fake.reads;
    if (fake.fail || node != Probe_NODE_system_version || size != sizeof fake.record) {
        throw Keelson::Lib::KeelsonException("SysinfoGet failed");
    }
    std::memcpy(record, fake.record, sizeof fake.record);
}

} // namespace TesselCtl::Util
