// The base of every form: a centred dialog whose content is one list of items it owns. The
// base holds what all forms share: the edit keys, a character filter per input field, Up and
// Down through the list, the rejection of a value (field selected, rule named, form kept open)
// and the text cursor, shown while a field is selected and hidden on every way out.
#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "text/Dialog.hpp"
#include "text/InputItem.hpp"
#include "text/ItemList.hpp"

namespace Lanyx {

// The keys that edit any field: Delete, both Backspaces, Left, Right, Home, End.
bool IsEditKey(int key);

// Which characters a field lets in, besides the edit keys.
using FieldFilter = bool (*)(int key);
namespace Filters {
bool Printable(int key);   // any printable byte: names, passwords
bool Visible(int key);     // printable but no blank: a name to look up
bool Digits(int key);      // numbers: VLAN ids, time-outs
bool Ipv4(int key);        // digits and "."
bool IpAddress(int key);   // hexadecimal digits, "." and ":": IPv4 or IPv6
bool Ipv6Network(int key); // letters, digits, ":", "/", "%": an address with prefix or scope
bool HostName(int key);    // letters, digits, "-" and ".": no "_"
bool Suffixes(int key);    // a host name's characters, blank and ","
} // namespace Filters

class FormDialog : public Dialog {
public:
    FormDialog(Frame* owner, int width, int height, int titleHeight);

    // Runs the form's key loop with the cursor shown; the cursor is hidden on every way out,
    // the idle limit's exception included. True when the form hands on its values.
    bool Execute() final;

    ItemList* GetItemList() const { return list; }

protected:
    enum class KeyResult { Continue, Accept, Cancel };

    // The list, in the content window from row `top`, `rows` high (0: to the window's bottom).
    void CreateList(int top = 0, int rows = 0);
    // Items are owned by the form and listed in the order added; ShowItems hands them over.
    template <class T> T* Add(std::unique_ptr<T> item) {
        T* raw = item.get();
        items.push_back(raw);
        ownedItems.push_back(std::move(item));
        return raw;
    }
    InputItem* AddField(std::string label, std::string value, int fieldWidth, FieldFilter filter);
    void ShowItems();

    // Before anything of a run is shown: gathers what the form lists from the host. False ends
    // the run at once with false (the reason is logged where it was found).
    virtual bool Prepare() { return true; }
    // Start of a run: title, message, footer, the first selection. The list is drawn after it.
    virtual void Open() = 0;
    // One key that the selected field did not take. The base moves with Up and Down, leaves
    // with Escape and asks Accept on Enter; forms handle their own keys and defer the rest.
    virtual KeyResult HandleKey(int key);
    // Enter: true hands the values on; a form that refuses a value calls Reject and says false.
    virtual bool Accept() { return true; }
    // Whether the selected field may take `key` now; a form can lock a field (false).
    virtual bool FieldTakes(const InputItem& field, int key) const;
    // After `field` took a key, before the list is drawn again.
    virtual void FieldEdited(InputItem& /*field*/) {}

    // A value refused: its field is selected, a message names the rule, the form is redrawn.
    void Reject(uint32_t ordinal, uint32_t titleId, uint32_t messageId);
    void Reject(uint32_t ordinal, uint32_t titleId, const std::string& message);

    // Moves of the selection that keep the cursor with the input fields, then draw.
    void SelectPrevious();
    void SelectNext();
    void SelectOrdinal(uint32_t ordinal);
    // Draws the list and shows the cursor exactly while an input field is selected.
    void Redraw();
    InputItem* SelectedField() const;

    ItemList* list = nullptr; // a child window, owned by the window tree
    std::vector<Item*> items;

private:
    // Gives the key to the selected field when its filter or the edit keys allow; true if taken.
    bool EditSelectedField(int key);

    std::vector<std::unique_ptr<Item>> ownedItems;
    std::map<const InputItem*, FieldFilter> filters;
};

} // namespace Lanyx
