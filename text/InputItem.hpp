// A one-line input field: a label on the left, the field against the row's right edge. The
// item edits its value by key but filters nothing; each form decides which keys reach it.
#pragma once
#include <cstdint>
#include <string>

#include "text/Item.hpp"

namespace Lanyx {

class InputItem : public Item {
public:
    // A `fieldWidth` of -1 takes half the row's width less one cell.
    InputItem(std::string label, std::string value, int fieldWidth);

    // A field that gains or loses the selection has its whole value selected again.
    void OnSelectionChanged() override;
    void Draw(TextArea* row) override;

    void HandleKey(int key);
    // Resets cursor, offset and selection as a new field has them.
    void SetValue(std::string newValue);
    void SetLabel(std::string newLabel);

    const std::string& GetLabel() const { return label; }
    const std::string& GetValue() const { return value; }
    int GetFieldWidth() const { return fieldWidth; }
    int GetCursor() const { return cursor; }
    int GetOffset() const { return offset; }
    bool IsSelectAll() const { return selectAll; }

    // Shows every visible character as "*"; set by forms for passwords.
    bool masked = false;

private:
    void ClearValue();

    std::string label;
    std::string value;
    int32_t fieldWidth;
    int32_t cursor = 0;
    int32_t offset = 0;
    bool selectAll = true;
};

} // namespace Lanyx
