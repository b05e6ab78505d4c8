#include "welcome/HostFacts.hpp"

#include <cctype>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <sstream>

#include "host/CommandRunner.hpp"
#include "host/HostRoot.hpp"
#include "host/Log.hpp"
#include "keelson/Dns.hpp"
#include "keelson/Hardware.hpp"
#include "keelson/Lib.hpp"
#include "keelson/System.hpp"
#include "keelson/Util.hpp"
#include "text/Markup.hpp"

namespace Lanyx {

namespace {

constexpr char hostCertificate[] = "/etc/zephora/ssl/node.crt";
constexpr char dsaHostKey[] = "/etc/ssh/ssh_host_dsa_key";
constexpr char rsaHostKey[] = "/etc/ssh/ssh_host_rsa_key";
constexpr char notAvailable[] = "N/A";
constexpr int captureBytes = 255;
constexpr uint64_t mebibyte = uint64_t{1} << 20;
constexpr uint64_t memoryGranule = 0x10000000; // 256 MiB
constexpr char unitLetters[] = "MGTP";

bool IsSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// The record of the kernel's version node: product name, version and build number.
struct VersionRecord {
    std::string product;
    std::string version;
    uint32_t build = 0;
};

std::string FieldAt(const unsigned char* record, size_t offset, size_t end) {
    const char* start = reinterpret_cast<const char*>(record + offset);
    return std::string(start, strnlen(start, end - offset));
}

VersionRecord ReadVersionRecord() {
    unsigned char record[PROBE_SYSTEM_VERSION_SIZE] = {};
    TesselCtl::Util::SysinfoUtil::SysinfoGet(Probe_NODE_system_version, record, sizeof record);
    VersionRecord version;
    version.product = FieldAt(record, PROBE_SYSTEM_VERSION_PRODUCT, PROBE_SYSTEM_VERSION_VERSION);
    version.version = FieldAt(record, PROBE_SYSTEM_VERSION_VERSION, PROBE_SYSTEM_VERSION_BUILD);
    std::memcpy(&version.build, record + PROBE_SYSTEM_VERSION_BUILD, sizeof version.build);
    return version;
}

uint64_t InstalledMemory() {
    const TesselCtl::Hardware::MemoryInfoImpl memory;
    return memory.GetTotalPages() * memory.GetPageSize();
}

std::string StorageDriverVersion() {
    static constexpr char adapterName[] = "storbus0";
    try {
        Keelson::Host* host = Keelson::HostFactory::GetHost();
        for (const Keelson::Hardware::StorageAdapter& adapter :
             host->GetStorageInfo()->GetAdapters()) {
            if (adapter.name == adapterName)
                return host->GetSystemInfo()->GetModule(adapter.driver).version;
        }
    } catch (const Keelson::Lib::KeelsonException& e) {
        Log(LOG_ERR, "Get %s version string failed, err=%s", adapterName, e.what());
    }
    return notAvailable;
}

} // namespace

std::string CollapseWhitespace(std::string_view text) {
    std::string result;
    bool gap = false;
    for (char c : text) {
        if (IsSpace(c)) {
            gap = !result.empty();
            continue;
        }
        if (gap)
            result += ' ';
        gap = false;
        result += c;
    }
    return result;
}

std::string FormatVendorLine(std::string_view vendor, std::string_view product) {
    const std::string cleanVendor = CollapseWhitespace(vendor);
    const std::string cleanProduct = CollapseWhitespace(product);
    if (cleanProduct.starts_with(cleanVendor))
        return cleanProduct;
    return cleanVendor + " " + cleanProduct;
}

std::string GetSslThumbprint(unsigned digestBits) {
    char option[16];
    std::snprintf(option, sizeof option, "-SHA%u", digestBits);
    const std::string certificate = HostPath(hostCertificate);
    const char* const argv[] = {"openssl", "x509",         "-in",  certificate.c_str(),
                                "-noout",  "-fingerprint", option, nullptr};
    char out[captureBytes + 1] = {};
    char err[captureBytes + 1] = {};
    int outLength = captureBytes;
    int errLength = captureBytes;
    const int status = RunCommand("/bin/openssl", argv, out, &outLength, err, &errLength);
    out[outLength > 0 ? outLength : 0] = '\0';

    unsigned scannedBits = 0;
    char fingerprint[captureBytes + 1] = {};
    if (status != 0 ||
        std::sscanf(out, "SHA%u Fingerprint=%255s", &scannedBits, fingerprint) != 2) {
        Log(LOG_ERR, "Failed to generate the host's %s SSL thumbprint", option + 1);
        if (status != 0)
            fingerprint[0] = '\0';
    }
    return fingerprint;
}

std::string GetSshFingerprint(const std::string& keyPath) {
    const std::string keyFile = HostPath(keyPath);
    const char* const argv[] = {"ssh-keygen", "-l", "-f", keyFile.c_str(), nullptr};
    char out[captureBytes + 1] = {};
    char err[captureBytes + 1] = {};
    int outLength = captureBytes;
    int errLength = captureBytes;
    const int status = RunCommand("/usr/lib/zephora/openssh/bin/ssh-keygen", argv, out, &outLength,
                                  err, &errLength);
    out[outLength > 0 ? outLength : 0] = '\0';
    err[errLength > 0 ? errLength : 0] = '\0';
    if (status != 0) {
        Log(LOG_ERR, "SSH Key Fingerprint generation failed: %s", err);
        return {};
    }
    std::istringstream words(out);
    std::string size;
    std::string fingerprint;
    words >> size >> fingerprint;
    return fingerprint;
}

std::string GetSerialNumber() {
    return TesselCtl::Hardware::HardwareInfoImpl().GetSerialNumber();
}

std::string GetFullHostName() {
    const TesselCtl::Network::DnsConfigImpl dns("defaultTcpipStack");
    return dns.GetHostname() + "." + dns.GetDomain();
}

std::string GetProductName() {
    return ReadVersionRecord().product;
}

std::string GetProductVersion() {
    const VersionRecord record = ReadVersionRecord();
    return Keelson::Misc::StrPrintf("%s build-%05u", record.version.c_str(), record.build);
}

std::string FormatMemoryTag(uint64_t bytes) {
    const uint64_t size = (bytes + memoryGranule - 1) / memoryGranule * memoryGranule;
    uint64_t unit = mebibyte;
    int index = 0;
    // PiB is the largest unit there is a letter for.
    while (size >= unit * 1024 && index < 3) {
        unit *= 1024;
        ++index;
    }
    const uint64_t whole = size / unit;
    const uint64_t rest = size % unit;
    if (rest == 0)
        return Keelson::Misc::StrPrintf("%" PRIu64 " %cB", whole, unitLetters[index]);
    const uint64_t tenth = rest * 10 / unit;
    return Keelson::Misc::StrPrintf("%" PRIu64 ".%" PRIu64 " %cB", whole, tenth,
                                    unitLetters[index]);
}

std::string FormatMemoryLine(uint64_t bytes) {
    uint64_t unit = mebibyte;
    int index = 0;
    while (index < 3 && bytes >= unit * 1024) {
        unit *= 1024;
        ++index;
    }
    float value = static_cast<float>(bytes) / static_cast<float>(unit);
    value = static_cast<float>(static_cast<int64_t>(value * 10.0f)) / 10.0f;
    std::ostringstream line;
    line << value << ' ' << unitLetters[index] << "iB Memory";
    return line.str();
}

std::string GetMemoryText() {
    return FormatMemoryTag(InstalledMemory());
}

std::string GetBiosField(int id) {
    switch (id) {
    case 1:
        return StorageDriverVersion();
    case 2:
        return Keelson::HostFactory::GetHost()->GetHardwareInfo()->GetVersionString();
    case 3: {
        const Keelson::Hardware::BiosData bios =
            Keelson::HostFactory::GetHost()->GetHardwareInfo()->GetBiosData();
        return Keelson::Misc::StrPrintf("%s (%d.%d) %s", bios.version.c_str(), bios.releaseMajor,
                                        bios.releaseMinor, bios.releaseDate.c_str());
    }
    case 4:
        return Keelson::HostFactory::GetHost()->GetHardwareInfo()->GetBiosData().assetTag;
    default:
        Log(LOG_ERR, "Invalid version id: %d requested", id);
        return notAvailable;
    }
}

std::string GetServiceTag() {
    try {
        std::string tag = TesselCtl::Hardware::HardwareInfoImpl().GetServiceTag();
        return tag.empty() ? notAvailable : tag;
    } catch (const Keelson::Lib::KeelsonException&) {
        // A host that cannot say has none as far as the screen is concerned.
        return notAvailable;
    }
}

void RegisterHostFactTags() {
    RegisterTagSource("ip", &GetManagementAddress);
    RegisterTagSource("ssl-thumbprint-sha-1", [] { return GetSslThumbprint(1); });
    RegisterTagSource("ssl-thumbprint-sha-256", [] { return GetSslThumbprint(256); });
    RegisterTagSource("ssl-thumbprint-sha-512", [] { return GetSslThumbprint(512); });
    RegisterTagSource("ssh-dsa-fingerprint", [] { return GetSshFingerprint(dsaHostKey); });
    RegisterTagSource("ssh-rsa-fingerprint", [] { return GetSshFingerprint(rsaHostKey); });
    RegisterTagSource("serial-number", &GetSerialNumber);
    RegisterTagSource("hostname", &GetFullHostName);
    RegisterTagSource("ostraproduct", &GetProductName);
    RegisterTagSource("ostraversion", &GetProductVersion);
    RegisterTagSource("supportstart", [] { return std::string(notAvailable); });
    RegisterTagSource("supportperiod", [] { return std::string(notAvailable); });
    RegisterTagSource("memory", &GetMemoryText);
    RegisterTagSource("servicetag", &GetServiceTag);
    RegisterTagSource("assettag", [] { return GetBiosField(4); });
    RegisterTagSource("BIOSversion", [] { return GetBiosField(3); });
    RegisterTagSource("BMCversion", [] { return GetBiosField(2); });
    RegisterTagSource("PLSAversion", [] { return GetBiosField(1); });
    RegisterTagSource("CPLDversion", [] { return std::string(notAvailable); });
}

} // namespace Lanyx
