#include "welcome/ManagementText.hpp"

#include <algorithm>
#include <sstream>

#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

std::string Parenthesised(StringFactory& strings, uint32_t id) {
    return std::string("(") + strings.GetString(id) + ")";
}

std::string Ipv6Line(const Ipv6Entry& entry, StringFactory& strings) {
    std::string line = "https://[" + entry.address + "]/ ";
    switch (entry.type) {
    case Ipv6Static:
        line += Parenthesised(strings, Ids::Static);
        break;
    case Ipv6Dhcp:
        line += Parenthesised(strings, Ids::Dhcp);
        break;
    case Ipv6Autoconf:
        line += Parenthesised(strings, Ids::Autoconf);
        break;
    default:
        break;
    }
    return line + "\n";
}

} // namespace

std::string ComposeIpv6Lines(const std::vector<Ipv6Entry>& entries, StringFactory& strings) {
    // Five fit as well as four and "...", so five are shown whole.
    const size_t taken = entries.size() == 5 ? 5 : std::min<size_t>(entries.size(), 4);
    std::vector<std::string> lines;
    for (size_t i = 0; i < taken; ++i)
        lines.push_back(Ipv6Line(entries[i], strings));
    std::stable_sort(lines.begin(), lines.end(), [](const std::string& a, const std::string& b) {
        return a.size() < b.size();
    });
    std::string text;
    for (const std::string& line : lines)
        text += line;
    if (taken < entries.size())
        text += "...";
    return text;
}

std::string ComposeManagementText(const ManagementFacts& facts, StringFactory& strings) {
    std::ostringstream text;
    text << strings.GetString(Ids::ManageHost);
    if (!facts.hostname.empty() && facts.hostname != "localhost")
        text << "\nhttps://" << facts.hostname << "/ ";
    if (!facts.useNone)
        text << "\nhttps://" << facts.ipv4 << "/ ";
    if (!facts.useNone || facts.useDhcp) {
        if (!facts.useDhcp)
            text << Parenthesised(strings, Ids::Static);
        else if (!facts.dhcpServerKnown)
            text << Parenthesised(strings, Ids::WaitingForDhcp);
        else
            text << Parenthesised(strings, Ids::Dhcp);
    }
    if (facts.ipv6Enabled)
        text << "\n" << ComposeIpv6Lines(facts.ipv6, strings);
    return text.str();
}

} // namespace Lanyx
