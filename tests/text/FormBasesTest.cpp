// The bases that forms are built on: what each field filter lets in, the radio group with its
// dependent fields, and a form's run with a refused value.
#include <gtest/gtest.h>

#include "Screen.hpp"
#include "core/Keys.hpp"
#include "text/FormDialog.hpp"
#include "text/RadioGroup.hpp"

namespace Lanyx {
namespace {

using namespace Testing;

TEST(FieldFilters, LetInTheirOwnCharactersOnly) {
    struct Row {
        FieldFilter filter;
        const char* name;
        std::string allowed;
        std::string refused;
    };
    const Row rows[] = {
        {Filters::Digits, "digits", "0189", "a.-: _"},
        {Filters::Ipv4, "IPv4", "019.", "a:-/ _x"},
        {Filters::IpAddress, "address", "09afAF.:", "g-/% _"},
        {Filters::Ipv6Network, "IPv6 network", "09azAZ:/%", ".- _"},
        {Filters::HostName, "host name", "azAZ09-.", "_ ,:/"},
        {Filters::Suffixes, "suffixes", "az09-., ", "_:/;"},
        {Filters::Printable, "printable", "a Z~_", "\t\n\x7f"},
        {Filters::Visible, "visible", "aZ~_.", " \t\n\x7f"},
    };
    for (const Row& row : rows) {
        for (char c : row.allowed)
            EXPECT_TRUE(row.filter(static_cast<unsigned char>(c))) << row.name << " '" << c << "'";
        for (char c : row.refused)
            EXPECT_FALSE(row.filter(static_cast<unsigned char>(c))) << row.name << " '" << c << "'";
        for (int key : {Keys::F2, Keys::Up, Keys::DeleteChar, -1, 0x1ff})
            EXPECT_FALSE(row.filter(key)) << row.name << " key " << key;
    }
    for (int key : {Keys::DeleteChar, Keys::Backspace, Keys::CursesBackspace, Keys::Left,
                    Keys::Right, Keys::Home, Keys::End})
        EXPECT_TRUE(IsEditKey(key)) << key;
    for (int key : {Keys::Up, Keys::Down, Keys::Tab, Keys::Enter, Keys::Delete127, int{'a'}})
        EXPECT_FALSE(IsEditKey(key)) << key;
}

TEST(RadioGroupTest, OneSetAndItsDependentsEnabled) {
    RadioItem none{"none", false}, dhcp{"dhcp", false}, manual{"static", false};
    InputItem address{"Address", "", 16}, mask{"Mask", "", 16};
    RadioGroup group({&none, &dhcp, &manual}, 1);
    group.SetDependents(2, {&address, &mask});
    EXPECT_TRUE(dhcp.IsChecked());
    EXPECT_FALSE(address.IsEnabled());

    EXPECT_TRUE(group.SelectItem(&manual));
    EXPECT_TRUE(manual.IsChecked() && !dhcp.IsChecked() && !none.IsChecked());
    EXPECT_TRUE(address.IsEnabled() && mask.IsEnabled());
    // A radio is no toggle: choosing the set one again keeps it set.
    EXPECT_TRUE(group.SelectItem(&manual));
    EXPECT_TRUE(manual.IsChecked());
    EXPECT_FALSE(group.SelectItem(&address));
    group.Select(0);
    EXPECT_FALSE(address.IsEnabled());
    EXPECT_EQ(group.Selected(), 0u);
}

// A form of a name and a number under 100, opened on the number: the field takes digits only,
// and Enter with a number too large selects it and names the rule, keeping what was typed.
class NumberForm : public FormDialog {
public:
    NumberForm() : FormDialog(nullptr, 60, 12, 5) {
        CreateList();
        name = AddField("Name", "", 20, Filters::Printable);
        number = AddField("Number", "", 5, Filters::Digits);
        ShowItems();
    }
    InputItem* name;
    InputItem* number;
    int refusals = 0;

protected:
    void Open() override { list->SelectOrdinal(1); }
    bool Accept() override {
        if (std::atoi(number->GetValue().c_str()) < 100)
            return true;
        ++refusals;
        Reject(1, 1, std::string("under 100"));
        return false;
    }
};

TEST(FormDialogTest, FiltersPerFieldRejectsAndHidesTheCursor) {
    NumberForm form;
    // Letters do not reach the number; 150 is refused, the message box closes with Enter, and
    // the field is selected whole again, so "42" replaces the value.
    Type("x1y50\n"
         "\n"
         "42\n");
    EXPECT_TRUE(form.RunModal());
    EXPECT_TRUE(InputDrained());
    EXPECT_EQ(form.name->GetValue(), "");
    EXPECT_EQ(form.number->GetValue(), "42");
    EXPECT_EQ(form.refusals, 1);
    EXPECT_FALSE(Window::cursorVisible);

    NumberForm cancelled;
    Type("7\x1b");
    EXPECT_FALSE(cancelled.RunModal());
    EXPECT_FALSE(Window::cursorVisible);
}

} // namespace
} // namespace Lanyx
