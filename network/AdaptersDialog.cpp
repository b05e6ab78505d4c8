#include "network/AdaptersDialog.hpp"

#include <algorithm>

#include "core/Keys.hpp"
#include "network/AdapterInfoDialog.hpp"
#include "network/UsedAdaptersDialog.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 78;
constexpr int kHeight = 21;
constexpr int kTitleHeight = 7;

} // namespace

AdaptersDialog::AdaptersDialog(Frame* owner, std::vector<std::string> selection, uint32_t maxActive,
                               std::string managementSwitch)
    : FormDialog(owner, kWidth, kHeight, kTitleHeight), selectedNames(std::move(selection)),
      maxActiveUplinks(maxActive), switchName(std::move(managementSwitch)) {
    CreateList();
}

bool AdaptersDialog::Prepare() {
    return rows.Gather();
}

void AdaptersDialog::Open() {
    SetTitle(CatalogueText(Ids::AdaptersTitle));
    SetMessage(CatalogueText(Ids::AdaptersMessage));
    SetFooter(Footers::kDetailsToggleOkCancel);
    // The box stands before the NICs are read one by one.
    SetActive(true);
    Update();
    rows.ReadAdapters();
    if (checks.empty()) {
        Add(AdapterRows::MakeHeader());
        for (size_t row = 0; row < rows.Count(); ++row) {
            const bool chosen = std::ranges::count(selectedNames, rows.Info(row).name) > 0;
            checks.push_back(Add(rows.MakeRow(row, chosen)));
        }
    }
    ShowItems();
}

int AdaptersDialog::SelectedRow() const {
    const Item* selected = list->GetSelectedItem();
    const auto found = std::ranges::find(checks, selected);
    return found == checks.end() ? -1 : static_cast<int>(found - checks.begin());
}

void AdaptersDialog::Toggle(size_t row) {
    const std::string& name = rows.Info(row).name;
    CheckItem* check = checks[row];
    if (check->IsChecked()) {
        std::erase(selectedNames, name);
        check->SetChecked(false);
    } else {
        // A NIC chosen again goes to the end: the order is the order of choice.
        selectedNames.push_back(name);
        check->SetChecked(true);
    }
    Redraw();
}

bool AdaptersDialog::ConfirmUsedAdapters() {
    for (const std::string& name : selectedNames) {
        const std::string& user = rows.UsedBy(name);
        if (!user.empty() && user != switchName)
            return UsedAdaptersDialog(this).RunModal();
    }
    return true;
}

FormDialog::KeyResult AdaptersDialog::HandleKey(int key) {
    const int row = SelectedRow();
    switch (key) {
    case ' ':
        if (row >= 0)
            Toggle(static_cast<size_t>(row));
        return KeyResult::Continue;
    case 'd':
    case 'D':
        if (row >= 0) {
            AdapterInfoDialog(this, rows.Info(static_cast<size_t>(row))).RunModal();
            Redraw();
        }
        return KeyResult::Continue;
    case Keys::Enter:
        return ConfirmUsedAdapters() ? KeyResult::Accept : KeyResult::Cancel;
    default:
        return FormDialog::HandleKey(key);
    }
}

} // namespace Lanyx
