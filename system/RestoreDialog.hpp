// Reset of the system configuration: the host's reset script puts every setting back to its
// software default, then the operator restarts the host.
#pragma once
#include "text/Dialog.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class RestoreDialog : public Dialog {
public:
    explicit RestoreDialog(Frame* owner);

    // False on Escape, when the reset script fails, or when the restart cannot be started;
    // after a restart that started it never comes back.
    bool Execute() override;

    TextArea* GetQuestionText() const { return questionText; }

private:
    TextArea* questionText = nullptr; // a child window, owned by the window tree
};

} // namespace Lanyx
