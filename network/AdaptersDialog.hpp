// The choice of the physical NICs that carry the management network: every NIC with its label,
// MAC address, link state and a mark when a switch holds it. Space toggles a NIC, D shows its
// details. The result is the list of chosen names in the order they were chosen; the first gives
// the interface its MAC address.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "network/AdapterRows.hpp"
#include "text/FormDialog.hpp"

namespace Lanyx {

class AdaptersDialog : public FormDialog {
public:
    // `selection`: the pending NIC names; `switchName`: the switch of the management interface,
    // whose own NICs need no warning. Reads nothing from the host until it runs.
    AdaptersDialog(Frame* owner, std::vector<std::string> selection, uint32_t maxActiveUplinks,
                   std::string switchName);

    // After a true run: the chosen NICs, first choice first.
    const std::vector<std::string>& GetSelectedNames() const { return selectedNames; }
    // Handed back as it came.
    uint32_t GetMaxActiveUplinks() const { return maxActiveUplinks; }
    const AdapterRows& GetRows() const { return rows; }

protected:
    bool Prepare() override;
    void Open() override;
    KeyResult HandleKey(int key) override;

private:
    // The NIC row selected, or -1 on none.
    int SelectedRow() const;
    void Toggle(size_t row);
    // Enter: NICs held by another switch need the operator's yes once.
    bool ConfirmUsedAdapters();

    std::vector<std::string> selectedNames;
    uint32_t maxActiveUplinks;
    std::string switchName;
    AdapterRows rows;
    std::vector<CheckItem*> checks; // one per NIC, in row order
};

} // namespace Lanyx
