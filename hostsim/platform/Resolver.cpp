// Name resolution of the simulated host. These definitions take the place of the C library's
// getaddrinfo and freeaddrinfo in any program linked with this library: a name is looked up in
// the root's "/etc/hosts" first, then in the records of the host's name servers, which answer only
// while one of them is reachable (the ping list). Nothing asks the machine's own resolver.
#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/HostState.hpp"

namespace {

using nlohmann::json;

bool SameName(const std::string& a, const std::string& b) {
    return ::strcasecmp(a.c_str(), b.c_str()) == 0;
}

std::vector<std::string> FromHostsFile(const std::string& name) {
    std::vector<std::string> addresses;
    std::ifstream in(HostSim::Platform::HostFile("/etc/hosts"));
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line.substr(0, line.find('#')));
        std::string address, word;
        words >> address;
        while (words >> word) {
            if (SameName(word, name)) {
                addresses.push_back(address);
                break;
            }
        }
    }
    return addresses;
}

bool Listed(const json& array, const std::string& text) {
    if (!array.is_array())
        return false;
    for (const json& entry : array)
        if (entry.is_string() && entry.get<std::string>() == text)
            return true;
    return false;
}

// EAI_AGAIN when no name server can be reached, as a real resolver times out.
int FromNameServers(const std::string& name, std::vector<std::string>& addresses) {
    HostSim::Platform::StateDocument document;
    try {
        document = HostSim::Platform::ReadState();
    } catch (const std::exception&) {
        return EAI_FAIL;
    }
    const json& state = *document;
    const json dns = state.value("network", json::object()).value("dns", json::object());
    const json reachable = state.value("ping", json::object()).value("reachable", json::array());
    bool answering = false;
    for (const json& server : dns.value("servers", json::array()))
        answering =
            answering || (server.is_string() && Listed(reachable, server.get<std::string>()));
    if (!answering)
        return EAI_AGAIN;

    std::vector<std::string> candidates = {name};
    if (name.find('.') == std::string::npos) {
        for (const json& domain : dns.value("searchDomains", json::array()))
            if (domain.is_string())
                candidates.push_back(name + "." + domain.get<std::string>());
    }
    const json records = dns.value("records", json::object());
    for (const std::string& candidate : candidates) {
        for (const auto& [recordName, list] : records.items()) {
            if (!SameName(recordName, candidate) || !list.is_array())
                continue;
            for (const json& address : list)
                if (address.is_string())
                    addresses.push_back(address.get<std::string>());
            return 0;
        }
    }
    return EAI_NONAME;
}

addrinfo* NewEntry(const std::string& text, int socktype) {
    in_addr v4{};
    in6_addr v6{};
    const bool isV4 = ::inet_pton(AF_INET, text.c_str(), &v4) == 1;
    if (!isV4 && ::inet_pton(AF_INET6, text.c_str(), &v6) != 1)
        return nullptr;
    auto* entry = static_cast<addrinfo*>(std::calloc(1, sizeof(addrinfo) + sizeof(sockaddr_in6)));
    if (entry == nullptr)
        return nullptr;
    auto* storage = reinterpret_cast<char*>(entry + 1);
    entry->ai_socktype = socktype;
    entry->ai_addr = reinterpret_cast<sockaddr*>(storage);
    if (isV4) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr = v4;
        std::memcpy(storage, &address, sizeof address);
        entry->ai_family = AF_INET;
        entry->ai_addrlen = sizeof address;
    } else {
        sockaddr_in6 address{};
        address.sin6_family = AF_INET6;
        address.sin6_addr = v6;
        std::memcpy(storage, &address, sizeof address);
        entry->ai_family = AF_INET6;
        entry->ai_addrlen = sizeof address;
    }
    return entry;
}

} // namespace

extern "C" void freeaddrinfo(addrinfo* list) noexcept {
    while (list != nullptr) {
        addrinfo* next = list->ai_next;
        std::free(list->ai_canonname);
        std::free(list);
        list = next;
    }
}

extern "C" int getaddrinfo(const char* node, const char* /*service*/, const addrinfo* hints,
                           addrinfo** result) {
    if (result == nullptr)
        return EAI_SYSTEM;
    *result = nullptr;
    if (node == nullptr || *node == '\0')
        return EAI_NONAME;
    const std::string name = node;
    const int family = hints != nullptr ? hints->ai_family : AF_UNSPEC;
    const int socktype = hints != nullptr ? hints->ai_socktype : 0;

    std::vector<std::string> addresses = FromHostsFile(name);
    in6_addr literal{};
    if (addresses.empty() &&
        (::inet_pton(AF_INET, node, &literal) == 1 || ::inet_pton(AF_INET6, node, &literal) == 1))
        addresses.push_back(name);
    if (addresses.empty()) {
        if (const int status = FromNameServers(name, addresses); status != 0)
            return status;
    }

    addrinfo** tail = result;
    for (const std::string& text : addresses) {
        addrinfo* entry = NewEntry(text, socktype);
        if (entry == nullptr || (family != AF_UNSPEC && entry->ai_family != family)) {
            freeaddrinfo(entry);
            continue;
        }
        *tail = entry;
        tail = &entry->ai_next;
    }
    if (*result == nullptr)
        return EAI_NONAME;
    if (hints != nullptr && (hints->ai_flags & AI_CANONNAME) != 0) {
        (*result)->ai_canonname = ::strdup(node);
        if ((*result)->ai_canonname == nullptr) {
            freeaddrinfo(*result);
            *result = nullptr;
            return EAI_MEMORY;
        }
    }
    return 0;
}
