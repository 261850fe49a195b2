// The virtual monitor for the rehearsal of a record file: running, and in nobody's way. `Monitor` is made of two
// functions: what it says to a byte, and whether it has started the new firmware.
#pragma once

#include "controller/flash_monitor.h"

#include <memory>

namespace ecu::controller {

template <typename Monitor> Monitor rehearsal_monitor() {
    const auto monitor = std::make_shared<FlashMonitor>();
    monitor->start();
    return {[monitor](std::uint8_t byte) { return monitor->receive(byte); }, [monitor] { return !monitor->running(); }};
}

} // namespace ecu::controller
