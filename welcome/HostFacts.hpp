// Small readers of one host fact each, returned as text. They feed the substitution tags of
// the markup and the default welcome screen. Nothing is cached: every call asks the host.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace Lanyx {

// Drops white space at both ends and makes every inner run of it one blank.
std::string CollapseWhitespace(std::string_view text);

// "vendor product" with both normalised, or the product alone when it already begins with the
// vendor's name.
std::string FormatVendorLine(std::string_view vendor, std::string_view product);

// IPv4 address of the management interface; "0.0.0.0" when there is none.
std::string GetManagementAddress();

// Fingerprint of the host certificate for a SHA digest of `digestBits` (1, 256, 512), as the
// tool prints it; empty (and logged) when the tool fails.
std::string GetSslThumbprint(unsigned digestBits);

// Fingerprint of the SSH host key at the host path `keyPath`; empty (and logged) on failure.
std::string GetSshFingerprint(const std::string& keyPath);

// These let a KeelsonException of the host library pass.
std::string GetSerialNumber();
std::string GetFullHostName();
std::string GetProductName();
std::string GetProductVersion();
std::string GetMemoryText();

// Memory of `bytes` for the tag: rounded up to 256 MiB, whole units or one cut decimal, "GB".
std::string FormatMemoryTag(uint64_t bytes);
// Memory of `bytes` for the welcome screen: "15.9 GiB Memory", "16 GiB Memory".
std::string FormatMemoryLine(uint64_t bytes);

// Firmware fields by id: 1 driver of the first storage adapter, 2 management controller,
// 3 BIOS, 4 asset tag; any other id is logged and gives "N/A".
std::string GetBiosField(int id);

// The host's service tag; "N/A" when it has none.
std::string GetServiceTag();

// Plugs every reader above into the substitution tags of the markup.
void RegisterHostFactTags();

} // namespace Lanyx
