// The diagnostics window: what opening and leaving it do, and its tabs' behaviour. Nothing is polled but on the dyno
// tab. Leaving sets the scheduler's pace to 10 ms, not back to that of the start.
#pragma once

#include "diagnostics/crank_wheel.h"
#include "diagnostics/driver_tests.h"
#include "diagnostics/dyno.h"
#include "shell/navigation.h"

namespace ecu::diagnostics {

class Diagnostics {
public:
    struct Use {
        const platform::Ports& ports;
        link::SharedState& state;
        link::EcuComm& comm;
        shell::Navigation& navigation;
        platform::Timer& timer1;
        const messages::EcuLiveData& live;
        const messages::WheelSamples& samples;
        FrmDiagnostics& form;
    };
    explicit Diagnostics(const Use& use);

    Dyno& dyno() { return dyno_; }

private:
    void load();
    void activate();
    void leave();

    Use use_;
    WhenFree when_free_;
    DriverTests driver_tests_;
    CrankWheel crank_wheel_;
    Dyno dyno_;
};

} // namespace ecu::diagnostics
