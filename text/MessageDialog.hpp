// A box that tells the operator one thing and waits for Enter. The title is a catalogue id,
// the message a catalogue entry or a ready text.
#pragma once
#include <cstdint>
#include <string>

#include "text/Dialog.hpp"

namespace Lanyx {

class MessageDialog : public Dialog {
public:
    MessageDialog(Frame* owner, uint32_t titleId, uint32_t messageId);
    MessageDialog(Frame* owner, uint32_t titleId, std::string message);

    // Only Enter closes the box; the result is always true.
    bool Execute() override;

    uint32_t GetTitleId() const { return titleId; }
    const std::string& GetMessageString() const { return message; }

private:
    uint32_t titleId;
    std::string message;
};

} // namespace Lanyx
