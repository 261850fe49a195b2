#include "link/frm_remote_ip.h"

#include "platform/leading_number.h"

#include <array>
#include <charconv>

namespace ecu::link {

FrmRemoteIp::FrmRemoteIp() {
    for (std::size_t i = 0; i < client_ip_address.size(); ++i) {
        client_ip_address[i].key_down = [this, i](platform::KeyPress& key) { key_in_box(i, key); };
        client_ip_address[i].set_tool_tip("A number from 0 to 255; a point goes on to the next box");
    }
    remote_ip_done.set_tool_tip("Ask the console at this address to share its controller");
    remote_ip_cancel.set_tool_tip("Stay with the serial port of this machine");
    form.on_close = [this] { remote_ip_cancel.press(); };
}

std::string FrmRemoteIp::address() const {
    std::string joined;
    for (const platform::TextBox& box : client_ip_address) {
        std::array<char, 32> text{};
        const auto end =
            std::to_chars(text.data(), text.data() + text.size(), platform::leading_number(box.text())).ptr;
        joined += (joined.empty() ? "" : ".") + std::string(text.data(), end);
    }
    return joined;
}

void FrmRemoteIp::key_in_box(std::size_t box, platform::KeyPress& key) {
    if (key.code == platform::key::period) {
        key.code = 0;
        platform::TextBox& next = client_ip_address[(box + 1) % client_ip_address.size()];
        next.set_text("");
        next.set_focus();
    } else if (key.code == platform::key::enter && box + 1 == client_ip_address.size()) {
        key.code = 0;
        remote_ip_done.press();
    }
}

} // namespace ecu::link
