#include "system/RebootConfirmDialog.hpp"

#include "text/CatalogueIds.hpp"

namespace Lanyx {

RebootConfirmDialog::RebootConfirmDialog(Frame* owner, bool graceful)
    : PowerActionDialog(owner, graceful, Ids::RestartHost, Ids::RestartInProgress, "reboot") {}

} // namespace Lanyx
