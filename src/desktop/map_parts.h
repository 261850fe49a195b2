// Small parts that the windows of maps share: the triangle that marks the operating point on an axis, the swatch of a
// cell's state, and a muted line of text.
#pragma once

#include "platform/colour.h"

#include <QLabel>

namespace ecu::desktop {

// A triangle that points at its axis: upward under a map, to the right beside one.
class AxisMarker final : public QWidget {
public:
    static constexpr int size = 12;

    AxisMarker(bool upward, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool upward_;
};

QPixmap swatch_picture(platform::Colour colour);
QLabel* swatch(platform::Colour colour);
QLabel* muted_label(const QString& text); // follows the desktop from light to dark
// The states of cells and the scale of the shading, from low to high.
QWidget* shading_legend();

} // namespace ecu::desktop
