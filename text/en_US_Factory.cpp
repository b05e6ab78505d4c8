#include "text/en_US_Factory.hpp"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "keelson/Lib.hpp"
#include "keelson/Util.hpp"
#include "text/StringTable.hpp"

namespace Lanyx {

namespace {

static_assert(std::is_trivially_destructible_v<en_US_Factory>);

// The factory has no data and a trivial destructor, so the object lives in static storage
// that no exit handler tears down; `instance` stays null until it is asked for.
en_US_Factory theFactory;
StringFactory* instance = nullptr;

// Plain storage, so the text handed out outlives every static destructor. The four fields
// together are shorter than the record, so the line always fits.
char versionLine[PROBE_SYSTEM_VERSION_SIZE + 64];

// Offsets of the text fields of the system version record.
constexpr size_t kFieldOffsets[] = {0, 32, 96, 128};
constexpr size_t kFieldEnds[] = {32, 96, 128, PROBE_SYSTEM_VERSION_SIZE};

// A field that lacks its terminating null ends at the next field, never beyond the record.
std::string Field(const char* record, size_t index) {
    const char* start = record + kFieldOffsets[index];
    return std::string(start, strnlen(start, kFieldEnds[index] - kFieldOffsets[index]));
}

} // namespace

const char* VersionLine() {
    if (versionLine[0] != '\0') {
        return versionLine;
    }
    char record[PROBE_SYSTEM_VERSION_SIZE] = {};
    try {
        TesselCtl::Util::SysinfoUtil::SysinfoGet(Probe_NODE_system_version, record, sizeof record);
    } catch (const Keelson::Lib::KeelsonException&) {
        return ""; // the next lookup asks the kernel again
    }
    const std::string line = Keelson::Misc::StrPrintf(
        "%s %s (Tessel %s Build %s)", Field(record, 0).c_str(), Field(record, 1).c_str(),
        Field(record, 2).c_str(), Field(record, 3).c_str());
    const size_t length = std::min(line.size(), sizeof versionLine - 1);
    std::memcpy(versionLine, line.data(), length);
    versionLine[length] = '\0';
    return versionLine;
}

const char* en_US_Factory::GetString(uint32_t id) {
    if (id >= kStringCount) {
        return "";
    }
    if (id == kVersionLineId) {
        return VersionLine();
    }
    return kStringTable[id];
}

StringFactory* GetStringFactory(const std::string& locale) {
    if (!instance && locale == "en_US") {
        instance = &theFactory;
    }
    return instance;
}

} // namespace Lanyx
