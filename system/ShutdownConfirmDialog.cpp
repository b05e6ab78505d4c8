#include "system/ShutdownConfirmDialog.hpp"

#include <cstdint>

namespace Lanyx {

namespace {

enum CatalogueId : uint32_t {
    TitleId = 171,
    MessageId = 172,
};

} // namespace

ShutdownConfirmDialog::ShutdownConfirmDialog(Frame* owner, bool graceful)
    : PowerActionDialog(owner, graceful, TitleId, MessageId, "poweroff")
{
}

} // namespace Lanyx
