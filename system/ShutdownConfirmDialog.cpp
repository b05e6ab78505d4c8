#include "system/ShutdownConfirmDialog.hpp"

#include "text/CatalogueIds.hpp"

namespace Lanyx {

ShutdownConfirmDialog::ShutdownConfirmDialog(Frame* owner, bool graceful)
    : PowerActionDialog(owner, graceful, Ids::ShutDownHost, Ids::ShutdownInProgress, "poweroff") {}

} // namespace Lanyx
