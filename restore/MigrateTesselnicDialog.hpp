// Moves one kernel interface to a port group of the operator's choice through the overlay
// agent's tool, with the agent stopped around the move.
#pragma once
#include <string>

#include "text/CarouselRadioItem.hpp"
#include "text/FormDialog.hpp"
#include "text/InfoDialog.hpp"
#include "text/PortGroupInfo.hpp"
#include "text/TesselNicInfo.hpp"

namespace Lanyx {

class MigrateTesselnicDialog : public FormDialog {
public:
    using PortGroupCarousel = CarouselRadioItem<PortGroupInfo, InfoDialog, void>;
    using NicCarousel = CarouselRadioItem<TesselNicInfo, InfoDialog, void>;

    // Gathers the port groups and the interfaces; the form does not open without both.
    explicit MigrateTesselnicDialog(Frame* owner);

    bool IsReady() const { return ready; }

protected:
    // Says why when a list came back empty.
    bool Prepare() override;
    void Open() override;
    // <Left> and <Right> turn the selected carousel, <D> shows its row.
    KeyResult HandleKey(int key) override;
    // The move of the two rows shown; a failure keeps the form open.
    bool Accept() override;

private:
    bool ready = false;
    std::string missing; // what the host has none of, when a list is empty
    PortGroupCarousel* portGroupItem = nullptr;
    NicCarousel* nicItem = nullptr;
};

} // namespace Lanyx
