// What the backgrounds of cells and boxes mean, as swatches with words beside them.
#pragma once

#include "platform/colour.h"

#include <QWidget>

namespace ecu::desktop {

QWidget* swatch(platform::Colour colour);
QWidget* muted(const char* text);
// The three states and the scale of the shading, from low to high.
QWidget* shading_legend();

} // namespace ecu::desktop
