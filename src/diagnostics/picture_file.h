// What the two drawings of the diagnostics share: the steps of the arrow keys along a curve, and the picture file.
#pragma once

#include "platform/picture.h"
#include "platform/ports.h"

namespace ecu::diagnostics {

// Places to move by for a key: one for the arrows, all of `count` for Home and End; 0 for any other key.
int step_of(const platform::KeyPress& key, int count);

// Asks for a name and writes the drawing there; says so when it cannot be written.
void save_picture_of(const platform::Picture& picture, const platform::Ports& ports, std::string_view name);

} // namespace ecu::diagnostics
