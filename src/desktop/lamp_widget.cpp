#include "desktop/lamp_widget.h"

#include "desktop/theme.h"

#include <QPainter>
#include <QRadialGradient>

#include <algorithm>

namespace ecu::desktop {

LampWidget::LampWidget(platform::Shape& shape, platform::Colour dark) : shape_(shape), dark_(dark) {
    setMinimumWidth(15);
    setFixedHeight(34);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void LampWidget::refresh() {
    setAccessibleDescription(shape_.back_colour().value_or(dark_) == dark_ ? "dark" : "lit");
    update();
}

void LampWidget::paintEvent(QPaintEvent*) {
    const platform::Colour colour = shape_.back_colour().value_or(dark_);
    const double radius = std::min(width(), height()) / 2.0 - 1.5;
    const QPointF centre = QRectF(rect()).center();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor base = theme::to_qt(colour);
    if (colour == dark_) {
        painter.setPen(QPen(theme::muted_text(palette()), 1)); // to be seen in a dark theme too
        painter.setBrush(base.darker(140));
        painter.drawEllipse(centre, radius * 0.8, radius * 0.8);
        return;
    }
    QRadialGradient glow(centre, radius);
    glow.setColorAt(0, base.lighter(125));
    glow.setColorAt(0.75, base);
    glow.setColorAt(1, base.darker(115));
    painter.setPen(QPen(theme::text_on(palette().color(QPalette::Window)), 1.5));
    painter.setBrush(glow);
    painter.drawEllipse(centre, radius, radius);
}

} // namespace ecu::desktop
