// The full-screen layout of the menus: a list pane on the left, a detail pane on the right,
// captions above both, footers below, and the version line at the bottom of the screen.
#pragma once
#include <string>

#include "core/Frame.hpp"
#include "keelson/Dns.hpp"
#include "keelson/Network.hpp"
#include "keelson/Routing.hpp"
#include "text/ItemList.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class RootWindow : public Frame {
public:
    explicit RootWindow(Frame* owner);

    // Lights the whole screen, writes the status line and refills the panes.
    void Draw();
    // Refills the panes from current data and sets the captions of the current selection.
    virtual void UpdateContent() = 0;

    void SetLeftTitle(const std::string& text);
    void SetRightTitle(const std::string& text);
    void SetLeftFooter(const std::string& text);
    void SetRightFooter(const std::string& text);

    Window* GetStatusLine() const { return statusLine; }
    Window* GetMainArea() const { return mainArea; }
    Window* GetLeftPane() const { return leftPane; }
    Window* GetRightPane() const { return rightPane; }
    TextArea* GetLeftTitle() const { return leftTitle; }
    TextArea* GetRightTitle() const { return rightTitle; }
    TextArea* GetLeftFooter() const { return leftFooter; }
    TextArea* GetRightFooter() const { return rightFooter; }
    TextArea* GetDetailText() const { return detailText; }
    ItemList* GetItemList() const { return itemList; }

protected:
    Window* statusLine = nullptr;
    Window* mainArea = nullptr;
    Window* leftPane = nullptr;
    Window* rightPane = nullptr;
    TextArea* leftTitle = nullptr;
    TextArea* rightTitle = nullptr;
    TextArea* leftFooter = nullptr;
    TextArea* rightFooter = nullptr;
    TextArea* detailText = nullptr;
    ItemList* itemList = nullptr;
    TesselCtl::Network::DnsConfigImpl dnsConfig{"defaultTcpipStack"};
    TesselCtl::Network::RoutingInfoImpl routingInfo{"defaultTcpipStack"};
    TesselCtl::Network::VirtualSwitchInfoImpl virtualSwitchInfo;
};

} // namespace Lanyx
