// How a box for an entry looks and reads beside its state colour: hatched when it was never read, red when it would be
// sent and is no number, underlined when it is white and yet not what the controller last confirmed. Its tip and its
// description say so.
#pragma once

#include "platform/control.h"

class QKeyEvent;
class QLineEdit;
class QString;
class QWidget;

namespace ecu::desktop {

void paint_box(const platform::TextBox& box, QWidget& widget);
// The decimal comma of many keyboards, in a box that holds a value of the controller; other boxes hold any text.
bool is_decimal_comma(const platform::Control& control, const QKeyEvent& key);
// One copied value into such a box, with a point for its comma. A blank leaves the box alone, and so does what is no
// number, which is told. False: the key or the box is another, or there are several values.
bool paste_value(const platform::Control& control, QLineEdit& edit, const QKeyEvent& key);
// In the status bar of the window, until something else is.
void tell_not_pasted(int count, const QString& first_text, const QWidget& first_place);

} // namespace ecu::desktop
