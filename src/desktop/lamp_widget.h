// One lamp of a bar: a disc in the colour of its Shape, glowing when it is not the given dark one.
#pragma once

#include "platform/control.h"

#include <QWidget>

namespace ecu::desktop {

class LampWidget final : public QWidget {
public:
    LampWidget(platform::Shape& shape, platform::Colour dark);
    void refresh(); // the colour changed
    QSize sizeHint() const override { return {34, 34}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    platform::Shape& shape_;
    platform::Colour dark_;
};

} // namespace ecu::desktop
