#include "adapters/qt_program.h"

#include <cstdio>
#include <cstdlib>

namespace ecu::adapters {

void QtProgram::end(int status) {
    if (before_end) {
        before_end();
    }
    if (at_end) {
        at_end(status);
    }
    std::fflush(nullptr);
    std::_Exit(status);
}

} // namespace ecu::adapters
