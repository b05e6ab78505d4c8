// The physical NICs of the host as rows of a check list: which there are, who holds each, and
// one check item per NIC with its label, MAC address, link state and a mark when a switch holds
// it. The management network's adapter choice and the new-switch form share it.
#pragma once
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "restore/switches/Switches.hpp"
#include "text/CheckItem.hpp"
#include "text/LabelItem.hpp"

namespace Lanyx {

class AdapterRows {
public:
    // The NIC names and their users; false leaves the reason in the log.
    bool Gather();
    // Reads each NIC once, in the order of Gather. Library exceptions pass to the caller.
    void ReadAdapters();

    size_t Count() const { return infos.size(); }
    const AdapterInfo& Info(size_t row) const { return infos.at(row); }
    const std::vector<std::string>& Names() const { return names; }
    // The switch that holds the NIC, empty when it is free.
    const std::string& UsedBy(const std::string& name) const;

    // The column heads; not selectable.
    static std::unique_ptr<LabelItem> MakeHeader();
    std::unique_ptr<CheckItem> MakeRow(size_t row, bool checked) const;

private:
    std::vector<std::string> names;
    UplinkUsers users;
    std::vector<AdapterInfo> infos;
};

} // namespace Lanyx
