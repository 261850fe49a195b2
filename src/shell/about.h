// The About window's behaviour: when shown it asks the controller for its firmware revision and serial number, whose
// decoders fill the labels.
#pragma once

#include "link/ecu_comm.h"
#include "link/link_selection.h"
#include "shell/frm_about.h"

namespace ecu::shell {

class About {
public:
    About(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
          link::LinkSelection& link_selection, FrmAbout& form);

    // Opens the link and holds the user in the window until it is closed.
    void open();

private:
    void activate();
    void ask_controller();

    const platform::Ports& ports_;
    link::SharedState& state_;
    link::EcuComm& comm_;
    link::LinkSelection& link_selection_;
    FrmAbout& form_;
};

} // namespace ecu::shell
