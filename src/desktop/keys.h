// Keys and mouse buttons of Qt as the controls report them.
#pragma once

#include "platform/grid.h"

class QEvent;
class QKeyEvent;
class QMouseEvent;

namespace ecu::desktop {

// code is 0 for a key that the controls have no code for.
platform::KeyPress key_of(const QKeyEvent& event);
// Asks, before a line edit takes it for itself, for the key that a form's own undo or redo has.
bool is_undo_key(const QEvent& event);
platform::MouseButton button_of(const QMouseEvent& event);

} // namespace ecu::desktop
