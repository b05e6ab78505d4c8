#include "restore/HostLocalPort.hpp"

#include <cstdlib>

#include <boost/regex.hpp>

namespace Lanyx {

std::string HostLocalPortId(const std::string& oldId, const std::string& suffix) {
    static const boost::regex hostLocal("^hlp\\-.*\\#[0-9]*$");
    static const boost::regex number("#[0-9]*$");
    if (boost::regex_match(oldId, hostLocal))
        return boost::regex_replace(oldId, number, suffix, boost::regex_constants::format_literal);
    return "hlp-" + oldId + suffix;
}

std::optional<uint16_t> FabricVlan(const std::string& text) {
    // strtol saturates, so a long run of digits still meets the range test.
    const long vlan = std::strtol(text.c_str(), nullptr, 10);
    if (vlan < 0 || vlan > 4094)
        return std::nullopt;
    return static_cast<uint16_t>(vlan);
}

} // namespace Lanyx
