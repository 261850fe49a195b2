// The question that stands between the tuner and a link that does not answer: up to four buttons, of which the index
// of the one pressed comes back. Closing the window is the first button.
#pragma once

#include "platform/control.h"
#include "platform/form.h"

#include <array>
#include <optional>
#include <string_view>

namespace ecu::link {

struct FrmDialog {
    platform::Form form{"frm_Dialog", "ECU System Console"};
    platform::Label dialog_caption{form, "dialog_caption"};
    platform::Label dialog_details{form, "dialog_details"}; // the system's reason, empty when there is none
    platform::ControlArray<platform::Button, 4> dialog_button{form, "dialog_button"};

    FrmDialog() {
        for (platform::Button& button : dialog_button) {
            button.clicked = [this, &button] { answer(button.index()); };
        }
        form.on_close = [this] { answer(0); };
    }

    // Shows the form until the user answers; a button with an empty caption is hidden. No value when the form is up
    // already: a second question can only come from an event handled behind the first, and must not change it.
    std::optional<int> ask(std::string_view text, const std::array<std::string_view, 4>& captions,
                           std::string_view reason = "") {
        if (form.visible()) {
            return std::nullopt;
        }
        dialog_caption.set_text(text);
        dialog_caption.set_tool_tip(reason);
        dialog_details.set_text(reason);
        for (std::size_t i = 0; i < captions.size(); ++i) {
            dialog_button[i].set_text(captions[i]);
            dialog_button[i].set_visible(!captions[i].empty());
        }
        result_ = 0;
        form.show_modal();
        return result_;
    }

private:
    void answer(int index) {
        result_ = index;
        form.hide();
    }
    int result_ = 0;
};

} // namespace ecu::link
