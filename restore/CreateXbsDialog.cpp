#include "restore/CreateXbsDialog.hpp"

#include "host/CommandRunner.hpp"
#include "host/Log.hpp"
#include "network/AdapterInfoDialog.hpp"
#include "restore/HwportInUseDialog.hpp"
#include "text/CatalogueIds.hpp"
#include "text/NotificationDialog.hpp"
#include "text/RadioItem.hpp"

namespace Lanyx {

namespace {

constexpr const char* kNameLabel = "xbar Name: ";
constexpr size_t kMaxNameLength = 127;
// The NIC rows follow the name field; the header between them is not selectable.
constexpr uint32_t kFirstNicOrdinal = 1;

} // namespace

CreateXbsDialog::CreateXbsDialog(Frame* owner) : FormDialog(owner, 78, 15, 6) {
    if (!rows.Gather())
        return;
    if (rows.Names().empty()) {
        Log(LOG_ERR, "No physical nics present");
        return;
    }
    rows.ReadAdapters();
    CreateList();
    nameItem = AddField(kNameLabel, "", -1, Filters::Printable);
    Add(AdapterRows::MakeHeader());
    std::vector<RadioItem*> radios;
    for (size_t row = 0; row < rows.Count(); ++row)
        radios.push_back(Add(std::make_unique<RadioItem>(FormatAdapterRow(rows.Info(row)), false)));
    group = std::make_unique<RadioGroup>(std::move(radios), 0);
    ShowItems();
    ready = true;
}

void CreateXbsDialog::Open() {
    SetTitle(CatalogueText(Ids::CreateSwitchEntry));
    SetMessage(CatalogueText(Ids::CreateSwitchMessage));
    SetFooter(Footers::kDetailsToggleOkCancel);
}

bool CreateXbsDialog::FieldTakes(const InputItem& field, int key) const {
    if (&field == nameItem && !IsEditKey(key) && field.GetValue().size() >= kMaxNameLength)
        return false;
    return FormDialog::FieldTakes(field, key);
}

FormDialog::KeyResult CreateXbsDialog::HandleKey(int key) {
    const uint32_t line = list->GetSelectedOrdinal();
    if (line < kFirstNicOrdinal || (key != ' ' && key != 'd' && key != 'D'))
        return FormDialog::HandleKey(key);
    const size_t row = line - kFirstNicOrdinal;
    // Moving over a row does not check it: only Space does, and the check is what counts.
    if (key == ' ')
        group->Select(row);
    else
        AdapterInfoDialog(this, rows.Info(row)).RunModal();
    Redraw();
    return KeyResult::Continue;
}

void CreateXbsDialog::Notify(int width, uint32_t titleId, const std::string& message) {
    NotificationDialog(this, width, 8, 5, CatalogueText(titleId), message).RunModal();
    Redraw();
}

bool CreateXbsDialog::Accept() {
    const std::string name = nameItem->GetValue();
    if (name.empty()) {
        Notify(48, Ids::InvalidArgument, CatalogueText(Ids::InvalidSwitchName));
        return false;
    }
    const AdapterInfo& nic = rows.Info(group->Selected());
    const std::string& user = rows.UsedBy(nic.name);
    bool detached = true;
    if (!user.empty()) {
        HwportInUseDialog question(this, nic);
        question.RunModal();
        if (!question.GetDetach()) {
            Notify(60, Ids::OperationCancelled, "");
            return false;
        }
        detached = SetXbarUplink(user, nic.name, false);
    }
    // Nothing is rolled back: each step is tried whatever the one before it answered.
    const bool added = AddXbar(name);
    const bool linked = SetXbarUplink(name, nic.name, true);
    if (!detached || !added || !linked) {
        Notify(51, Ids::OperationFailed, CatalogueText(Ids::CheckSyslog));
        return false;
    }
    NotificationDialog(this, 75, 10, 7, CatalogueText(Ids::OperationSucceeded),
                       CatalogueText(Ids::SwitchCreated) + name)
        .RunModal();
    return true;
}

} // namespace Lanyx
