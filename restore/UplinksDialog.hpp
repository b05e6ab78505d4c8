// The choice of the fabric uplinks the new management port teams over. The ticks keep their
// order: the first ticked is the first active uplink.
#pragma once
#include <string>
#include <vector>

#include "keelson/Network.hpp"
#include "text/CheckItem.hpp"
#include "text/FormDialog.hpp"

namespace Lanyx {

class UplinksDialog : public FormDialog {
public:
    // `port` is the owner's and not owned; `selected` is the earlier choice, ticked at the start.
    UplinksDialog(Frame* owner, Keelson::Network::FabricPort* port,
                  std::vector<std::string> selected, std::vector<std::string> uplinks);

    // The choice, meaningful after a true run.
    const std::vector<std::string>& GetSelected() const { return selected; }

protected:
    bool Prepare() override;
    void Open() override;
    KeyResult HandleKey(int key) override;

private:
    Keelson::Network::FabricPort* port;
    std::vector<std::string> selected;
    std::vector<std::string> uplinks;
    std::vector<CheckItem*> checks;
};

} // namespace Lanyx
