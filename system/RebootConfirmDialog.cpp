#include "system/RebootConfirmDialog.hpp"

#include <cstdint>

namespace Lanyx {

namespace {

enum CatalogueId : uint32_t {
    TitleId = 175,
    MessageId = 176,
};

} // namespace

RebootConfirmDialog::RebootConfirmDialog(Frame* owner, bool graceful)
    : PowerActionDialog(owner, graceful, TitleId, MessageId, "reboot")
{
}

} // namespace Lanyx
