#include "network/AdapterRows.hpp"

namespace Lanyx {

bool AdapterRows::Gather() {
    names.clear();
    users.clear();
    infos.clear();
    return GatherPhysicalNics(names) && GatherUplinkUsers(names, users);
}

void AdapterRows::ReadAdapters() {
    infos.clear();
    for (const std::string& name : names)
        infos.push_back(GatherAdapterInfo(name, users));
}

const std::string& AdapterRows::UsedBy(const std::string& name) const {
    static const std::string free;
    const auto found = users.find(name);
    return found == users.end() ? free : found->second;
}

std::unique_ptr<LabelItem> AdapterRows::MakeHeader() {
    return std::make_unique<LabelItem>(kAdapterListHeader, false);
}

std::unique_ptr<CheckItem> AdapterRows::MakeRow(size_t row, bool checked) const {
    return std::make_unique<CheckItem>(FormatAdapterRow(infos.at(row)), checked, 0);
}

} // namespace Lanyx
