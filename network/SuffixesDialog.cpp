#include "network/SuffixesDialog.hpp"

#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 70;
constexpr int kHeight = 13;
constexpr int kTitleHeight = 8;
constexpr int kFieldWidth = 40;

} // namespace

SuffixesDialog::SuffixesDialog(Frame* owner, const std::string& suffixes)
    : FormDialog(owner, kWidth, kHeight, kTitleHeight) {
    CreateList(0, 1);
    suffixesItem =
        AddField(CatalogueText(Ids::SuffixesLabel), suffixes, kFieldWidth, Filters::Suffixes);
    ShowItems();
}

void SuffixesDialog::Open() {
    SetTitle(CatalogueText(Ids::SuffixesEntry));
    SetMessage(CatalogueText(Ids::SuffixesMessage));
    SetFooter(Footers::kOkCancel);
}

} // namespace Lanyx
