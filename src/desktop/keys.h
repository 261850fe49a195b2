// Keys and mouse buttons of Qt as the controls report them.
#pragma once

#include "platform/grid.h"

class QKeyEvent;
class QMouseEvent;

namespace ecu::desktop {

// code is 0 for a key that the controls have no code for.
platform::KeyPress key_of(const QKeyEvent& event);
platform::MouseButton button_of(const QMouseEvent& event);

} // namespace ecu::desktop
