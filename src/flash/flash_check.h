// The check of a record file from the flash window: choose, look through, rehearse, show. Nothing goes to a port.
#pragma once

#include "flash/frm_flash_check.h"
#include "flash/frm_sflash.h"
#include "flash/record_check.h"
#include "platform/ports.h"

namespace ecu::flash {

class FlashCheck {
public:
    struct Use {
        const platform::Ports& ports;
        FrmSflash& flash;
        FrmFlashCheck& form;
    };
    explicit FlashCheck(const Use& use);

    // What the rehearsal is held with; without one there is none.
    std::function<Monitor()> make_monitor;

private:
    void choose();

    Use use_;
};

} // namespace ecu::flash
