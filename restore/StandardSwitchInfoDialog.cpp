#include "restore/StandardSwitchInfoDialog.hpp"

#include "restore/SwitchRows.hpp"
#include "text/CatalogueIds.hpp"
#include "text/Footers.hpp"

namespace Lanyx {

StandardSwitchInfoDialog::StandardSwitchInfoDialog(Frame* owner, StandardSwitchInfo info)
    : InfoDialog(owner, FormatSwitchDetails(info), owner->CatalogueText(Ids::SwitchDetailsTitle),
                 owner->CatalogueText(Ids::SwitchNameLabel) + info.name, Footers::kOk),
      info(std::move(info)) {}

} // namespace Lanyx
