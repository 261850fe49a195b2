// The end of the program: at once, from wherever it is called, a transaction or a modal dialog included.
#pragma once

#include "platform/dialogs.h"

#include <functional>

namespace ecu::adapters {

class QtProgram final : public platform::Program {
public:
    [[noreturn]] void end(int status) override;
    // Runs first, to close the port and what else the system would not close by itself.
    std::function<void()> before_end;
    // Runs last, to note the end.
    std::function<void(int status)> at_end;
};

} // namespace ecu::adapters
