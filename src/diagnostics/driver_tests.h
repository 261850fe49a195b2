// Firing injector and ignition drivers on their own. Locked until the tuner has acknowledged the warning, and again at
// each opening of the window.
#pragma once

#include "diagnostics/frm_diagnostics.h"
#include "diagnostics/when_free.h"
#include "messages/catalogue.h"

namespace ecu::diagnostics {

class DriverTests {
public:
    DriverTests(const platform::Ports& ports, link::EcuComm& comm, WhenFree& when_free, FrmDiagnostics& form);

    void lock();

private:
    struct Panel {
        FrmDiagnostics::Channels& boxes;
        messages::Command command;
        std::string_view drivers; // "injector"
        platform::Label& result;
    };

    void unlock();
    void set_unlocked(bool unlocked);
    void fire(const Panel& panel);

    const platform::Ports& ports_;
    link::EcuComm& comm_;
    WhenFree& when_free_;
    FrmDiagnostics& form_;
};

} // namespace ecu::diagnostics
