// Where the client is asked for its server's address: four boxes, a point moves on to the next one.
#pragma once

#include "platform/control.h"
#include "platform/form.h"

#include <string>

namespace ecu::link {

struct FrmRemoteIp {
    platform::Form form{"frm_remote_ip", "Client IP Setup"};
    platform::ControlArray<platform::TextBox, 4> client_ip_address{form, "client_ip_address", "1"};
    platform::Button remote_ip_done{form, "remote_ip_done", "Done"};
    platform::Button remote_ip_cancel{form, "remote_ip_cancel", "Cancel"};

    FrmRemoteIp();
    // The numbers of the boxes with points between them. No range is checked here: the greeting finds out.
    std::string address() const;

private:
    void key_in_box(std::size_t box, platform::KeyPress& key);
};

} // namespace ecu::link
