// How a box for an entry looks and reads beside its state colour: hatched when it was never read, red when it would be
// sent and is no number, underlined when it is white and yet not what the controller last confirmed. Its tip and its
// description say so.
#pragma once

#include "platform/control.h"

class QKeyEvent;
class QWidget;

namespace ecu::desktop {

void paint_box(const platform::TextBox& box, QWidget& widget);
// The decimal comma of many keyboards, in a box that holds a value of the controller; other boxes hold any text.
bool is_decimal_comma(const platform::Control& control, const QKeyEvent& key);

} // namespace ecu::desktop
