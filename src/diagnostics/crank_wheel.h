// Capturing the crank wheel: arming the controller, reading a capture block by block, drawing it, and both again and
// again until it is halted. The loop finds its end by the Halt button's state alone, so every way out of the window
// ends it with its cycle. A block that gets no answer leaves the older samples in their place.
#pragma once

#include "diagnostics/frm_diagnostics.h"
#include "diagnostics/wheel_trace.h"
#include "diagnostics/when_free.h"
#include "messages/live_data.h"

namespace ecu::diagnostics {

class CrankWheel {
public:
    CrankWheel(const platform::Ports& ports, link::EcuComm& comm, WhenFree& when_free,
               const messages::EcuLiveData& live, const messages::WheelSamples& samples, FrmDiagnostics& form);

    void halt();

private:
    link::Outcome arm();
    void read_and_draw();
    void run_continuously();
    void in_turn(std::function<void()> sequence);
    void set_busy(bool busy);
    void show();
    void summarise(const std::string& lost_blocks);
    void mark(int tooth);
    void move_mark(platform::KeyPress& key);
    void save_picture();

    const platform::Ports& ports_;
    link::EcuComm& comm_;
    WhenFree& when_free_;
    const messages::EcuLiveData& live_;
    const messages::WheelSamples& samples_;
    FrmDiagnostics& form_;
    WheelTrace trace_;
    bool drawn_ = false;
    int marked_ = -1; // tooth, from 0
};

} // namespace ecu::diagnostics
