// The VLAN and IPv4 forms in memory: what each field lets through, which values are refused and
// which field is then selected, with everything typed kept.
#include <gtest/gtest.h>

#include <array>

#include "Screen.hpp"
#include "network/IPConfigurationDialog.hpp"
#include "network/VlanDialog.hpp"
#include "text/InputItem.hpp"

namespace Lanyx {
namespace {

using namespace Testing;
namespace KN = Keelson::Network;

// After a refusal: Enter closes the message, Escape leaves the form.
constexpr const char* kRefusedThenLeave = "\n\n\x1b";

TEST(VlanDialogTest, BoundariesOfTheId) {
    struct Row {
        const char* typed;
        const char* keys; // after the typing
        bool accepted;
        uint16_t value;
    };
    const Row rows[] = {
        {"", "\n", true, 0}, // empty unsets
        {"0", kRefusedThenLeave, false, 0},
        {"1", "\n", true, 1},
        {"4094", "\n", true, 4094},
        {"4095", "\n\n", true, 4095}, // after the warning, closed with Enter
        {"4096", kRefusedThenLeave, false, 0},
        {"99999", kRefusedThenLeave, false, 0},
        {"2x0 -", "\n", true, 20}, // only digits reach the field
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.typed);
        VlanDialog dialog(nullptr, 12);
        Type(std::string(row.typed) + (*row.typed ? "" : "\b") + row.keys);
        EXPECT_EQ(dialog.RunModal(), row.accepted);
        EXPECT_TRUE(InputDrained());
        if (row.accepted) {
            EXPECT_EQ(dialog.GetValue(), row.value);
        }
    }
}

// Opens on field `typedInto` with the three fields preset, so each row needs no moves.
class IpForm : public IPConfigurationDialog {
public:
    IpForm(bool useDhcp, uint32_t typedInto, const std::array<std::string, 3>& preset)
        : IPConfigurationDialog(nullptr, false, useDhcp, KN::IpConfig()), typedInto(typedInto),
          preset(preset) {}
    std::string Field(uint32_t ordinal) const { return FieldAt(ordinal)->GetValue(); }
    uint32_t Selected() const { return list->GetSelectedOrdinal(); }

protected:
    void Open() override {
        IPConfigurationDialog::Open();
        for (uint32_t ordinal = 3; ordinal < 6; ++ordinal)
            FieldAt(ordinal)->SetValue(preset[ordinal - 3]);
        if (UseStatic())
            SelectOrdinal(typedInto);
    }

private:
    InputItem* FieldAt(uint32_t ordinal) const {
        // Three radios and a blank line stand before the fields.
        return dynamic_cast<InputItem*>(list->GetItems().at(ordinal + 1));
    }
    uint32_t typedInto;
    std::array<std::string, 3> preset;
};

TEST(IPConfigurationDialogTest, AddressesCheckedFieldByField) {
    const std::array<std::string, 3> valid = {"192.168.1.10", "255.255.255.0", "192.168.1.1"};
    struct Row {
        const char* name;
        uint32_t field;
        const char* typed;
        bool accepted;
        uint32_t selectedAfter; // the field of the error
    };
    const Row rows[] = {
        // Which texts are addresses and masks is the library's; here, each check of the form.
        {"blanks and letters never reach a field", 3, "10.0. 0.7x", true, 3},
        {"an octet too large", 3, "10.0.0.256", false, 3},
        {"mask with a hole", 4, "255.0.255.0", false, 4},
        {"mask of three octets", 4, "255.255.0", false, 4},
        {"empty gateway", 5, "\b", false, 5},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        IpForm form(false, row.field, valid);
        Type(std::string(row.typed) + (row.accepted ? "\n" : kRefusedThenLeave));
        EXPECT_EQ(form.RunModal(), row.accepted);
        EXPECT_TRUE(InputDrained());
        EXPECT_EQ(form.Selected(), row.selectedAfter);
        for (uint32_t other = 3; other < 6; ++other) {
            if (other != row.field) {
                EXPECT_EQ(form.Field(other), valid[other - 3]) << "kept";
            }
        }
        if (row.accepted) {
            EXPECT_TRUE(form.UseStatic());
            EXPECT_EQ(form.config.GetIpv4Address().GetStringAddress(), "10.0.0.7");
            EXPECT_EQ(form.config.GetIpv4Gateway().GetStringAddress(), "192.168.1.1");
        }
    }

    // DHCP accepts whatever the dimmed fields hold, and hands on no gateway.
    IpForm dhcp(true, 3, {"garbage", "", "1.2"});
    Type("\n");
    EXPECT_TRUE(dhcp.RunModal());
    EXPECT_TRUE(dhcp.config.GetUseDhcp());
    EXPECT_EQ(dhcp.config.GetIpv4Gateway().GetBinaryAddress(), 0u);
}

} // namespace
} // namespace Lanyx
