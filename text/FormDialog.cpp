#include "text/FormDialog.hpp"

#include <cctype>

#include "core/Keys.hpp"
#include "text/MessageDialog.hpp"

namespace Lanyx {

namespace {

bool IsByte(int key) {
    return key >= 0 && key <= 0xff;
}

bool IsAlnum(int key) {
    return IsByte(key) && std::isalnum(key);
}

// Hides the text cursor when the form's run ends, whichever way it ends.
class CursorGuard {
public:
    CursorGuard() = default;
    CursorGuard(const CursorGuard&) = delete;
    CursorGuard& operator=(const CursorGuard&) = delete;
    ~CursorGuard() { Window::ShowCursor(false); }
};

} // namespace

bool IsEditKey(int key) {
    switch (key) {
    case Keys::DeleteChar:
    case Keys::Backspace:
    case Keys::CursesBackspace:
    case Keys::Left:
    case Keys::Right:
    case Keys::Home:
    case Keys::End:
        return true;
    default:
        return false;
    }
}

namespace Filters {

bool Printable(int key) {
    return IsByte(key) && std::isprint(key);
}

bool Visible(int key) {
    return IsByte(key) && std::isgraph(key);
}

bool Digits(int key) {
    return IsByte(key) && std::isdigit(key);
}

bool Ipv4(int key) {
    return Digits(key) || key == '.';
}

bool IpAddress(int key) {
    return (IsByte(key) && std::isxdigit(key)) || key == '.' || key == ':';
}

bool Ipv6Network(int key) {
    return IsAlnum(key) || key == ':' || key == '/' || key == '%';
}

bool HostName(int key) {
    return IsAlnum(key) || key == '-' || key == '.';
}

bool Suffixes(int key) {
    return HostName(key) || key == ' ' || key == ',';
}

} // namespace Filters

FormDialog::FormDialog(Frame* owner, int width, int height, int titleHeight)
    : Dialog(owner, width, height, titleHeight) {}

void FormDialog::CreateList(int top, int rows) {
    Window* content = contentWindow;
    const int height = rows > 0 ? rows : content->GetHeight() - top;
    list = new ItemList(content, 0, top, content->GetWidth(), height);
}

InputItem* FormDialog::AddField(std::string label, std::string value, int fieldWidth,
                                FieldFilter filter) {
    InputItem* field =
        Add(std::make_unique<InputItem>(std::move(label), std::move(value), fieldWidth));
    filters[field] = filter;
    return field;
}

void FormDialog::ShowItems() {
    list->SetItems(items);
}

bool FormDialog::Execute() {
    const CursorGuard cursor;
    if (!Prepare())
        return false;
    Open();
    Redraw();
    for (;;) {
        const int key = ReadKey(true);
        if (EditSelectedField(key))
            continue;
        switch (HandleKey(key)) {
        case KeyResult::Accept:
            return true;
        case KeyResult::Cancel:
            return false;
        case KeyResult::Continue:
            break;
        }
    }
}

FormDialog::KeyResult FormDialog::HandleKey(int key) {
    switch (key) {
    case Keys::Up:
        SelectPrevious();
        break;
    case Keys::Down:
        SelectNext();
        break;
    case Keys::Escape:
        return KeyResult::Cancel;
    case Keys::Enter:
        return Accept() ? KeyResult::Accept : KeyResult::Continue;
    default:
        break;
    }
    return KeyResult::Continue;
}

bool FormDialog::FieldTakes(const InputItem& field, int key) const {
    if (!field.IsEnabled())
        return false;
    if (IsEditKey(key))
        return true;
    const auto filter = filters.find(&field);
    return filter != filters.end() && filter->second(key);
}

bool FormDialog::EditSelectedField(int key) {
    InputItem* field = SelectedField();
    if (!field || !FieldTakes(*field, key))
        return false;
    field->HandleKey(key);
    FieldEdited(*field);
    Redraw();
    return true;
}

void FormDialog::Reject(uint32_t ordinal, uint32_t titleId, uint32_t messageId) {
    SelectOrdinal(ordinal);
    MessageDialog(this, titleId, messageId).RunModal();
    Redraw();
}

void FormDialog::Reject(uint32_t ordinal, uint32_t titleId, const std::string& message) {
    SelectOrdinal(ordinal);
    MessageDialog(this, titleId, message).RunModal();
    Redraw();
}

void FormDialog::SelectPrevious() {
    list->SelectPrevious(); // draws
    ShowCursor(SelectedField() != nullptr);
}

void FormDialog::SelectNext() {
    list->SelectNext(); // draws
    ShowCursor(SelectedField() != nullptr);
}

void FormDialog::SelectOrdinal(uint32_t ordinal) {
    list->SelectOrdinal(ordinal);
    // Selected again or anew, a field's whole value is selected, so the next key replaces it.
    if (InputItem* field = SelectedField())
        field->OnSelectionChanged();
    Redraw();
}

void FormDialog::Redraw() {
    ShowCursor(SelectedField() != nullptr);
    list->Draw();
}

InputItem* FormDialog::SelectedField() const {
    return dynamic_cast<InputItem*>(list->GetSelectedItem());
}

} // namespace Lanyx
