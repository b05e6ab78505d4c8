#include "text/InputItem.hpp"

#include <algorithm>
#include <cctype>
#include <curses.h>

#include "core/Keys.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

InputItem::InputItem(std::string label, std::string value, int fieldWidth)
    : Item(true), label(std::move(label)), fieldWidth(fieldWidth) {
    SetValue(std::move(value));
}

void InputItem::SetValue(std::string newValue) {
    value = std::move(newValue);
    cursor = static_cast<int32_t>(value.size());
    offset = 0;
    selectAll = true;
}

void InputItem::SetLabel(std::string newLabel) {
    label = std::move(newLabel);
}

void InputItem::OnSelectionChanged() {
    selectAll = true;
}

void InputItem::ClearValue() {
    value.clear();
    cursor = 0;
    offset = 0;
    selectAll = false;
}

void InputItem::Draw(TextArea* row) {
    const int rowWidth = row->GetWidth();
    const int shownWidth = std::max(0, fieldWidth == -1 ? rowWidth / 2 - 1 : fieldWidth);
    const int length = static_cast<int>(value.size());

    if (fieldWidth <= length) {
        if (cursor - offset > shownWidth) {
            offset = cursor - shownWidth;
        }
    } else {
        offset = cursor > shownWidth ? cursor - shownWidth : 0;
    }
    offset = std::clamp(offset, 0, std::max(0, length));

    std::string shown = value.substr(static_cast<size_t>(offset), static_cast<size_t>(shownWidth));
    if (masked) {
        shown.assign(shown.size(), '*');
    }

    const int gap = rowWidth - 5 - shownWidth - static_cast<int>(label.size());
    std::string line = label;
    line.append(static_cast<size_t>(std::max(0, gap)), ' ');
    line += " [ ";
    if (selected) {
        line += selectAll ? "{bgcolor:white}{color:black}" : "{bgcolor:black}{color:white}";
    }
    line += shown;
    if (selected) {
        line += "{/color}{/bgcolor}";
    }
    line.append(static_cast<size_t>(shownWidth) - shown.size(), ' ');
    line += " ]";

    row->SetText(line);
    row->MoveCursor(cursor - offset + rowWidth - 2 - shownWidth, 0);
}

void InputItem::HandleKey(int key) {
    const int length = static_cast<int>(value.size());
    switch (key) {
    case Keys::Home:
        cursor = 0;
        offset = 0;
        selectAll = false;
        return;
    case Keys::End:
        selectAll = false;
        if (!value.empty()) {
            cursor = length;
        }
        return;
    case Keys::Left:
        selectAll = false;
        if (cursor > 0) {
            if (cursor == offset) {
                --offset;
            }
            --cursor;
        }
        return;
    case Keys::Right:
        selectAll = false;
        cursor = std::min(cursor + 1, length);
        return;
    case Keys::DeleteChar:
        if (selectAll) {
            ClearValue();
        } else if (cursor < length) {
            value.erase(static_cast<size_t>(cursor), 1);
        }
        return;
    case Keys::Backspace:
    case Keys::CursesBackspace:
        if (selectAll) {
            ClearValue();
        } else if (cursor > 0) {
            value.erase(static_cast<size_t>(cursor) - 1, 1);
            --cursor;
            if (cursor < offset) {
                offset = 0;
                cursor = static_cast<int32_t>(value.size());
            }
        }
        return;
    default:
        break;
    }
    if (selectAll) {
        ClearValue();
    }
    // Key codes above a byte are function keys, never characters.
    if (key >= 0 && key <= 0xff && std::isprint(key)) {
        value.insert(static_cast<size_t>(cursor), 1, static_cast<char>(key));
        ++cursor;
    }
}

} // namespace Lanyx
